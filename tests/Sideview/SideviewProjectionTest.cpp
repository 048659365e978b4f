#include "Sideview/LevelsText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <utility>

namespace trelmix::sideview_projection_test {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr CLLocationCoordinate2D kInTheBox{53.541, 9.962};

std::string level(const std::string& number, double floor, double height) {
    return R"({"levelNumber": )" + number + R"(, "levelbounds": [{"relativeheight": )" +
           std::to_string(floor) + R"(, "ceilingheight": )" + std::to_string(height) + "}]}";
}

std::shared_ptr<const SideviewProjection> withLevels(const std::string& levels, double height = 400) {
    return projectionOf(levelsText(R"("bearing": 30, "levels": [)" + levels + "],"), 1000, height);
}

class CornersOf final : public TrelmixMapProjection {
public:
    explicit CornersOf(std::array<CLLocationCoordinate2D, 4> corners) : _corners(corners) {}
    CLLocationCoordinate2D topLeftCoordinate() const override { return _corners[0]; }
    CLLocationCoordinate2D bottomLeftCoordinate() const override { return _corners[1]; }
    CLLocationCoordinate2D topRightCoordinate() const override { return _corners[2]; }
    CLLocationCoordinate2D bottomRightCoordinate() const override { return _corners[3]; }
    CGPoint screenCoordinateFor(CLLocationCoordinate2D) const override { return {}; }
    CLLocationCoordinate2D worldCoordinateFor(CGPoint) const override { return {}; }

private:
    std::array<CLLocationCoordinate2D, 4> _corners;
};

TEST(SideviewProjection, oneScaleHoldsForMarginsAndLevels) {
    const auto side = projectionOf(levelsText(R"("bearing": 30,)" + kTwoLevels));
    ASSERT_TRUE(side);
    EXPECT_DOUBLE_EQ(side->netLevelHeights(), 7);
    EXPECT_DOUBLE_EQ(side->totalHeight(), 8.4);
    EXPECT_NEAR(side->imagePointsPerMeter(), 35.714285714285715, 1e-12);
    EXPECT_NEAR(side->point(kInTheBox, 0).y, 226.42857142857144, 1e-9);
    EXPECT_NEAR(side->point(kInTheBox, 1).y, 101.42857142857142, 1e-9);
    EXPECT_EQ(side->point(kInTheBox, 7).y, 0) << "a level the file does not have";
    EXPECT_EQ(side->point(kInTheBox, 7).x, side->point(kInTheBox, 1).x);
    EXPECT_EQ(side->levelNumber({0, 10}), 1) << "above everything: the nearest";
    EXPECT_EQ(side->levelInfo(1)->levelBounds->front().ceilingHeight, 4);
    EXPECT_FALSE(side->levelInfo(2));
}

TEST(SideviewProjection, touchingLevelsGiveTheLaterOneAndGapsTheNearer) {
    const auto touching = withLevels(level("0", 0, 4) + "," + level("1", 4, 6));
    ASSERT_TRUE(touching);
    EXPECT_EQ(touching->levelNumber({0, 240}), 1);
    EXPECT_EQ(withLevels(level("1", 4, 6) + "," + level("0", 0, 4))->levelNumber({0, 240}), 0);

    // 20 image points per metre: level 5 covers heights 0 to 100, level 6 200 to 500.
    const auto gap = withLevels(level("5", 0, 5) + "," + level("6", 10, 15));
    EXPECT_EQ(gap->levelNumber({0, 400 - 149}), 5);
    EXPECT_EQ(gap->levelNumber({0, 400 - 151}), 6);
    EXPECT_EQ(gap->levelNumber({0, 400 - 150}), 5) << "the first of equally near ones";
    EXPECT_EQ(gap->levelNumber({0, kNaN}), kLevelNotFound);

    const auto overlapping = withLevels(level("1", 0, 4) + "," + level("2", 2, 6));
    const std::vector<SideviewLevelBounds> both = {{0, 4}, {2, 6}};
    EXPECT_EQ(overlapping->levelBounds({0, 400 - 3 * 40}), both);
    EXPECT_EQ(overlapping->levelNumber({0, 400 - 3 * 40}), 2);
    EXPECT_EQ(overlapping->levelHeight({0, 400 - 3 * 40}), 4);
}

TEST(SideviewProjection, aLevelMayBeNumberedLikeTheNotFoundResultAndMayHaveNoNumber) {
    EXPECT_EQ(withLevels(level("-1337", 0, 4))->levelAt({0, 390}), kLevelNotFound);
    const auto unnumbered = withLevels(level("1.5", 0, 4) + "," + level("1", 4, 6));
    EXPECT_EQ(unnumbered->levelNumber({0, 390}), 1) << "the nearest of those with a number";
    const auto nobody = withLevels(level("true", 0, 4));
    EXPECT_FALSE(nobody->levelAt({0, 200}));
    EXPECT_EQ(nobody->levelHeight({0, 200}), 4);
}

TEST(SideviewProjection, levelsWithoutBoundsAreNeverFoundAndEmptyOnesLowerTheNetHeight) {
    const std::string bare = R"({"levelNumber": 1}, {"levelNumber": 1, "levelbounds": []},)";
    const auto side = withLevels(bare + level("1", 0, 4) + R"(, {"levelNumber": 2, "levelbounds": [
        {"relativeheight": 4, "ceilingheight": 2.5}, {"relativeheight": 4, "ceilingheight": 3}]})");
    ASSERT_TRUE(side);
    EXPECT_EQ(side->netLevelHeights(), -1 + 4 + 3);
    EXPECT_NEAR(side->point(kInTheBox, 1).y, 400 - 2 * 400.0 / 6, 1e-9)
        << "passed over for the one with bounds";
    EXPECT_EQ(side->levelInfo(1), (SideviewLevel{1, std::nullopt}));
}

