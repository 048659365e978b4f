#include "common/tiles/MbtilesArchive.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <locale>
#include <sqlite3.h>
#include <sstream>

namespace trelmix::apps {

namespace {

// An archive's "tiles" may be a view of somebody else's making; a query that works longer than this many
// thousand steps of SQLite's machine is stopped. Counting a table of ten million tiles without an index stays
// below.
constexpr int kStepsPerCheck = 100'000;
constexpr int kMaximumChecks = 1'000;

int countCheck(void* checks) {
    return ++*static_cast<int*>(checks) > kMaximumChecks ? 1 : 0;
}

std::string columnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text != nullptr
               ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)))
               : std::string();
}

/// The address by which SQLite reads a file as it lies there, without files beside it.
std::string immutableAddress(const std::string& path) {
    std::string address = "file:";
    for (const char c : std::filesystem::absolute(path).string()) {
        if (c == '%' || c == '?' || c == '#') {
            constexpr const char* kDigits = "0123456789ABCDEF";
            address += {'%', kDigits[c / 16], kDigits[c % 16]};
        } else {
            address += c;
        }
    }
    return address + "?immutable=1";
}

} // namespace

void MbtilesArchive::Closing::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}
void MbtilesArchive::Closing::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Result<std::unique_ptr<MbtilesArchive>> MbtilesArchive::open(const std::string& path) {
    std::unique_ptr<MbtilesArchive> archive(new MbtilesArchive(path));
    std::string reason = archive->openDatabase();
    if (reason.empty()) {
        reason = archive->readMetadata();
    }
    if (reason.empty()) {
        reason = archive->readTileRange();
    }
    if (!reason.empty()) {
        return Result<std::unique_ptr<MbtilesArchive>>::failure(path + ": " + reason);
    }
    return archive;
}

MbtilesArchive::~MbtilesArchive() = default;

std::string MbtilesArchive::openDatabase() {
    std::error_code error;
    if (!std::filesystem::exists(_path, error)) {
        return "does not exist";
    }
    if (std::filesystem::is_directory(_path, error)) {
        return "is a folder, not a file";
    }
    if (!std::filesystem::is_regular_file(_path, error)) {
        return "is no file";
    }
    // A name like "file:x" is a name all the same.
    int result = openAt(std::filesystem::absolute(_path).string());
    // An archive in write-ahead mode wants to share a file beside it, which a read-only folder does not take.
    const auto log = std::filesystem::file_size(_path + "-wal", error);
    if (result == SQLITE_OK && !canRead() && sqlite3_errcode(_database.get()) == SQLITE_CANTOPEN &&
        (error || log == 0)) {
        result = openAt(immutableAddress(_path));
    }
    return result == SQLITE_OK ? std::string() : "cannot be opened: " + sqliteReason();
}

int MbtilesArchive::openAt(const std::string& place) {
    sqlite3* database = nullptr;
    const int result = sqlite3_open_v2(
        place.c_str(), &database,
        SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_URI, nullptr);
    _database.reset(database);
    if (result == SQLITE_OK) {
        sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_limit(database, SQLITE_LIMIT_LENGTH, static_cast<int>(kMaximumTileBytes));
        sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
        sqlite3_busy_timeout(database, 2000);
    }
    return result;
}

bool MbtilesArchive::canRead() const {
    const Statement schema = prepare("SELECT count(*) FROM sqlite_master");
    return schema && step(schema) == SQLITE_ROW;
}

std::string MbtilesArchive::readMetadata() {
    if (!canRead()) {
        return "is no tile archive: " + sqliteReason();
    }
    // Metadata may be missing; the tiles say enough.
    const Statement query = prepare("SELECT name, value FROM metadata LIMIT 1000");
    while (query && step(query) == SQLITE_ROW) {
        const std::string name = columnText(query.get(), 0);
        const std::string value = columnText(query.get(), 1);
        if (name == "attribution") {
            _attribution = value;
        } else if (name == "bounds") {
            readBounds(value);
        } else if (name == "format" && value == "pbf") {
            return "holds vector tiles; only pictures (PNG, JPEG, WebP) can be shown";
        }
    }
    return {};
}

