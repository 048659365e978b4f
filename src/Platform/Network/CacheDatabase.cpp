#include "Platform/Network/CacheDatabase.h"

#include <cstdio>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace trelmix {
namespace {

constexpr int kBusyMilliseconds = 1000;
constexpr int kLargestValue = 64 << 20;
constexpr std::size_t kMostRememberedUses = 256;
constexpr int kVersion = 1;
/// A damaged file can hold questions without an end. Virtual instructions of one operation; an honest one of
/// the largest files takes a small part of them.
constexpr int kInstructionsPerLook = 100'000;
constexpr int kMostLooks = 200;

constexpr const char* kSettings = "PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304;"
                                  "PRAGMA cache_size=-1024; PRAGMA temp_store=MEMORY;"
                                  "PRAGMA trusted_schema=OFF;";

// Bodies have their own table, so that noting a use does not write the body again. The count of bytes is kept
// inside the transactions: it holds for all processes.
constexpr const char* kSchema = R"(
    CREATE TABLE entry(id INTEGER PRIMARY KEY, url TEXT NOT NULL UNIQUE, size INTEGER NOT NULL,
                       checksum INTEGER NOT NULL, cost INTEGER NOT NULL, used INTEGER NOT NULL);
    CREATE INDEX entry_used ON entry(used);
    CREATE TABLE body(id INTEGER PRIMARY KEY, data BLOB NOT NULL);
    CREATE TABLE state(id INTEGER PRIMARY KEY, bytes INTEGER NOT NULL, clock INTEGER NOT NULL);
    INSERT INTO state VALUES(1, 0, 0);
    CREATE TRIGGER entry_added AFTER INSERT ON entry BEGIN
        UPDATE state SET bytes = bytes + new.cost; END;
    CREATE TRIGGER entry_removed AFTER DELETE ON entry BEGIN
        UPDATE state SET bytes = bytes - old.cost; DELETE FROM body WHERE id = old.id; END;
    PRAGMA user_version = 1;)";

/// FNV-1a over address and body.
std::int64_t checksumOf(const std::string& address, std::span<const std::byte> body) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    const auto add = [&hash](std::span<const std::byte> bytes) {
        for (const std::byte byte : bytes) {
            hash = (hash ^ static_cast<std::uint64_t>(byte)) * 0x100000001b3U;
        }
    };
    add(std::as_bytes(std::span(address)));
    add(body);
    return static_cast<std::int64_t>(hash);
}

} // namespace

const std::array<const char*, CacheDatabase::queryCount> CacheDatabase::kQueries = {
    "SELECT entry.id, size, checksum, data FROM entry JOIN body ON body.id = entry.id WHERE url = ?1",
    "DELETE FROM entry WHERE url = ?1",
    "UPDATE state SET clock = clock + 1",
    "INSERT INTO entry(url, size, checksum, cost, used) SELECT ?1, ?2, ?3, ?4, clock FROM state",
    "INSERT INTO body(id, data) VALUES(last_insert_rowid(), ?1)",
    "UPDATE entry SET used = (SELECT clock FROM state) WHERE id = ?1",
    "SELECT bytes > ?1 FROM state WHERE EXISTS (SELECT 1 FROM entry)",
    "DELETE FROM entry WHERE id = (SELECT id FROM entry ORDER BY used, id LIMIT 1)",
};

bool CacheDatabase::isDamage(int code) {
    const int primary = code & 0xff;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_FORMAT ||
           primary == SQLITE_ERROR || primary == SQLITE_INTERRUPT || primary == SQLITE_MISMATCH ||
           primary == SQLITE_CONSTRAINT || code == SQLITE_IOERR_SHORT_READ;
}

std::int64_t CacheDatabase::costOf(std::size_t addressSize, std::size_t bodySize) {
    constexpr std::size_t kPage = 4096;
    return static_cast<std::int64_t>((bodySize + kPage - 1) / kPage * kPage + 2 * addressSize + 128);
}

