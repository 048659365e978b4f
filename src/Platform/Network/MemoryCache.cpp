#include "Platform/Network/MemoryCache.h"

namespace trelmix {

std::size_t MemoryCache::sizeOf(const Entry& entry) {
    constexpr std::size_t kBookkeeping = 256;
    return entry.first.size() + entry.second->size() + kBookkeeping;
}

CachedBody MemoryCache::find(const std::string& address) {
    const std::lock_guard guard(_mutex);
    const auto found = _index.find(address);
    if (found == _index.end()) {
        return nullptr;
    }
    _entries.splice(_entries.end(), _entries, found->second);
    return found->second->second;
}

void MemoryCache::insert(const std::string& address, CachedBody body) {
    const std::lock_guard guard(_mutex);
    if (const auto found = _index.find(address); found != _index.end()) {
        erase(found->second);
    }
    Entry entry(address, std::move(body));
    if (!entry.second || sizeOf(entry) > _limit) {
        return;
    }
    _size += sizeOf(entry);
    _entries.push_back(std::move(entry));
    _index.emplace(_entries.back().first, std::prev(_entries.end()));
    while (_size > _limit) {
        erase(_entries.begin());
    }
}

void MemoryCache::erase(Entries::iterator entry) {
    _size -= sizeOf(*entry);
    _index.erase(entry->first);
    _entries.erase(entry);
}

} // namespace trelmix
