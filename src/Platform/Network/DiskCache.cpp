#include "Platform/Network/DiskCache.h"

#include "Platform/Network/CacheDatabase.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

#include <sys/stat.h>

namespace trelmix {
namespace {

/// How long a disk that failed is left alone, in operations.
constexpr int kPause = 64;

} // namespace

DiskCache::DiskCache(std::string folder, std::uint64_t limit)
    : _folder(std::move(folder)),
      _limit(std::min<std::uint64_t>(limit, std::numeric_limits<std::int64_t>::max())) {}

DiskCache::~DiskCache() = default;

CacheDatabase* DiskCache::database() {
    if (_database || _folder.empty() || _closedFor > 0) {
        _closedFor = std::max(_closedFor - 1, 0);
        return _database.get();
    }
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(_folder).parent_path(), error);
    ::mkdir(_folder.c_str(), 0700);
    for (int attempt = 0; attempt < 2; ++attempt) {
        auto opened = std::make_unique<CacheDatabase>((std::filesystem::path(_folder) / kFileName).string());
        if (opened->fault == SQLITE_OK) {
            _database = std::move(opened);
            return _database.get();
        }
        if (!CacheDatabase::isDamage(opened->fault)) {
            break;
        }
        opened->setAside();
    }
    _closedFor = kPause;
    return nullptr;
}

/// Decides what a failed operation means for the next ones.
void DiskCache::checkFault() {
    const int fault = _database->fault;
    if (CacheDatabase::isDamage(fault)) {
        _database->setAside();
        _database = nullptr;
    } else if (const int primary = fault & 0xff;
               primary == SQLITE_FULL || primary == SQLITE_IOERR || primary == SQLITE_READONLY) {
        _unwritableFor = kPause;
    }
}

std::optional<std::vector<std::byte>> DiskCache::find(const std::string& address) {
    const std::lock_guard guard(_mutex);
    CacheDatabase* const open = database();
    if (open == nullptr) {
        return std::nullopt;
    }
    auto body = open->find(address);
    checkFault();
    return body;
}

bool DiskCache::store(const std::string& address, std::span<const std::byte> body) {
    const std::lock_guard guard(_mutex);
    if (_database && !_database->isInPlace()) {
        // Somebody has cleared the folder.
        _database = nullptr;
    }
    CacheDatabase* const open = database();
    if (open == nullptr ||
        CacheDatabase::costOf(address.size(), body.size()) > static_cast<std::int64_t>(_limit)) {
        return false;
    }
    if (_unwritableFor > 0) {
        --_unwritableFor;
        return false;
    }
    const bool isStored = open->store(address, body, _limit);
    checkFault();
    return isStored;
}

} // namespace trelmix
