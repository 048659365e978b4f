#include "TileArchive.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sqlite3.h>

namespace trelmix::sample {

namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

bool run(sqlite3* database, const char* sql) {
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

Statement prepare(sqlite3* database, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
    return {statement, &sqlite3_finalize};
}

bool finishRow(sqlite3_stmt* statement) {
    const bool isDone = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_reset(statement);
    return isDone;
}

std::string degrees(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7f", value);
    return text;
}

/// West, south, east, north of the area that every zoom level covers.
std::string boundsOf(const TileRange& finest) {
    const auto corner = [&](int column, int row) {
        return latLonAt({static_cast<double>(column) * kTileSize, static_cast<double>(row) * kTileSize},
                        finest.zoom);
    };
    const LatLon northWest = corner(finest.left, finest.top);
    const LatLon southEast = corner(finest.right + 1, finest.bottom + 1);
    return degrees(northWest.lon) + "," + degrees(southEast.lat) + "," + degrees(southEast.lon) + "," +
           degrees(northWest.lat);
}

bool insertMetadata(sqlite3* database, const std::string& name, const std::vector<TileRange>& ranges) {
    const std::pair<std::string, std::string> entries[] = {
        {"name", name},
        {"description", "A fictional harbour town"},
        {"type", "baselayer"},
        {"version", "1"},
        {"format", "png"},
        {"attribution", "Trelmix sample data"},
        {"bounds", boundsOf(ranges.back())},
        {"center", degrees(kCentre.lon) + "," + degrees(kCentre.lat) + ",17"},
        {"minzoom", std::to_string(ranges.front().zoom)},
        {"maxzoom", std::to_string(ranges.back().zoom)},
    };
    const Statement insert = prepare(database, "INSERT INTO metadata VALUES (?, ?)");
    for (const auto& [key, value] : entries) {
        sqlite3_bind_text(insert.get(), 1, key.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert.get(), 2, value.c_str(), -1, SQLITE_TRANSIENT);
        if (!finishRow(insert.get())) {
            return false;
        }
    }
    return true;
}

bool insertTiles(sqlite3* database, const std::vector<Tile>& tiles) {
    const Statement insert = prepare(database, "INSERT INTO tiles VALUES (?, ?, ?, ?)");
    for (const Tile& tile : tiles) {
        if (tile.png.empty()) {
            return false;
        }
        sqlite3_bind_int(insert.get(), 1, tile.zoom);
        sqlite3_bind_int(insert.get(), 2, tile.column);
        // The archive counts rows from the south.
        sqlite3_bind_int(insert.get(), 3, (1 << tile.zoom) - 1 - tile.row);
        sqlite3_bind_blob(insert.get(), 4, tile.png.data(), static_cast<int>(tile.png.size()), SQLITE_STATIC);
        if (!finishRow(insert.get())) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string writeArchive(const std::string& path, const std::string& name,
                         const std::vector<TileRange>& ranges, const std::vector<Tile>& tiles) {
    // Written aside and renamed, so that whoever reads the old archive meanwhile never sees half of the new
    // one.
    const std::string partial = path + ".part";
    std::error_code error;
    std::filesystem::remove(partial, error);
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open(partial.c_str(), &handle);
    Database database(handle, &sqlite3_close);
    if (opened != SQLITE_OK) {
        return partial + ": " + sqlite3_errmsg(handle);
    }
    const bool isWritten =
        run(handle, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN;"
                    "CREATE TABLE metadata (name text, value text);"
                    "CREATE TABLE tiles (zoom_level integer, tile_column integer, tile_row integer,"
                    " tile_data blob);") &&
        insertMetadata(handle, name, ranges) && insertTiles(handle, tiles) &&
        run(handle, "CREATE UNIQUE INDEX tile_index ON tiles (zoom_level, tile_column, tile_row);"
                    "COMMIT;");
    if (!isWritten) {
        return partial + ": " + sqlite3_errmsg(handle);
    }
    database.reset();
    std::filesystem::rename(partial, path, error);
    return error ? path + ": " + error.message() : "";
}

} // namespace trelmix::sample
