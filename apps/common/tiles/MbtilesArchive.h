#pragma once

#include "common/tiles/TileStore.h"

#include <memory>
#include <mutex>

struct sqlite3;
struct sqlite3_stmt;

namespace trelmix::apps {

/// Raster tiles in one SQLite file, rows counted from the south. Opened for reading only. Longer than other
/// classes, as whatever may be wrong with somebody else's file is met here.
class MbtilesArchive final : public TileStore {
public:
    /// The reason begins with the path: a missing or damaged file, one that is no archive, one with vector
    /// tiles.
    static Result<std::unique_ptr<MbtilesArchive>> open(const std::string& path);
    ~MbtilesArchive() override;

    Result<std::optional<TileBytes>> tile(const TileIndex& tile) const override;
    std::optional<TileBounds> bounds() const override { return _bounds; }
    std::string attribution() const override { return _attribution; }
    const std::string& name() const override { return _path; }

    /// The zooms of the tiles that are there.
    std::int64_t lowestZoom() const override { return _lowestZoom; }
    std::int64_t highestZoom() const { return _highestZoom; }

private:
    struct Closing {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Closing>;

    explicit MbtilesArchive(std::string path) : _path(std::move(path)) {}
    std::string openDatabase();
    int openAt(const std::string& place);
    bool canRead() const;
    std::string readMetadata();
    std::string readTileRange();
    void readBounds(const std::string& text);
    Statement prepare(const char* sql) const;
    int step(const Statement& statement) const;
    std::string sqliteReason() const;

    std::string _path;
    std::unique_ptr<sqlite3, Closing> _database;
    Statement _tileQuery;
    mutable std::mutex _mutex;
    std::optional<TileBounds> _bounds;
    std::string _attribution;
    std::int64_t _lowestZoom = 0;
    std::int64_t _highestZoom = 0;
};

} // namespace trelmix::apps