TEST(SideviewProjection, aFileWithoutLevelsKeepsItsHorizontalMapping) {
    const auto side = projectionOf(levelsText(R"("bearing": 30, "bottomOffset": 20,)"));
    ASSERT_TRUE(side);
    EXPECT_EQ(side->totalHeight(), 0);
    EXPECT_EQ(side->levelNumber({0, 100}), kLevelNotFound);
    EXPECT_TRUE(side->levelBounds({0, 100}).empty());
    EXPECT_EQ(side->levelHeight({0, 100}), 0);
    EXPECT_EQ(side->point(kInTheBox, 0).y, 0);
    EXPECT_TRUE(std::isfinite(side->point(kInTheBox, 0).x));
    const auto camera = side->cameraForSideviewPoint({900, 50}, {kInTheBox, 1, 2, 18});
    ASSERT_TRUE(camera) << "stays where it is";
    EXPECT_NEAR(camera->target().latitude, kInTheBox.latitude, 1e-12);
}

TEST(SideviewProjection, aFootprintWithOneCornerAtInfinityCoversTheWholeWidth) {
    const auto side = projectionOf(levelsText(R"("bearing": 30,)" + kTwoLevels));
    ASSERT_TRUE(side);
    for (std::size_t i = 0; i < 4; ++i) {
        std::array<CLLocationCoordinate2D, 4> corners{kInTheBox, kInTheBox, kInTheBox, kInTheBox};
        for (const CLLocationCoordinate2D bad : {CLLocationCoordinate2D{kNaN, 9.96}, {53.54, -kInfinity}}) {
            corners[i] = bad;
            const CGRect rectangle = side->cameraBoundingRectangle(CornersOf(corners), 1);
            EXPECT_EQ(rectangle.origin.x, 0) << i;
            EXPECT_EQ(rectangle.size.width, 1000) << i;
        }
    }
}

TEST(SideviewProjection, theCameraMovesAlongTheBearingByTheDistanceThatThePictureShows) {
    for (const char* bow : {"left", "right"}) {
        const auto side = projectionOf(
            levelsText(R"("bearing": 120, "bowPosition": ")" + std::string(bow) + "\"," + kTwoLevels));
        ASSERT_TRUE(side);
        const double x = side->point(kInTheBox, 1).x;
        for (const double move : {-71.0, 0.0, 71.0}) {
            const TrelmixMapEngineCamera current(kInTheBox, 12, 34, 18.5F);
            const auto camera = side->cameraForSideviewPoint({x + move, 100}, current);
            ASSERT_TRUE(camera);
            EXPECT_EQ(camera->rotation(), 12);
            EXPECT_EQ(camera->viewingAngle(), 34);
            EXPECT_EQ(camera->zoom(), 18.5F);
            const double metres = 6372797.6 * std::numbers::pi / 180;
            const double north = (camera->target().latitude - kInTheBox.latitude) * metres;
            const double east = (camera->target().longitude - kInTheBox.longitude) * metres *
                                std::cos(kInTheBox.latitude * std::numbers::pi / 180);
            const double along =
                move * 8.4 / 300 * (side->bowPosition() == SideviewBowPosition::left ? -1 : 1);
            EXPECT_NEAR(north, along * std::cos(120 * std::numbers::pi / 180), 1e-4) << bow << move;
            EXPECT_NEAR(east, along * std::sin(120 * std::numbers::pi / 180), 1e-4) << bow << move;
        }
        EXPECT_FALSE(side->cameraForSideviewPoint({kNaN, 100}, {kInTheBox, 0, 0, 18}));
        EXPECT_FALSE(side->cameraForSideviewPoint({10, 100}, {{-90, 9.96}, 0, 0, 18}));
        EXPECT_TRUE(side->cameraForSideviewPoint({10, kNaN}, {kInTheBox, 0, 0, 18})) << "only x moves it";
    }
}