CacheDatabase::CacheDatabase(std::string path) : _path(std::move(path)) {
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (note(sqlite3_open_v2(_path.c_str(), &_handle, flags, nullptr))) {
        prepareFile();
    }
    _inode = inodeAtPath();
}

CacheDatabase::~CacheDatabase() {
    if (fault == SQLITE_OK) {
        noteUses();
    }
    close();
}

std::optional<std::vector<std::byte>> CacheDatabase::find(const std::string& address) {
    _looks = 0;
    std::optional<std::vector<std::byte>> body;
    {
        const auto row = statement(Query::findEntry);
        if (!row || !bind(row, 1, address) || !step(row)) {
            return std::nullopt;
        }
        const auto* data = static_cast<const std::byte*>(sqlite3_column_blob(row.get(), 3));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row.get(), 3));
        const std::span<const std::byte> bytes(data, data != nullptr ? size : 0);
        if (sqlite3_column_int64(row.get(), 1) == static_cast<std::int64_t>(bytes.size()) &&
            sqlite3_column_int64(row.get(), 2) == checksumOf(address, bytes)) {
            body.emplace(bytes.begin(), bytes.end());
            _uses.push_back(sqlite3_column_int64(row.get(), 0));
        }
    }
    if (!body) {
        change([&] { return runWith(Query::remove, address); });
    } else if (_uses.size() >= kMostRememberedUses) {
        noteUses();
    }
    return body;
}

bool CacheDatabase::store(const std::string& address, std::span<const std::byte> body, std::uint64_t limit) {
    _looks = 0;
    return change([&] {
        return runWith(Query::remove, address) && addUses() && run(Query::tick) && insert(address, body) &&
               trim(limit);
    });
}

void CacheDatabase::setAside() {
    close();
    if (isInPlace()) {
        std::rename(_path.c_str(), (_path + ".damaged").c_str());
        ::unlink((_path + "-wal").c_str());
        ::unlink((_path + "-shm").c_str());
    }
}

ino_t CacheDatabase::inodeAtPath() const {
    struct stat status = {};
    return ::stat(_path.c_str(), &status) == 0 ? status.st_ino : 0;
}

bool CacheDatabase::note(int code) {
    fault = code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
    return fault == SQLITE_OK;
}

bool CacheDatabase::execute(const char* sql) {
    return note(sqlite3_exec(_handle, sql, nullptr, nullptr, nullptr));
}

