#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace trelmix {

/// What waits for its turn: at most so many at once, at most so many for one host, otherwise in the order
/// they came. One thread.
template <class Item>
class HostQueue {
public:
    HostQueue(std::size_t mostAtOnce, std::size_t mostPerHost)
        : _mostAtOnce(mostAtOnce), _mostPerHost(mostPerHost) {}

    void push(const std::string& host, Item item) {
        _hosts[host].waiting.emplace_back(_arrivals++, std::move(item));
    }

    /// Takes a place for something that does not wait in the queue; false when there is none.
    bool takePlace(const std::string& host) {
        if (_running >= _mostAtOnce || (_hosts.contains(host) && _hosts[host].running >= _mostPerHost)) {
            return false;
        }
        ++_hosts[host].running;
        ++_running;
        return true;
    }

    /// The next whose host has a place, and takes the place; empty when all have to wait.
    std::optional<Item> takeNext() {
        Host* next = nullptr;
        std::uint64_t earliest = std::numeric_limits<std::uint64_t>::max();
        for (auto& [name, host] : _hosts) {
            if (host.running < _mostPerHost && !host.waiting.empty() &&
                host.waiting.front().first < earliest) {
                earliest = host.waiting.front().first;
                next = &host;
            }
        }
        if (next == nullptr || _running >= _mostAtOnce) {
            return std::nullopt;
        }
        std::optional<Item> item(std::move(next->waiting.front().second));
        next->waiting.pop_front();
        ++next->running;
        ++_running;
        return item;
    }

    /// Gives a place back.
    void leavePlace(const std::string& host) {
        const auto found = _hosts.find(host);
        if (found == _hosts.end() || found->second.running == 0) {
            return;
        }
        --_running;
        if (--found->second.running == 0 && found->second.waiting.empty()) {
            _hosts.erase(found);
        }
    }

private:
    struct Host {
        std::deque<std::pair<std::uint64_t, Item>> waiting;
        std::size_t running = 0;
    };

    std::size_t _mostAtOnce;
    std::size_t _mostPerHost;
    std::map<std::string, Host> _hosts;
    std::size_t _running = 0;
    std::uint64_t _arrivals = 0;
};

} // namespace trelmix