TEST(SideviewProjection, theNaturalBehaviourLeadsToPlacesAndKeepsToMarginsAndLevels) {
    for (int bearing = 0; bearing <= 360; bearing += 15) {
        for (const std::string bow : {"left", "right"}) {
            SCOPED_TRACE(bow + std::to_string(bearing));
            const auto classic =
                projectionOf(levelsText("\"bearing\": " + std::to_string(bearing) + R"(, "bowPosition": ")" +
                                        bow + R"(", "leftOffset": 40, "rightOffset": 100, "levels": [)" +
                                        level("1", 0, 4) + "," + level("2", 1, 2) + "],"));
            ASSERT_TRUE(classic);
            const auto natural = classic->withBehaviour(SideviewBehaviour::natural());
            const std::pair<double, double> ends =
                std::minmax({natural->point(locationOf(natural->minimumCoordinate()), 1).x,
                             natural->point(locationOf(natural->maximumCoordinate()), 1).x});
            EXPECT_NEAR(ends.first, 40, 1e-3);
            EXPECT_NEAR(ends.second, 900, 1e-3);
            for (const double x : {0.0, 40.0, 333.0, 1000.0}) {
                EXPECT_NEAR(natural->point(natural->coordinate({x, 9}), 1).x, x, 1e-3);
                const auto camera = natural->cameraForSideviewPoint({x, 9}, {kInTheBox, 0, 0, 18});
                ASSERT_TRUE(camera);
                EXPECT_NEAR(natural->point(camera->target(), 1).x, x, 1e-3);
            }
            const CornersOf view({kInTheBox, kInTheBox, kInTheBox, kInTheBox});
            const double scale = natural->imagePointsPerMeter();
            EXPECT_NEAR(classic->cameraBoundingRectangle(view, 2).size.height, 4 * scale, 1e-9);
            EXPECT_NEAR(natural->cameraBoundingRectangle(view, 2).size.height, 2 * scale, 1e-9);
            EXPECT_EQ(natural->cameraBoundingRectangle(view, 7).size.height, 0);
            EXPECT_TRUE(std::isnan(natural->point(kInTheBox, 7).y));
            EXPECT_FALSE(natural->cameraForSideviewPoint({kNaN, 9}, {kInTheBox, 0, 0, 18}));
        }
    }
}

TEST(SideviewProjection, whatLeavesAPlaceWithoutFiniteCounterpartIsRefused) {
    const auto usable = parseText(levelsText(R"("bearing": 30,)" + kTwoLevels));
    ASSERT_TRUE(usable);
    const auto firstBounds = [](LevelsFile& file) -> SideviewLevelBounds& {
        return file.levels->front().levelBounds->front();
    };
    using Change = std::function<void(LevelsFile&)>;
    const std::pair<const char*, Change> cases[] = {
        {"southLatitude: ", [](LevelsFile& f) { f.southLatitude = -90; }},
        {"northLatitude: ", [](LevelsFile& f) { f.northLatitude = 90; }},
        {"no place on the map", [](LevelsFile& f) { f.westLongitude = 1e308; }},
        {"no place on the map", [](LevelsFile& f) { f.bearing = kInfinity; }},
        {"no extent", [](LevelsFile& f) { f.bearing = 90, f.westLongitude = f.eastLongitude; }},
        {"bottomOffset, topOffset", [](LevelsFile& f) { f.bottomOffset = 270; }},
        {"bottomOffset, topOffset", [](LevelsFile& f) { f.bottomOffset = f.topOffset = -1e308; }},
        {"leftOffset, rightOffset", [](LevelsFile& f) { f.leftOffset = f.rightOffset = 1e308; }},
        {"add up to 0 m",
         [&](LevelsFile& f) {
             firstBounds(f).ceilingHeight = -1;
             f.levels->back().levelBounds->front().ceilingHeight = 1;
         }},
        {"levels: the heights", [&](LevelsFile& f) { firstBounds(f).ceilingHeight = kLargest; }},
        {"levels[0].levelbounds[0]", [&](LevelsFile& f) { firstBounds(f).relativeHeight = kLargest; }},
    };
    for (const auto& [place, change] : cases) {
        LevelsFile file = *usable;
        change(file);
        const auto made = SideviewProjection::make(file, 1000, 300);
        ASSERT_FALSE(made) << place;
        EXPECT_NE(made.reason().find(place), std::string::npos) << made.reason();
    }
    for (const CGSize size : {CGSize{0, 300}, {kNaN, 300}, {1000, kInfinity}}) {
        EXPECT_FALSE(SideviewProjection::make(*usable, size.width, size.height));
    }
}

} // namespace trelmix::sideview_projection_test
