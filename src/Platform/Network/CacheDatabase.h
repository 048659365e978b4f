#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <sqlite3.h>
#include <sys/types.h>

namespace trelmix {

/// The disk cache's file, open. Every operation that fails leaves SQLite's code in `fault`; the next one that
/// goes well takes it away. One thread at a time.
///
/// Longer than other classes, as each of its statements needs the one connection, its shelf and its fault.
class CacheDatabase {
public:
    explicit CacheDatabase(std::string path);
    ~CacheDatabase();
    CacheDatabase(const CacheDatabase&) = delete;
    CacheDatabase& operator=(const CacheDatabase&) = delete;

    int fault = SQLITE_OK;
    /// Whether a file that gives this code is of no use any more.
    static bool isDamage(int code);
    /// What an entry takes on disk, near enough: whole pages and its share of the indices.
    static std::int64_t costOf(std::size_t addressSize, std::size_t bodySize);

    std::optional<std::vector<std::byte>> find(const std::string& address);
    bool store(const std::string& address, std::span<const std::byte> body, std::uint64_t limit);
    /// Takes the file out of the way, unless somebody else has already put another in its place.
    void setAside();
    /// False when the file has been removed or replaced: what is written would be lost.
    bool isInPlace() const { return inodeAtPath() == _inode; }

private:
    enum Query { findEntry, remove, tick, addEntry, addBody, use, isOverLimit, removeOldest, queryCount };
    static const std::array<const char*, queryCount> kQueries;

    struct StatementDeleter {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    /// Gives a statement back to its shelf, ready for the next use.
    struct StatementReset {
        void operator()(sqlite3_stmt* statement) const {
            sqlite3_reset(statement);
            sqlite3_clear_bindings(statement);
        }
    };
    using UsedStatement = std::unique_ptr<sqlite3_stmt, StatementReset>;

    ino_t inodeAtPath() const;
    bool note(int code);
    bool execute(const char* sql);
    void prepareFile();
    int numberFrom(const char* sql);
    int versionOfFile() { return numberFrom("PRAGMA user_version"); }
    bool isSumRight();
    template <class Work>
    bool change(const Work& work);
    UsedStatement statement(Query query);
    bool bind(const UsedStatement& row, int place, std::int64_t value);
    bool bind(const UsedStatement& row, int place, const std::string& text);
    bool bind(const UsedStatement& row, int place, std::span<const std::byte> bytes);
    bool step(const UsedStatement& row);
    bool finish(const UsedStatement& row);
    bool run(Query query);
    template <class Value>
    bool runWith(Query query, const Value& value);
    bool insert(const std::string& address, std::span<const std::byte> body);
    bool trim(std::uint64_t limit);
    bool addUses();
    void noteUses();
    void close();

    std::string _path;
    sqlite3* _handle = nullptr;
    ino_t _inode = 0;
    int _looks = 0;
    std::array<std::unique_ptr<sqlite3_stmt, StatementDeleter>, queryCount> _statements;
    /// Entries that were found since the last transaction, in order: a look-up alone writes nothing.
    std::vector<std::int64_t> _uses;
};

} // namespace trelmix
