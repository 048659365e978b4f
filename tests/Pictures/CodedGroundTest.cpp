#include "Pictures/Stage.h"

#include <gtest/gtest.h>

// Tiles whose colours tell the place of each pixel: red and green rise and fall by 4 a pixel along x and y,
// which filtering of any kind keeps between the turns; blue names the tile. Linear filtering cannot look into
// the next tile, so near a tile's border, as near a turn, a colour does not tell its place.

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

constexpr double kHalfPeriod = 64, kSlope = 4;
// Different, and no mirror images of each other, so that a turned or mirrored tile shows.
constexpr double kShiftX = 16, kShiftY = 40;

struct Wave {
    double value, slope;
    double toTurn; ///< map pixels
};

Wave waveAt(double place, double shift) {
    const double phase = std::fmod(place + shift, 2 * kHalfPeriod);
    const bool rises = phase < kHalfPeriod;
    const double height = rises ? phase : 2 * kHalfPeriod - phase;
    return {kSlope * height, rises ? kSlope : -kSlope, std::min(height, kHalfPeriod - height)};
}

double nameOf(std::int64_t x, std::int64_t y) {
    return static_cast<double>((x & 15) << 4 | (y & 15));
}

std::shared_ptr<const UIImage> codedTile(std::int64_t x, std::int64_t y) {
    return painted(256, 256, [&](int column, int row) {
        return Rgb{waveAt(column + 0.5, kShiftX).value, waveAt(row + 0.5, kShiftY).value, nameOf(x, y)};
    });
}

struct Count {
    int drawn = 0, decoded = 0, wrong = 0;
    double x = 0; ///< sums of the differences, map pixels
    double y = 0;
};

bool isDecodable(const Footprint& print, const Wave& x, const Wave& y) {
    // Of the coarser of two levels of detail that are blended; a sample reaches one and a half.
    const double texel = std::exp2(std::ceil(std::log2(std::max(1.0, print.length()))));
    const double reach = 1.5 * texel + 1;
    const auto toBorder = [](double place) {
        const double inside = std::fmod(place, 256);
        return std::min(inside, 256 - inside);
    };
    return x.toTurn > reach && y.toTurn > reach && toBorder(print.centre.x) > reach &&
           toBorder(print.centre.y) > reach;
}

void compare(const Stage& stage, const Picture& picture, int x, int y, int zoom, Count& count) {
    const Rgb color = picture.at(x, y);
    ++count.drawn;
    const Footprint print = footprintOf(stage, x, y, zoom);
    const Wave east = waveAt(print.centre.x, kShiftX), south = waveAt(print.centre.y, kShiftY);
    if (!isDecodable(print, east, south)) {
        return;
    }
    ++count.decoded;
    const double dx = (color[0] - east.value) / east.slope;
    const double dy = (color[1] - south.value) / south.slope;
    count.x += dx;
    count.y += dy;
    const double name = nameOf(static_cast<std::int64_t>(print.centre.x / 256),
                               static_cast<std::int64_t>(print.centre.y / 256));
    const bool isRight = color[2] == name && print.pixelsTo({print.centre.x + dx, print.centre.y + dy}) < 0.5;
    count.wrong += isRight ? 0 : 1;
}

} // namespace

TEST(CodedGround, everyPixelShowsTheGroundThatTheProjectionGivesForIt) {
    for (const float zoom : {16.0F, 17.4F, 18.6F}) {
        Stage stage({0, 0, zoom});
        // No tile has full red.
        stage.engine->setBackgroundColor(UIColor::redColor());
        stage.addTiles(std::make_shared<TilePainter>(codedTile));
        const int tileZoom = static_cast<int>(std::lround(zoom));
        for (const double tilt : {0.0, 30.0, 55.0}) {
            for (const double rotation : {0.0, 37.0, 180.0}) {
                const Look look{rotation, tilt, zoom};
                SCOPED_TRACE(testing::Message() << look);
                stage.look(look);
                const Picture picture = stage.draw();
                Count count;
                int missing = 0;
                for (int y = 0; y < 600; y += 3) {
                    for (int x = 0; x < 800; x += 3) {
                        if (picture.at(x, y)[0] < 255) {
                            compare(stage, picture, x, y, tileZoom, count);
                        } else if (isWithinTileReach(y, tilt)) {
                            ++missing;
                        }
                    }
                }
                EXPECT_EQ(missing, 0) << "pixels within reach without a tile";
                EXPECT_GT(count.decoded, count.drawn / 3);
                EXPECT_LE(count.wrong, count.decoded / 1000) << "of " << count.decoded;
                // A shift of everything that is too small for a single pixel to tell.
                EXPECT_NEAR(count.x / count.decoded, 0, 0.05);
                EXPECT_NEAR(count.y / count.decoded, 0, 0.05);
                if (testing::Test::HasFailure()) {
                    picture.save("coded-ground.png");
                    return;
                }
            }
        }
    }
}