void CacheDatabase::prepareFile() {
    sqlite3_extended_result_codes(_handle, 1);
    sqlite3_busy_timeout(_handle, kBusyMilliseconds);
    sqlite3_limit(_handle, SQLITE_LIMIT_LENGTH, kLargestValue);
    sqlite3_db_config(_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_progress_handler(
        _handle, kInstructionsPerLook,
        [](void* self) { return ++static_cast<CacheDatabase*>(self)->_looks > kMostLooks ? 1 : 0; }, this);
    if (!execute(kSettings)) {
        return;
    }
    // What may not be written can still be read, in whatever mode it is.
    if (sqlite3_db_readonly(_handle, "main") == 0 && !execute("PRAGMA journal_mode=WAL")) {
        return;
    }
    int version = versionOfFile();
    if (version == 0 && fault == SQLITE_OK) {
        // Another process may be making it at this moment.
        change([&] {
            version = versionOfFile();
            return fault == SQLITE_OK && (version != 0 || execute(kSchema));
        });
        version = version == 0 ? kVersion : version;
    }
    if (fault == SQLITE_OK && (version != kVersion || !isSumRight())) {
        fault = fault == SQLITE_OK ? SQLITE_FORMAT : fault;
    }
}

int CacheDatabase::numberFrom(const char* sql) {
    sqlite3_stmt* made = nullptr;
    if (!note(sqlite3_prepare_v2(_handle, sql, -1, &made, nullptr))) {
        return 0;
    }
    const std::unique_ptr<sqlite3_stmt, StatementDeleter> row(made);
    return note(sqlite3_step(made)) ? sqlite3_column_int(made, 0) : 0;
}

/// With a wrong sum the limit would mean nothing.

bool CacheDatabase::isSumRight() {
    return numberFrom("SELECT count(*) = 1 AND total(bytes) = (SELECT total(cost) FROM entry)"
                      " FROM state") == 1;
}

template <class Work>
bool CacheDatabase::change(const Work& work) {
    if (!execute("BEGIN IMMEDIATE")) {
        return false;
    }
    if (work() && execute("COMMIT")) {
        return true;
    }
    const int reason = fault;
    sqlite3_exec(_handle, "ROLLBACK", nullptr, nullptr, nullptr);
    fault = reason;
    return false;
}

CacheDatabase::UsedStatement CacheDatabase::statement(Query query) {
    auto& kept = _statements[query];
    if (!kept) {
        sqlite3_stmt* made = nullptr;
        if (note(sqlite3_prepare_v3(_handle, kQueries[query], -1, SQLITE_PREPARE_PERSISTENT, &made,
                                    nullptr))) {
            kept.reset(made);
        }
    }
    return UsedStatement(kept.get());
}

bool CacheDatabase::bind(const UsedStatement& row, int place, std::int64_t value) {
    return note(sqlite3_bind_int64(row.get(), place, value));
}

bool CacheDatabase::bind(const UsedStatement& row, int place, const std::string& text) {
    return note(sqlite3_bind_text64(row.get(), place, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

bool CacheDatabase::bind(const UsedStatement& row, int place, std::span<const std::byte> bytes) {
    // No data would be NULL, which the table refuses.
    return note(sqlite3_bind_blob64(row.get(), place,
                                    bytes.empty() ? "" : static_cast<const void*>(bytes.data()), bytes.size(),
                                    SQLITE_STATIC));
}

/// True when there is a row.
bool CacheDatabase::step(const UsedStatement& row) {
    const int code = sqlite3_step(row.get());
    return note(code) && code == SQLITE_ROW;
}

bool CacheDatabase::finish(const UsedStatement& row) {
    step(row);
    return fault == SQLITE_OK;
}

bool CacheDatabase::run(Query query) {
    const auto row = statement(query);
    return row && finish(row);
}

template <class Value>
bool CacheDatabase::runWith(Query query, const Value& value) {
    const auto row = statement(query);
    return row && bind(row, 1, value) && finish(row);
}

bool CacheDatabase::insert(const std::string& address, std::span<const std::byte> body) {
    const auto row = statement(Query::addEntry);
    return row && bind(row, 1, address) && bind(row, 2, static_cast<std::int64_t>(body.size())) &&
           bind(row, 3, checksumOf(address, body)) && bind(row, 4, costOf(address.size(), body.size())) &&
           finish(row) && runWith(Query::addBody, body);
}

bool CacheDatabase::trim(std::uint64_t limit) {
    for (;;) {
        {
            const auto row = statement(Query::isOverLimit);
            if (!row || !bind(row, 1, static_cast<std::int64_t>(limit))) {
                return false;
            }
            if (!step(row) || sqlite3_column_int(row.get(), 0) == 0) {
                return fault == SQLITE_OK;
            }
        }
        if (!run(Query::removeOldest)) {
            return false;
        }
    }
}

bool CacheDatabase::addUses() {
    for (const std::int64_t id : std::exchange(_uses, {})) {
        if (!run(Query::tick) || !runWith(Query::use, id)) {
            return false;
        }
    }
    return true;
}

void CacheDatabase::noteUses() {
    if (!_uses.empty()) {
        change([this] { return addUses(); });
    }
}

void CacheDatabase::close() {
    for (auto& statement : _statements) {
        statement = nullptr;
    }
    sqlite3_close(std::exchange(_handle, nullptr));
}

} // namespace trelmix
