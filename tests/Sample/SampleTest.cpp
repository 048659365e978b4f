#include "common/scene/GeoJson.h"
#include "common/scene/SceneFile.h"
#include "common/tiles/MbtilesArchive.h"
#include "sample/DeckPainter.h"
#include "sample/ElevationPainter.h"
#include "sample/Icons.h"
#include "sample/SceneWriter.h"
#include "sample/TileArchive.h"
#include "sample/TownPainter.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace trelmix::sample::sample_test {

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

TEST(SampleTown, aPictureAcrossTileBordersIsTheOneThatTheTilesWereCutFrom) {
    const apps::ScratchFolder folder;
    const TownModel model = TownModel::build();
    for (const int zoom : {15, 17, 19}) {
        const TownPainter painter(model, zoom);
        const GlobalPixel ship = globalPixelOf(shipPoint(-90, 20), zoom);
        const auto pictureAt = [&](int x, int y, int side) {
            const Canvas canvas(side, side, false);
            painter.paint(canvas.cairo(), static_cast<std::int64_t>(ship.x) - 300 + x,
                          static_cast<std::int64_t>(ship.y) - 300 + y, side, side);
            EXPECT_TRUE(canvas.writePng(folder.path("a.png")));
            return decoded(folder.text("a.png"));
        };
        const auto whole = pictureAt(0, 0, 600);
        int worst = 0;
        for (const auto& [left, top] : {std::pair{0, 0}, {200, 200}, {400, 200}}) {
            const auto piece = pictureAt(left, top, 200);
            for (int i = 0; i < 200 * 200; ++i) {
                const auto one = colorAt(*piece, i % 200, i / 200);
                const auto other = colorAt(*whole, left + i % 200, top + i / 200);
                for (const std::size_t channel : {0U, 1U, 2U}) {
                    worst = std::max(worst, std::abs(one[channel] - other[channel]));
                }
            }
        }
        // Cut at a border, an edge may fall into the next of the rasteriser's 15 rows a pixel: one of them at
        // full contrast is 17 of 255. A label or a shape that is cut or missing shows far more.
        EXPECT_LE(worst, 17) << zoom;
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

} // namespace trelmix::sample::sample_test
