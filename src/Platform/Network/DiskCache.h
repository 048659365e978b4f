#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trelmix {

class CacheDatabase;

/// Bodies by address in one database file within a limit of bytes; the least recently used go first.
///
/// A process may end at any moment and leaves every finished entry whole; several processes may share the
/// file. A damaged file is set aside (as "...damaged") and made anew. Where the disk is full or may not be
/// written, what is there can still be found. The file is opened by the first use. Any thread.
class DiskCache {
public:
    static constexpr const char* kFileName = "answers.sqlite";

    /// @param folder made when it is missing; empty: a cache that holds nothing.
    DiskCache(std::string folder, std::uint64_t limit);
    ~DiskCache();
    DiskCache(const DiskCache&) = delete;
    DiskCache& operator=(const DiskCache&) = delete;

    std::optional<std::vector<std::byte>> find(const std::string& address);
    /// True once the entry is on disk.
    bool store(const std::string& address, std::span<const std::byte> body);

private:
    CacheDatabase* database();
    void checkFault();

    std::mutex _mutex;
    const std::string _folder;
    const std::uint64_t _limit;
    std::unique_ptr<CacheDatabase> _database;
    /// Operations to leave out before the next attempt to open, and to write.
    int _closedFor = 0;
    int _unwritableFor = 0;
};

} // namespace trelmix
