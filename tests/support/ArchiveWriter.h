#pragma once

#include <cstdint>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace trelmix::apps {

/// Writes small tile archives for tests; rows are given from the north and stored from the south.
class ArchiveWriter {
public:
    explicit ArchiveWriter(const std::string& path) {
        sqlite3_open(path.c_str(), &database);
        run("PRAGMA synchronous = OFF");
        run("PRAGMA journal_mode = MEMORY");
        run("CREATE TABLE metadata (name text, value text)");
        run("CREATE TABLE tiles (zoom_level integer, tile_column integer, tile_row integer, tile_data blob)");
    }
    ~ArchiveWriter() { sqlite3_close(database); }
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    void run(const std::string& sql) { sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr); }
    void metadata(const std::string& name, const std::string& value) {
        run("INSERT INTO metadata VALUES ('" + name + "', '" + value + "')");
    }
    void tile(std::int64_t zoom, std::int64_t x, std::int64_t y, const std::vector<std::byte>& bytes) {
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(database, "INSERT INTO tiles VALUES (?1, ?2, ?3, ?4)", -1, &insert, nullptr);
        sqlite3_bind_int64(insert, 1, zoom);
        sqlite3_bind_int64(insert, 2, x);
        sqlite3_bind_int64(insert, 3, (std::int64_t{1} << zoom) - 1 - y);
        sqlite3_bind_blob(insert, 4, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
        sqlite3_step(insert);
        sqlite3_finalize(insert);
    }

private:
    sqlite3* database = nullptr;
};

} // namespace trelmix::apps
