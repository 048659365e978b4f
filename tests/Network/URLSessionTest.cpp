#include "Network/SessionCalls.h"

#include "support/ScratchFolder.h"
#include "support/TileServer.h"

#include <gtest/gtest.h>

#include <future>
#include <sys/stat.h>

namespace trelmix::url_session_test {

using End = TileReply::End;

/// A server with one way to reply, and a session.
struct Talk {
    explicit Talk(TileServer::Handler handler, URLSession::Settings settings = quickSettings())
        : server(std::move(handler)), session(std::move(settings)) {}

    std::future<URLSession::Answer> begin(const std::string& url, double timeout = 10) {
        return trelmix::begin(session, url, timeout);
    }
    URLSession::Answer load(const std::string& path, double timeout = 10) {
        return begin(server.address() + path, timeout).get();
    }

    TileServer server;
    URLSession session;
};

TEST(URLSession, passingFaultsAreRepeatedUntilTheyPass) {
    const std::vector<std::pair<const char*, TileReply>> faults = {
        {"reset", {"", End::reset}},
        {"cut short", TileReply::truncated(kBody)},
        {"503", TileReply::of("503 Busy", "<html>later</html>")},
        {"429", TileReply::of("429 Slow down", "", "Retry-After: 0\r\n")},
        {"500 in chunks", {"HTTP/1.1 500 Oh\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n0\r\n\r\n"}},
    };
    for (const auto& [name, fault] : faults) {
        Talk talk([&fault = fault](const TileRequest& request) {
            return request.count <= 2 ? fault : TileReply::ok(kBody);
        });
        EXPECT_EQ(text(talk.load("/a")), kBody) << name;
        EXPECT_EQ(talk.server.count("/a"), 3) << name;
    }
}

TEST(URLSession, lastingFaultsEndWithAReasonAndAreNotRepeated) {
    const std::string flood(64 << 10, 'x');
    const std::string header = "X-Long: " + std::string(60 << 10, 'x') + "\r\n";
    const std::vector<std::pair<const char*, TileReply>> faults = {
        {"missing", TileReply::of("404 Not Found", "<html>no</html>")},
        {"not for long", TileReply::of("503 Busy", "", "Retry-After: 3600\r\n")},
        {"too large by its own words", {"HTTP/1.1 200 OK\r\nContent-Length: 99999999\r\n\r\n", End::hold}},
        {"endless", {"HTTP/1.1 200 OK\r\n\r\n" + flood, End::endless}},
        {"endless headers", {"HTTP/1.1 200 OK\r\n" + header + header + header + header + header}},
        {"no HTTP", {"SSH-2.0-OpenSSH_9\r\n", End::close}},
        {"to a file", TileReply::of("302 Found", "", "Location: file:///etc/hostname\r\n")},
    };
    for (const auto& [name, fault] : faults) {
        Talk talk([&fault = fault](const TileRequest&) { return fault; });
        talk.server.release();
        const auto answer = talk.load("/a");
        EXPECT_FALSE(answer) << name;
        EXPECT_FALSE(answer.reason().empty()) << name;
        EXPECT_EQ(talk.server.count("/a"), 1) << name;
    }
}

TEST(URLSession, followsFiveRedirectsAndNoMore) {
    Talk talk([](const TileRequest& request) {
        const int left = request.path[1] - '0';
        return left == 0
                   ? TileReply::ok(kBody)
                   : TileReply::of("302 Found", "ignored", "Location: /" + std::to_string(left - 1) + "\r\n");
    });
    EXPECT_EQ(text(talk.load("/5")), kBody);
    EXPECT_FALSE(talk.load("/6"));
    EXPECT_EQ(talk.server.paths().size(), 12U);
}

TEST(URLSession, aFaultThatLastsBeyondTheTimeOutEndsThere) {
    Talk silent([](const TileRequest&) { return TileReply::ok(kBody).ending(End::hold); });
    EXPECT_FALSE(silent.load("/a", 0.2));
    Talk busy([](const TileRequest&) { return TileReply::of("503 Busy", ""); });
    EXPECT_EQ(busy.load("/a", 0.3).reason(), "status 503");
    EXPECT_GT(busy.server.count("/a"), 2);
    busy.server.stop();
    EXPECT_EQ(busy.load("/a", 0.3).reason(), "connection refused");
}

TEST(URLSession, aServerThatStopsAndComesBackIsAskedAgain) {
    Talk talk([](const TileRequest&) { return TileReply::ok(kBody); });
    EXPECT_EQ(text(talk.load("/a")), kBody);
    talk.server.stop();
    auto late = talk.begin(talk.server.address() + "/b", 30);
    talk.server.comeBack();
    EXPECT_EQ(text(late.get()), kBody);
}

TEST(URLSession, asksAHostForSixAtATimeInTheOrderOfTheCallsAndOthersMeanwhile) {
    TileServer other([](const TileRequest&) { return TileReply::ok(kBody); });
    Talk talk([](const TileRequest&) { return TileReply::ok(kBody).ending(End::hold); });
    std::vector<std::future<URLSession::Answer>> answers;
    for (int i = 10; i < 40; ++i) {
        answers.push_back(talk.begin(talk.server.address() + "/" + std::to_string(i)));
    }
    ASSERT_TRUE(talk.server.waitForRequests(6));
    auto first = talk.server.paths();
    std::sort(first.begin(), first.end());
    EXPECT_EQ(first, (std::vector<std::string>{"/10", "/11", "/12", "/13", "/14", "/15"}));
    answers.push_back(talk.begin(other.address() + "/1"));
    EXPECT_TRUE(other.waitForRequests(1)) << "it waits for a host that is slow";
    talk.server.release();
    for (auto& answer : answers) {
        EXPECT_EQ(text(answer.get()), kBody);
    }
    EXPECT_EQ(talk.server.mostAtOnce(), 6);
}

TEST(URLSession, saysWhoAsksAndTakesPackedAnswers) {
    const auto packed = [](const char* kind, const std::string& body) {
        return TileReply::of("200 OK", body, std::string("Content-Encoding: ") + kind + "\r\n");
    };
    const std::string zipped("\x1f\x8b\x08\0\0\0\0\0\0\x03\xcbH\xcd\xc9\xc9\x07\0\x86\xa6\x10\x36\x05\0\0\0",
                             25);
    const std::string brotli("\x0f\x02\x80hello\x03", 9);
    const std::string twoMebibytes("\x9f\xff\xff\x1f\xf8\x27\0\xe2\xb1\x40\x20\xf7\xfe\x03", 14);
    Talk talk([&](const TileRequest& asked) {
        return asked.path == "/zipped"   ? packed("gzip", zipped)
               : asked.path == "/brotli" ? packed("br", brotli)
               : asked.path == "/bomb"   ? packed("br", twoMebibytes)
                                         : TileReply::ok(asked.text);
    });
    const std::string request = text(talk.load("/a"));
    EXPECT_NE(request.find("User-Agent: Test/1 (somebody@example.org)\r\n"), std::string::npos) << request;
    EXPECT_EQ(text(talk.load("/zipped")), "hello");
    if (request.find("br") != std::string::npos) { // not in every build of the library
        EXPECT_EQ(text(talk.load("/brotli")), "hello");
        EXPECT_FALSE(talk.load("/bomb"));
    }
}

TEST(URLSession, droppedWhileItWorksItAnswersNothingAndLetsGoOfEverything) {
    TileServer server([](const TileRequest&) { return TileReply::ok(kBody).ending(End::hold); });
    const auto held = std::make_shared<int>(0);
    {
        URLSession session(quickSettings());
        for (int i = 0; i < 20; ++i) {
            session.load({URL::fromString(server.address() + "/" + std::to_string(i)).value()},
                         [held](const URLSession::Answer&) { ++*held; });
        }
        ASSERT_TRUE(server.waitForRequests(3));
    }
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(URLSession, aSessionMayEndInsideItsLastAnswer) {
    TileServer server([](const TileRequest&) { return TileReply::ok(kBody).ending(End::hold); });
    auto session = std::make_shared<URLSession>(quickSettings());
    std::promise<void> done;
    auto* const raw = session.get();
    raw->load({URL::fromString(server.address() + "/a").value()},
              [&done, last = std::move(session)](const URLSession::Answer&) mutable {
                  last.reset();
                  done.set_value();
              });
    server.release();
    done.get_future().wait();
}

TEST(URLSession, readsFilesButNothingElseOfTheFileSystem) {
    const apps::ScratchFolder folder;
    const std::string path = folder.path("a b.png");
    folder.write("a b.png", kBody);
    folder.write("large", std::string(2 << 20, 'x'));
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    Talk talk([](const TileRequest&) { return TileReply::ok(""); });
    const std::string base = "file://" + folder.path("");
    EXPECT_EQ(text(talk.begin(base + "a%20b.png?x#y").get()), kBody);
    for (const char* name : {"none", "pipe", "large", ""}) {
        EXPECT_FALSE(talk.begin(base + name).get()) << name;
    }
}

TEST(URL, takesAddressesOfTheThreeSchemesAndNothingElse) {
    for (const char* good : {"http://a/b", "HTTPS://user@Example.org:8080?x", "http://[::1]:65535/a",
                             "http://a:/b", "file:///a", "file://localhost/a"}) {
        EXPECT_TRUE(URL::fromString(good)) << good;
    }
    for (const char* bad :
         {"", "http:/a", "http:///a", "http://:80/", "http://a:99999/", "http://a:0/", "http://a:b/",
          "ftp://a/b", "file://host/a", "file://", "file:///a%00b", "http://a/\r\nX: y"}) {
        EXPECT_FALSE(URL::fromString(bad)) << bad;
    }
    EXPECT_FALSE(URL::fromString("http://a/" + std::string(URL::kMaximumLength, 'x')));
    EXPECT_EQ(URL::fromString("HTTPS://user@Example.org:8080?x")->authority(), "example.org:8080");
    EXPECT_EQ(URL::fromString("file:///a%2Fb%zz%4")->filePath(), "/a/b%zz%4");
}

TEST(RetryPolicy, waitsLongerEachTimeWithinItsLimitAndTheTimeThatIsLeft) {
    const RetryPolicy policy;
    double before = policy.firstDelay / 2;
    for (int attempt = 1; attempt < 100; ++attempt) {
        const double delay = policy.delay(attempt, 0, 100, 0.5).value();
        EXPECT_GE(delay, before);
        EXPECT_LE(delay, policy.delay(attempt, 0, 100, 1).value());
        EXPECT_LE(policy.delay(attempt, 0, 100, 1), policy.longestDelay);
        before = delay;
    }
    EXPECT_EQ(policy.delay(1, 5, 10, 0.5), 5);
    EXPECT_EQ(policy.delay(1, 10, 10, 0.5), std::nullopt);
    EXPECT_EQ(policy.delay(3, 0, 0.1, 0.5), std::nullopt);
}

} // namespace trelmix::url_session_test
