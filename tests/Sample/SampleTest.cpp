#include "common/scene/GeoJson.h"
#include "common/scene/SceneFile.h"
#include "sample/Icons.h"
#include "sample/SceneWriter.h"
#include "sample/ShipPainter.h"
#include "sample/TilePyramid.h"
#include "sample/TownPainter.h"
#include "Sideview/SideviewProjection.h"
#include "support/ScratchFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <Trelmix/Platform/UIImage.h>

namespace trelmix::sample {
namespace {

struct Archive {
    std::map<std::string, std::string> metadata;
    std::map<int, TileRange> ranges; ///< rows from the north
    std::map<int, int> counts;
    int damaged = 0;
};

Archive readArchive(const std::string& path) {
    sqlite3* handle = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(handle, &sqlite3_close);
    const auto each = [&](const char* sql, const auto& row) {
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr), SQLITE_OK);
        while (sqlite3_step(statement) == SQLITE_ROW)
            row(statement);
        sqlite3_finalize(statement);
    };
    Archive archive;
    each("SELECT name, value FROM metadata", [&](sqlite3_stmt* row) {
        const auto text = [&](int column) {
            return std::string(reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
        };
        archive.metadata[text(0)] = text(1);
    });
    each("SELECT zoom_level, tile_column, tile_row, tile_data FROM tiles", [&](sqlite3_stmt* row) {
        const int zoom = sqlite3_column_int(row, 0);
        const int column = sqlite3_column_int(row, 1);
        const int fromNorth = (1 << zoom) - 1 - sqlite3_column_int(row, 2);
        TileRange& range =
            archive.ranges.try_emplace(zoom, TileRange{zoom, column, fromNorth, column, fromNorth})
                .first->second;
        range = {zoom, std::min(range.left, column), std::min(range.top, fromNorth),
                 std::max(range.right, column), std::max(range.bottom, fromNorth)};
        ++archive.counts[zoom];
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, 3));
        const auto image =
            UIImage::withData({static_cast<const std::byte*>(sqlite3_column_blob(row, 3)), size});
        if (!image || image->pixelWidth() != kTileSize || image->pixelHeight() != kTileSize ||
            !image->isOpaque())
            ++archive.damaged;
    });
    return archive;
}

TEST(SampleFiles, theTownsArchiveIsWholeOnEveryZoomAndEveryTileDecodes) {
    const apps::ScratchFolder folder;
    const TownModel model = TownModel::build();
    const std::string path = folder.path("harbour.mbtiles");
    ASSERT_EQ(writeArchive(path, "Trelhaven", townRanges(), paintTown(model, 2)), "");
    EXPECT_LT(std::filesystem::file_size(path), 15U << 20);

    Archive archive = readArchive(path);
    EXPECT_EQ(archive.damaged, 0);
    EXPECT_EQ(archive.metadata["format"], "png");
    EXPECT_EQ(archive.metadata["attribution"], "Trelmix sample data");
    ASSERT_EQ(archive.ranges.size(), 5U);
    for (const auto& [zoom, range] : archive.ranges) {
        EXPECT_EQ(archive.counts[zoom], range.count()) << zoom;
        const GlobalPixel centre = globalPixelAt(kCentre, zoom);
        EXPECT_TRUE(centre.x / kTileSize > range.left && centre.x / kTileSize < range.right + 1) << zoom;
        EXPECT_TRUE(centre.y / kTileSize > range.top && centre.y / kTileSize < range.bottom + 1) << zoom;
    }
}

