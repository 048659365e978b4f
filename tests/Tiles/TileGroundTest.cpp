#include "Tiles/TileGround.h"

#include "Geo/GeoUtils.h"
#include "support/CaseCount.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace trelmix::tile_ground_test {

using TileSet = std::set<TileIndex>;

std::unique_ptr<CameraProjection> projectionFor(ScreenPoint size, float zoom, double rotation = 0,
                                                double tilt = 0, Coordinate target = {43.7362, 7.4245}) {
    auto projection = std::make_unique<CameraProjection>(target, size);
    projection->setMapZoom(zoom);
    projection->setMapRotation(Radians(rotation));
    projection->setMapViewingAngle(Radians(tilt));
    return projection;
}

TileIndex tileAt(WorldMapPoint p, std::int64_t zoom) {
    const double side = 256.0 * std::exp2(22.0 - static_cast<double>(zoom));
    return {static_cast<std::int64_t>(std::floor(p.x / side)),
            static_cast<std::int64_t>(std::floor(p.y / side)), zoom};
}

/// Every visible ground point within reach, found by looking through the view's points one by one.
void expectEveryVisiblePointCovered(const CameraProjection& projection, const TileSet& tiles,
                                    std::int64_t zoom) {
    const ScreenPoint size = projection.mapDimensions();
    const WorldMapPoint target = projection.cameraTargetMapPoint();
    const WorldMapPoint bottom = projection.worldMapPoint(ScreenPoint{size.x / 2, size.y});
    const double behind = std::hypot(bottom.x - target.x, bottom.y - target.y);
    const WorldMapPoint forward{(target.x - bottom.x) / behind, (target.y - bottom.y) / behind};
    for (int i = 0; i <= 40; ++i) {
        for (int j = 0; j <= 30; ++j) {
            const WorldMapPoint p =
                projection.worldMapPoint(ScreenPoint{size.x * i / 40.0, size.y * j / 30.0});
            const double ahead = (p.x - target.x) * forward.x + (p.y - target.y) * forward.y;
            if (ahead <= 2 * behind * 0.999999) {
                ASSERT_TRUE(tiles.contains(tileAt(p, zoom)))
                    << "screen column " << i << " of 40, row " << j << " of 30, view " << size.x << " x "
                    << size.y << ", zoom " << projection.mapZoom() << ", rotation "
                    << projection.mapRotation().value << ", tilt " << projection.mapViewingAngle().value;
            }
        }
    }
}

/// The tiles up to where the distance falls back cover the view alone; from there on it grows again.
void expectViewFirst(const CameraProjection& projection, const std::vector<TileIndex>& tiles,
                     std::int64_t zoom) {
    const auto order = viewFirst(projection, tiles);
    ASSERT_EQ(TileSet(order.begin(), order.end()), TileSet(tiles.begin(), tiles.end()));
    const double side = 256.0 * std::exp2(22.0 - static_cast<double>(zoom));
    const WorldMapPoint target = projection.cameraTargetMapPoint();
    const auto distance = [&](const TileIndex& tile) {
        return std::hypot((static_cast<double>(tile.x) + 0.5) * side - target.x,
                          (static_cast<double>(tile.y) + 0.5) * side - target.y);
    };
    const auto isNearer = [&](const TileIndex& a, const TileIndex& b) { return distance(a) < distance(b); };
    const auto margin = std::is_sorted_until(order.begin(), order.end(), isNearer);
    EXPECT_TRUE(std::is_sorted(margin, order.end(), isNearer));
    expectEveryVisiblePointCovered(projection, TileSet(order.begin(), margin), zoom);
}

TEST(TileGround, everyVisiblePointWithinReachHasItsTileAlsoAfterAMoveThatTriggersNoCheck) {
    std::mt19937 random(7);
    const auto uniform = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int i = 0; i < caseCount(400) && !::testing::Test::HasFatalFailure(); ++i) {
        const auto made =
            projectionFor({std::round(uniform(100, 2000)), std::round(uniform(100, 1500))},
                          static_cast<float>(uniform(15, 23)), uniform(-4, 4),
                          i % 4 == 0 ? 0.0 : uniform(0, 0.9599), {uniform(-70, 70), uniform(-179, 179)});
        CameraProjection& projection = *made;
        const std::int64_t zoom = roundedZoom(projection.mapZoom());
        const TileNeed need = tilesInView(projection, projection.mapZoom());
        const TileSet tiles(need.tiles.begin(), need.tiles.end());
        ASSERT_EQ(tiles.size(), need.tiles.size()) << "a tile is listed twice";
        expectEveryVisiblePointCovered(projection, tiles, zoom);
        expectViewFirst(projection, need.tiles, zoom);
        const double step = 199.0 * std::exp2(22.0 - static_cast<double>(zoom));
        WorldMapPoint moved = projection.cameraTargetMapPoint();
        moved.x += uniform(-step, step);
        moved.y += uniform(-step, step);
        projection.setCameraTarget(moved, projection.cameraTarget());
        expectEveryVisiblePointCovered(projection, tiles, zoom);
    }
}

TEST(TileGround, theListBeginsWithTheBoxAndItsMarginColumnByColumn) {
    // In the middle of a tile a portrait view with all that may come into it fits the box.
    const double side = 256.0 * 32;
    const Coordinate centre = GeoUtils::coordinateOfScenePoint({68231.5 * side, 47701.5 * side});
    for (const ScreenPoint size : {ScreenPoint{375, 667}, ScreenPoint{1024, 768}}) {
        const auto made = projectionFor(size, 17, 0, 0, centre);
        const CameraProjection& projection = *made;
        const TileBox box = boundingBoxTiles(projection);
        const TileNeed need = tilesInView(projection, 17);
        std::size_t i = 0;
        for (std::int64_t x = box.eastMostTile - 1; x <= box.westMostTile + 1; ++x) {
            for (std::int64_t y = box.northMostTile - 1; y <= box.southMostTile + 1; ++y, ++i) {
                ASSERT_LT(i, need.tiles.size());
                EXPECT_EQ(need.tiles[i], (TileIndex{x, y, 17}));
            }
        }
        const bool isPortrait = size.x < size.y;
        EXPECT_EQ(need.tiles.size() == i, isPortrait) << "only a wide view needs more than the box";
    }
}

TEST(TileGround, extremeViewsAndZoomsOutsideTheGridStayWithinBounds) {
    for (const auto& [size, zoom] : {std::pair{ScreenPoint{400000, 50}, 23}, {ScreenPoint{320, 1}, 17}}) {
        const auto made = projectionFor(size, static_cast<float>(zoom), 0.3, 0.95);
        const TileNeed need = tilesInView(*made, static_cast<float>(zoom));
        EXPECT_EQ(need.tiles.size(), kMostTiles);
        const WorldMapPoint target = made->cameraTargetMapPoint();
        const TileSet tiles(need.tiles.begin(), need.tiles.end());
        EXPECT_TRUE(tiles.contains(tileAt(target, zoom)));
    }
    const auto made = projectionFor({400000, 50}, 23, 0.3, 0.95);
    const CameraProjection& projection = *made;
    for (const float zoom : {-1.0F, 24.0F, NAN, INFINITY}) {
        EXPECT_TRUE(tilesInView(projection, zoom).tiles.empty());
    }
    const auto empty = projectionFor({0, 0}, 17);
    EXPECT_LE(tilesInView(*empty, 17).tiles.size(), kMostTiles);
}

} // namespace trelmix::tile_ground_test
