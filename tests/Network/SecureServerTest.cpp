// Certificates and HTTP/2 against servers that others wrote; without their programs there is nothing to test.

#include "Platform/Network/URLSession.h"

#include "Apps/ScratchFolder.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

namespace trelmix {
namespace {

const std::string kBody = "the body of an answer";

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    address.sin_port = ::htons(static_cast<std::uint16_t>(port));
    return address;
}

/// Free a moment ago.
int freePort() {
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof(address);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    ::bind(socket, reinterpret_cast<const sockaddr*>(&address), length);
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    ::close(socket);
    return ::ntohs(address.sin_port);
}

bool isListening(int port) {
    const sockaddr_in address = loopback(port);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const bool isThere = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(socket);
    return isThere;
}

/// A folder with a page and a certificate for one name, and a program that serves it.
class SecureServer {
public:
    /// @param name "IP:127.0.0.1", "DNS:localhost".
    explicit SecureServer(const std::string& name) {
        _folder.write("page", kBody);
        const std::string command = "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=test "
                                    "-addext subjectAltName=" +
                                    name + " -keyout " + _folder.path("key") + " -out " + certificate() +
                                    " 2>/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    ~SecureServer() {
        if (_process > 0) {
            ::kill(_process, SIGKILL);
            ::waitpid(_process, nullptr, 0);
        }
    }
    SecureServer(const SecureServer&) = delete;
    SecureServer& operator=(const SecureServer&) = delete;

    std::string certificate() const { return _folder.path("certificate"); }
    std::string address() const { return "https://127.0.0.1:" + std::to_string(_port) + "/page"; }

    bool startHttp1() {
        return start({"openssl", "s_server", "-WWW", "-quiet", "-accept", "127.0.0.1:PORT", "-key", "key",
                      "-cert", "certificate"});
    }
    bool startHttp2() { return start({"nghttpd", "-a", "127.0.0.1", "-v", "PORT", "key", "certificate"}); }

    /// What the program has printed.
    std::string log() const {
        std::ifstream file(_folder.path("log"));
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    /// Another program may take the port first.
    bool start(const std::vector<std::string>& words) {
        for (int tries = 0; tries < 5; ++tries) {
            _port = freePort();
            spawn(words);
            while (::waitpid(_process, nullptr, WNOHANG) == 0) {
                if (isListening(_port)) {
                    return true;
                }
                std::this_thread::yield();
            }
            _process = 0;
        }
        return false;
    }

    void spawn(std::vector<std::string> words) {
        std::vector<char*> arguments;
        for (std::string& word : words) {
            if (const auto at = word.find("PORT"); at != std::string::npos) {
                word.replace(at, 4, std::to_string(_port));
            }
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addchdir_np(&actions, _folder.path("").c_str());
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "log", O_WRONLY | O_CREAT | O_TRUNC,
                                           0600);
        ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        EXPECT_EQ(::posix_spawnp(&_process, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
        ::posix_spawn_file_actions_destroy(&actions);
    }

    apps::ScratchFolder _folder;
    pid_t _process = 0;
    int _port = 0;
};

std::future<URLSession::Answer> begin(URLSession& session, const std::string& address) {
    auto promise = std::make_shared<std::promise<URLSession::Answer>>();
    session.load({URL::fromString(address).value(), 10},
                 [promise](URLSession::Answer answer) { promise->set_value(std::move(answer)); });
    return promise->get_future();
}

URLSession::Settings trusting(const std::string& caFile) {
    return {"Test/1", caFile, 1 << 20, {0.01, 0.05}};
}

std::string load(const std::string& address, const std::string& caFile) {
    URLSession session(trusting(caFile));
    const auto answer = begin(session, address).get();
    return answer ? std::string(reinterpret_cast<const char*>(answer->data()), answer->size())
                  : "failed: " + answer.reason();
}

TEST(SecureServer, isAskedOnlyWithACertificateThatIsTrustedAndNamesIt) {
    if (!isInstalled("openssl")) {
        GTEST_SKIP() << "needs openssl";
    }
    SecureServer server("IP:127.0.0.1");
    ASSERT_TRUE(server.startHttp1());
    EXPECT_EQ(load(server.address(), server.certificate()), kBody);
    EXPECT_TRUE(load(server.address(), "").starts_with("failed: "));
    EXPECT_TRUE(load(server.address(), "/nowhere.pem").starts_with("failed: "));
    SecureServer other("DNS:elsewhere.example");
    ASSERT_TRUE(other.startHttp1());
    EXPECT_TRUE(load(other.address(), other.certificate()).starts_with("failed: "));
    EXPECT_TRUE(load(other.address(), server.certificate()).starts_with("failed: "));
}

TEST(SecureServer, manyRequestsShareOneConnectionOfHttp2) {
    if (!isInstalled("openssl") || !isInstalled("nghttpd")) {
        GTEST_SKIP() << "needs openssl and nghttpd";
    }
    SecureServer server("IP:127.0.0.1");
    ASSERT_TRUE(server.startHttp2());
    {
        URLSession session(trusting(server.certificate()));
        std::vector<std::future<URLSession::Answer>> answers;
        for (int i = 0; i < 30; ++i) {
            answers.push_back(begin(session, server.address() + "?" + std::to_string(i)));
        }
        for (auto& answer : answers) {
            const auto body = answer.get();
            ASSERT_TRUE(body) << body.reason();
            EXPECT_EQ(body->size(), kBody.size());
        }
    }
    // "[id=1]" was the look whether it listens.
    EXPECT_NE(server.log().find("[id=2]"), std::string::npos) << server.log();
    EXPECT_EQ(server.log().find("[id=3]"), std::string::npos) << server.log();
}

} // namespace
} // namespace trelmix
