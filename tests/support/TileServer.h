#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace trelmix {

struct TileRequest {
    /// "/17/1/2.png".
    std::string path;
    /// The request as it came, headers and all.
    std::string text;
    /// 1 for the first request of the path.
    int count = 0;
};

/// What a server sends, and how it ends.
struct TileReply {
    enum class End {
        keep,    ///< waits for the next request on the connection
        close,   ///< closes in good order
        reset,   ///< breaks the connection off
        hold,    ///< sends nothing until `release`, then as `keep`
        endless, ///< sends the bytes again and again
    };
    std::string bytes;
    End end = End::keep;

    static TileReply of(const std::string& status, const std::string& body, const std::string& headers = {}) {
        return {"HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
                headers + "\r\n" + body};
    }
    static TileReply ok(const std::string& body) { return of("200 OK", body, "Content-Type: image/png\r\n"); }
    TileReply ending(End how) const { return {bytes, how}; }
    /// Promises more than it sends.
    static TileReply truncated(const std::string& body) {
        return TileReply{ok(body).bytes.substr(0, ok("").bytes.size() + body.size() / 2), End::close};
    }
};

/// An HTTP/1.1 server on 127.0.0.1 whose replies a function decides. It answers on threads of its own, can
/// stop and come back on the same port, and counts what it was asked for.
class TileServer {
public:
    using Handler = std::function<TileReply(const TileRequest&)>;

    explicit TileServer(Handler handler) : _handler(std::move(handler)) { comeBack(); }
    ~TileServer() { stop(); }
    TileServer(const TileServer&) = delete;
    TileServer& operator=(const TileServer&) = delete;

    std::string address() const { return "http://127.0.0.1:" + std::to_string(_port); }

    void comeBack() {
        _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int yes = 1;
        ::setsockopt(_listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        sockaddr_in place = {};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        place.sin_port = htons(_port);
        socklen_t size = sizeof place;
        auto* const raw = reinterpret_cast<sockaddr*>(&place);
        if (::bind(_listener, raw, size) != 0 || ::listen(_listener, 128) != 0 ||
            ::getsockname(_listener, raw, &size) != 0) {
            throw std::runtime_error("no loopback server");
        }
        _port = ntohs(place.sin_port);
        _isStopping = false;
        _acceptor = std::thread([this] { accept(); });
    }

    /// Ends all connections; the port refuses from now on.
    void stop() {
        if (!_acceptor.joinable()) {
            return;
        }
        {
            const std::lock_guard guard(_mutex);
            _isStopping = true;
            _changed.notify_all();
            ::shutdown(_listener, SHUT_RDWR);
            for (const int connection : _connections) {
                ::shutdown(connection, SHUT_RDWR);
            }
        }
        _acceptor.join();
        ::close(_listener);
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [this] { return _connections.empty(); });
    }

    /// Lets everything that is held go on, and holds nothing any more.
    void release() {
        const std::lock_guard guard(_mutex);
        _isReleased = true;
        _changed.notify_all();
    }

    /// Waits until so many requests have come; false after half a minute.
    bool waitForRequests(std::size_t count) {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, std::chrono::seconds(30), [&] { return _paths.size() >= count; });
    }

    /// In the order they came.
    std::vector<std::string> paths() const {
        const std::lock_guard guard(_mutex);
        return _paths;
    }
    int count(const std::string& path) const {
        const std::lock_guard guard(_mutex);
        const auto found = _counts.find(path);
        return found == _counts.end() ? 0 : found->second;
    }
    /// The most requests that waited for their replies at one time.
    int mostAtOnce() const {
        const std::lock_guard guard(_mutex);
        return _mostAtOnce;
    }

private:
    void accept() {
        for (int connection = 0; (connection = ::accept(_listener, nullptr, nullptr)) >= 0;) {
            const std::lock_guard guard(_mutex);
            if (_isStopping) {
                ::close(connection);
                return;
            }
            _connections.push_back(connection);
            // A thread says that it ends by taking its connection off the list.
            std::thread([this, connection] { serve(connection); }).detach();
        }
    }

    void serve(int connection) {
        std::string input;
        for (std::size_t end = 0; receive(connection, input, end);) {
            const TileRequest request = noted(input.substr(0, end));
            input.erase(0, end);
            const TileReply reply = _handler(request);
            const bool goesOn = send(connection, reply);
            {
                const std::lock_guard guard(_mutex);
                --_running;
            }
            if (!goesOn) {
                break;
            }
        }
        const std::lock_guard guard(_mutex);
        ::close(connection);
        _connections.remove(connection);
        _changed.notify_all();
    }

    static bool receive(int connection, std::string& input, std::size_t& end) {
        for (;;) {
            if (const std::size_t blank = input.find("\r\n\r\n"); blank != std::string::npos) {
                end = blank + 4;
                return true;
            }
            char buffer[4096];
            const ssize_t got = ::recv(connection, buffer, sizeof buffer, 0);
            if (got <= 0) {
                return false;
            }
            input.append(buffer, static_cast<std::size_t>(got));
        }
    }

    TileRequest noted(const std::string& text) {
        const std::size_t start = text.find(' ') + 1;
        const std::lock_guard guard(_mutex);
        TileRequest request{text.substr(start, text.find(' ', start) - start), text};
        request.count = ++_counts[request.path];
        _paths.push_back(request.path);
        _mostAtOnce = std::max(_mostAtOnce, ++_running);
        _changed.notify_all();
        return request;
    }

    bool send(int connection, const TileReply& reply) {
        using End = TileReply::End;
        if (reply.end == End::hold) {
            std::unique_lock lock(_mutex);
            _changed.wait(lock, [this] { return _isReleased || _isStopping; });
        }
        bool isSent = false;
        do {
            isSent = sendAll(connection, reply.bytes);
        } while (isSent && reply.end == End::endless);
        if (reply.end == End::reset) {
            const linger now{1, 0};
            ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        }
        return isSent && (reply.end == End::keep || reply.end == End::hold);
    }

    static bool sendAll(int connection, std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    Handler _handler;
    int _listener = -1;
    in_port_t _port = 0;
    std::thread _acceptor;
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    bool _isStopping = false, _isReleased = false;
    std::list<int> _connections;
    std::vector<std::string> _paths;
    std::map<std::string, int> _counts;
    int _running = 0, _mostAtOnce = 0;
};

} // namespace trelmix
