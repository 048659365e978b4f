#include "common/scene/GeoJson.h"
#include "common/scene/SceneFile.h"
#include "common/tiles/MbtilesArchive.h"
#include "sample/Icons.h"
#include "sample/SceneWriter.h"
#include "sample/ShipPainter.h"
#include "sample/TilePyramid.h"
#include "sample/TownPainter.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace trelmix::sample {
namespace {

TEST(SampleFiles, theTownsArchiveIsWholeOnEveryZoomAndEveryTileDecodes) {
    const apps::ScratchFolder folder;
    const std::string path = folder.path("harbour.mbtiles");
    ASSERT_EQ(writeArchive(path, "Trelhaven", townRanges(), paintTown(TownModel::build(), 2)), "");
    EXPECT_LT(std::filesystem::file_size(path), 15U << 20);
    const auto archive = apps::MbtilesArchive::open(path);
    ASSERT_TRUE(archive) << archive.reason();
    EXPECT_EQ((*archive)->attribution(), "Trelmix sample data");
    for (const TileRange& range : townRanges()) {
        const GlobalPixel centre = globalPixelAt(kCentre, range.zoom);
        EXPECT_TRUE(centre.x / kTileSize > range.left && centre.x / kTileSize < range.right + 1);
        EXPECT_TRUE(centre.y / kTileSize > range.top && centre.y / kTileSize < range.bottom + 1);
        for (int i = 0; i < range.count(); ++i) {
            const int columns = range.right - range.left + 1;
            const auto tile =
                (*archive)->tile({range.left + i % columns, range.top + i / columns, range.zoom});
            ASSERT_TRUE(tile && *tile) << range.zoom;
            const auto image = UIImage::withData(**tile);
            ASSERT_TRUE(image) << range.zoom;
            EXPECT_TRUE(image->isOpaque() && image->pixelWidth() == kTileSize &&
                        image->pixelHeight() == kTileSize);
        }
    }
}

/// The largest difference of a channel between a piece and the part of a picture at (left, top).
int largestDifference(const Canvas& piece, const Canvas& whole, int left, int top) {
    const auto channel = [](const Canvas& canvas, int x, int y, int i) {
        const std::ptrdiff_t row = cairo_image_surface_get_stride(canvas.image());
        return int{cairo_image_surface_get_data(canvas.image())[y * row + 4 * x + i]};
    };
    int worst = 0;
    for (int y = 0; y < cairo_image_surface_get_height(piece.image()); ++y) {
        for (int x = 0; x < cairo_image_surface_get_width(piece.image()); ++x) {
            for (int i = 0; i < 3; ++i) {
                const int difference = channel(piece, x, y, i) - channel(whole, left + x, top + y, i);
                worst = std::max(worst, std::abs(difference));
            }
        }
    }
    return worst;
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
        cairo_surface_flush(whole.image());
        for (const auto& [x, y] : {std::pair{0, 0}, {200, 200}, {400, 200}}) {
            const Canvas piece(200, 200, false);
            painter.paint(piece.cairo(), left + x, top + y, 200, 200);
            cairo_surface_flush(piece.image());
            // Cut at a border, an edge may fall into the next of the rasteriser's 15 rows a pixel: one of
            // them at full contrast is 17 of 255. A label or a shape that is cut or missing shows far more.
            EXPECT_LE(largestDifference(piece, whole, x, y), 17) << zoom;
        }
    }
}

TEST(SampleTown, aCodedTileTellsThePlaceOfEachOfItsPixels) {
    const Tile tile = paintCoded(2).back();
    const auto image = UIImage::withData(tile.png);
    ASSERT_TRUE(image);
    for (const auto& [x, y] : {std::pair{0, 255}, {77, 130}, {255, 0}}) {
        const auto [red, green, blue] = colorAt(*image, x, y);
        EXPECT_EQ(red | (blue >> 4) << 8, (tile.column * kTileSize + x) & 0xFFF);
        EXPECT_EQ(green | (blue & 15) << 8, (tile.row * kTileSize + y) & 0xFFF);
    }
}

TEST(SampleFiles, theScenesAreReadAndNameOnlyFilesThatAreThere) {
    const apps::ScratchFolder folder;
    ASSERT_EQ(writeScenes(folder.path(""), TownModel::build()), "");
    std::filesystem::create_directories(folder.path("icons"));
    ASSERT_EQ(writeIcons(folder.path("icons")), "");
    for (const char* name : {"harbour.json", "harbour-tilted.json", "overlays.json"}) {
        const auto scene = apps::readSceneFile(folder.path(name));
        ASSERT_TRUE(scene) << scene.reason();
        EXPECT_TRUE(scene->camera);
        for (const apps::SceneMarker& marker : scene->markers) {
            EXPECT_TRUE(std::filesystem::exists(marker.icon)) << marker.icon;
        }
        for (const apps::SceneGeoJson& file : scene->geojson) {
            const auto features = apps::readGeoJsonFile(file.file);
            ASSERT_TRUE(features) << features.reason();
            EXPECT_GT(features->features.size(), 8U);
        }
    }
}

} // namespace
} // namespace trelmix::sample