void MbtilesArchive::readBounds(const std::string& text) {
    std::istringstream numbers(text);
    numbers.imbue(std::locale::classic());
    double west = 0;
    double south = 0;
    double east = 0;
    double north = 0;
    char comma[3] = {};
    numbers >> west >> comma[0] >> south >> comma[1] >> east >> comma[2] >> north;
    const TileBounds bounds{{south, west}, {north, east}};
    if (numbers && CLLocationCoordinate2DIsValid(bounds.southWest) &&
        CLLocationCoordinate2DIsValid(bounds.northEast) && south < north && west < east) {
        _bounds = bounds;
    }
}

std::string MbtilesArchive::readTileRange() {
    const Statement zooms = prepare("SELECT min(zoom_level), max(zoom_level) FROM tiles");
    if (!zooms) {
        return "is no tile archive: " + sqliteReason();
    }
    if (step(zooms) != SQLITE_ROW) {
        return "cannot be read: " + sqliteReason();
    }
    if (sqlite3_column_type(zooms.get(), 0) != SQLITE_INTEGER ||
        sqlite3_column_type(zooms.get(), 1) != SQLITE_INTEGER) {
        return "holds no tiles";
    }
    _lowestZoom = sqlite3_column_int64(zooms.get(), 0);
    _highestZoom = sqlite3_column_int64(zooms.get(), 1);
    if (_lowestZoom < 0 || _highestZoom > kDeepestTileZoom) {
        return "has tiles at zoom " + std::to_string(_lowestZoom < 0 ? _lowestZoom : _highestZoom);
    }
    _tileQuery =
        prepare("SELECT tile_data FROM tiles WHERE zoom_level = ?1 AND tile_column = ?2 AND tile_row = ?3");
    if (!_tileQuery) {
        return "is no tile archive: " + sqliteReason();
    }
    if (!_bounds) {
        const Statement range =
            prepare("SELECT min(tile_column), max(tile_column), min(tile_row), max(tile_row) "
                    "FROM tiles WHERE zoom_level = ?1");
        if (range && sqlite3_bind_int64(range.get(), 1, _highestZoom) == SQLITE_OK &&
            step(range) == SQLITE_ROW) {
            const std::int64_t last = (std::int64_t{1} << _highestZoom) - 1;
            const auto column = [&](int index) {
                return std::clamp<std::int64_t>(sqlite3_column_int64(range.get(), index), 0, last);
            };
            _bounds = boundsOfTiles(_highestZoom, column(0), last - column(3), column(1), last - column(2));
        }
    }
    return {};
}

Result<std::optional<TileBytes>> MbtilesArchive::tile(const TileIndex& tile) const {
    if (!isInWorld(tile) || tile.zoom < _lowestZoom || tile.zoom > _highestZoom) {
        return std::optional<TileBytes>();
    }
    const std::lock_guard lock(_mutex);
    sqlite3_stmt* query = _tileQuery.get();
    sqlite3_bind_int64(query, 1, tile.zoom);
    sqlite3_bind_int64(query, 2, tile.x);
    sqlite3_bind_int64(query, 3, (std::int64_t{1} << tile.zoom) - 1 - tile.y);
    const int result = step(_tileQuery);
    std::optional<TileBytes> bytes;
    std::string reason;
    if (result == SQLITE_ROW) {
        if (const auto* data = static_cast<const std::byte*>(sqlite3_column_blob(query, 0))) {
            bytes.emplace(data, data + sqlite3_column_bytes(query, 0));
        }
    } else if (result != SQLITE_DONE) {
        reason = sqliteReason();
    }
    sqlite3_reset(query);
    if (!reason.empty()) {
        return Result<std::optional<TileBytes>>::failure(reason);
    }
    return bytes;
}

MbtilesArchive::Statement MbtilesArchive::prepare(const char* sql) const {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(_database.get(), sql, -1, &statement, nullptr);
    return Statement(statement);
}

int MbtilesArchive::step(const Statement& statement) const {
    int checks = 0;
    sqlite3_progress_handler(_database.get(), kStepsPerCheck, countCheck, &checks);
    const int result = sqlite3_step(statement.get());
    sqlite3_progress_handler(_database.get(), 0, nullptr, nullptr);
    return result;
}

std::string MbtilesArchive::sqliteReason() const {
    return _database ? sqlite3_errmsg(_database.get()) : "out of memory";
}

} // namespace trelmix::apps