TEST(SampleTown, aPictureAcrossTileBordersIsTheOneThatTheTilesWereCutFrom) {
    const TownModel model = TownModel::build();
    for (const int zoom : {15, 17, 19}) {
        const TownPainter painter(model, zoom);
        const GlobalPixel ship = globalPixelOf(shipPoint(-90, 20), zoom);
        const auto left = static_cast<std::int64_t>(ship.x) - 300;
        const auto top = static_cast<std::int64_t>(ship.y) - 300;
        const Canvas whole(600, 600, false);
        painter.paint(whole.cairo(), left, top, 600, 600);
        const Canvas piece(200, 200, false);
        int worst = 0;
        for (int y = 0; y < 600; y += 200) {
            for (int x = 0; x < 600; x += 200) {
                painter.paint(piece.cairo(), left + x, top + y, 200, 200);
                cairo_surface_flush(piece.image());
                cairo_surface_flush(whole.image());
                const unsigned char* small = cairo_image_surface_get_data(piece.image());
                const unsigned char* large = cairo_image_surface_get_data(whole.image());
                const int smallStride = cairo_image_surface_get_stride(piece.image());
                const int largeStride = cairo_image_surface_get_stride(whole.image());
                for (int row = 0; row < 200; ++row)
                    for (int column = 0; column < 800; ++column)
                        if (column % 4 != 3)
                            worst =
                                std::max(worst, std::abs(small[row * smallStride + column] -
                                                         large[(y + row) * largeStride + x * 4 + column]));
            }
        }
        // Cut at a border, an edge may fall into the next of the rasteriser's 15 rows a pixel: one of them at
        // full contrast is 17 of 255. A label or a shape that is cut or missing shows far more.
        EXPECT_LE(worst, 17) << zoom;
    }
}

TEST(SampleTown, aCodedTileTellsThePlaceOfEachOfItsPixels) {
    const std::vector<Tile> tiles = paintCoded(2);
    int total = 0;
    for (const TileRange& range : codedRanges())
        total += range.count();
    ASSERT_EQ(tiles.size(), static_cast<std::size_t>(total));
    const Tile& tile = tiles.back();
    const auto image = UIImage::withData(tile.png);
    ASSERT_TRUE(image);
    for (const int x : {0, 77, 255}) {
        for (const int y : {0, 130, 255}) {
            const std::uint8_t* pixel = image->pixels().data() + 4 * (y * kTileSize + x);
            const int decodedX = pixel[0] | (pixel[2] >> 4) << 8;
            const int decodedY = pixel[1] | (pixel[2] & 15) << 8;
            EXPECT_EQ(decodedX, (tile.column * kTileSize + x) & 0xFFF);
            EXPECT_EQ(decodedY, (tile.row * kTileSize + y) & 0xFFF);
        }
    }
}

TEST(SampleFiles, theLevelsFileNamesThePixelsAtWhichTheDecksAreDrawn) {
    const apps::ScratchFolder folder;
    ASSERT_EQ(writeScenes(folder.path(""), TownModel::build()), "");
    const auto projection =
        SideviewProjection::make(folder.path("side/levels.json"), kSideWidth, kSideHeight);
    ASSERT_TRUE(projection) << projection.reason();
    EXPECT_NEAR((*projection)->imagePointsPerMeter(), kSideScale, 1e-9);
    for (const Deck& deck : kDecks) {
        for (const double forward : {-90.0, -20.0, 55.0, 90.0}) {
            const LatLon place = shipCoordinate(forward, 5);
            const CGPoint point = (*projection)->point({place.lat, place.lon}, deck.level);
            EXPECT_NEAR(point.x, kSideLeftOffset + (forward + kShipLength / 2) * kSideScale, 0.1);
            const double middle = deck.floor + deck.ceiling / 2;
            EXPECT_NEAR(point.y, kSideHeight - kSideBottomOffset - middle * kSideScale, 1e-6);
            EXPECT_EQ((*projection)->levelNumber(point), deck.level);
        }
    }
}

TEST(SampleFiles, theScenesAreReadAndNameOnlyFilesThatAreThere) {
    const apps::ScratchFolder folder;
    const TownModel model = TownModel::build();
    ASSERT_EQ(writeScenes(folder.path(""), model), "");
    std::filesystem::create_directories(folder.path("icons"));
    ASSERT_EQ(writeIcons(folder.path("icons")), "");
    for (const char* name : {"harbour.json", "harbour-tilted.json", "overlays.json"}) {
        const auto scene = apps::readSceneFile(folder.path(name));
        ASSERT_TRUE(scene) << scene.reason();
        EXPECT_TRUE(scene->camera);
        for (const apps::SceneMarker& marker : scene->markers)
            EXPECT_TRUE(std::filesystem::exists(marker.icon)) << marker.icon;
        for (const apps::SceneGeoJson& file : scene->geojson) {
            const auto features = apps::readGeoJsonFile(file.file);
            ASSERT_TRUE(features) << features.reason();
            EXPECT_GT(features->features.size(), 8U);
        }
    }
}

} // namespace
} // namespace trelmix::sample
