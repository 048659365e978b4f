// Certificates and HTTP/2 against servers that others wrote; without their programs there is nothing to test.

#include "Network/SessionCalls.h"
#include "support/ScratchFolder.h"
#include "support/TileServer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace trelmix::secure_server_test {

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

/// Free a moment ago.
std::string freePort() {
    const std::string address = TileServer([](const TileRequest&) { return TileReply(); }).address();
    return address.substr(address.rfind(':') + 1);
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
    std::string address() const { return "https://127.0.0.1:" + _port + "/page"; }

    bool startHttp1() {
        return start("ACCEPT", "openssl s_server -WWW -accept 127.0.0.1:$PORT -key key -cert certificate");
    }
    bool startHttp2() { return start("listen", "nghttpd -a 127.0.0.1 -v $PORT key certificate"); }

    /// What the program has printed.
    std::string log() const { return _folder.text("log"); }

private:
    /// Another program may take the port first. @param sign what the program says once it listens
    bool start(const char* sign, const std::string& command) {
        for (int tries = 0; tries < 5; ++tries) {
            _port = freePort();
            const std::string line = "cd " + _folder.path("") + " && PORT=" + _port + " && exec " + command +
                                     " </dev/null >log 2>&1";
            _process = ::fork();
            if (_process == 0) {
                ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
                ::_exit(1);
            }
            while (::waitpid(_process, nullptr, WNOHANG) == 0) {
                if (log().find(sign) != std::string::npos) {
                    return true;
                }
                std::this_thread::yield();
            }
            _process = 0;
        }
        return false;
    }

    apps::ScratchFolder _folder;
    pid_t _process = 0;
    std::string _port;
};

std::string load(const std::string& address, const std::string& caFile) {
    URLSession session(quickSettings(caFile));
    return text(begin(session, address).get());
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
        URLSession session(quickSettings(server.certificate()));
        std::vector<std::future<URLSession::Answer>> answers;
        for (int i = 0; i < 30; ++i) {
            answers.push_back(begin(session, server.address() + "?" + std::to_string(i)));
        }
        for (auto& answer : answers) {
            EXPECT_EQ(text(answer.get()), kBody);
        }
    }
    EXPECT_NE(server.log().find("[id=1]"), std::string::npos) << server.log();
    EXPECT_EQ(server.log().find("[id=2]"), std::string::npos) << server.log();
}

} // namespace trelmix::secure_server_test
