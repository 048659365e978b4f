#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace trelmix {

using CachedBody = std::shared_ptr<const std::vector<std::byte>>;

/// Bodies by address within a limit of bytes; the least recently used go first. Any thread.
class MemoryCache {
public:
    explicit MemoryCache(std::size_t limit) : _limit(limit) {}

    CachedBody find(const std::string& address);
    /// Bodies beyond the limit are not kept.
    void insert(const std::string& address, CachedBody body);

private:
    using Entry = std::pair<std::string, CachedBody>;
    using Entries = std::list<Entry>;
    static std::size_t sizeOf(const Entry& entry);
    void erase(Entries::iterator entry);

    std::mutex _mutex;
    std::size_t _limit;
    std::size_t _size = 0;
    /// The least recently used first. The index refers to the texts in it.
    Entries _entries;
    std::unordered_map<std::string_view, Entries::iterator> _index;
};

} // namespace trelmix
