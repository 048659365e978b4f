#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

constexpr int kWidth = 40, kHeight = 60;
constexpr Rgb kBlue{0, 0, 255}, kWhite{255, 255, 255};

std::shared_ptr<TrelmixMapMarker> markerAt(CLLocationCoordinate2D coordinate, CGPoint anchor) {
    auto marker =
        TrelmixMapEngineFactory::createMapMarkerWith(plainImage(kWidth, kHeight, kBlue), coordinate);
    marker->setGroundAnchor(anchor);
    return marker;
}

/// The upright rectangle that an icon fills, `scale` times its size.
Outline upright(CGPoint place, CGPoint anchor, double scale) {
    const double left = place.x - anchor.x * kWidth * scale;
    const double top = place.y - anchor.y * kHeight * scale, right = left + kWidth * scale;
    const double bottom = top + kHeight * scale;
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

/// Everything deeper than `tolerance` inside the outline is covered, everything as far outside is not.
void expectFilled(const Picture& picture, const Outline& outline, double tolerance) {
    const Window window = windowAround(outline, 4, picture.width(), picture.height());
    int wrong = 0;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int x = window.left; x < window.right; ++x) {
            const double depth = depthInside(outline, {x + 0.5, y + 0.5});
            const double covered = picture.coverage(x, y, kBlue, kWhite);
            // Half a pixel belongs to the pixel itself.
            wrong +=
                (depth > tolerance + 0.5 && covered < 0.99) || (depth < -tolerance - 0.5 && covered > 0.01);
        }
    }
    EXPECT_EQ(wrong, 0);
    const Blob drawn = blobIn(picture, window, kBlue, kWhite), expected = blobOf(outline);
    EXPECT_NEAR(drawn.centre.x, expected.centre.x, edgeTolerance(0.25));
    EXPECT_NEAR(drawn.centre.y, expected.centre.y, edgeTolerance(0.25));
}

/// Black in the middle, fading to white: its centre can be told from any pixels it falls on.
std::shared_ptr<const UIImage> softDot() {
    return painted(48, 48, [](int x, int y) {
        const double distance = std::min(1.0, std::hypot(x - 23.5, y - 23.5) / 22);
        const double light = 127.5 - 127.5 * std::cos(distance * 180 * kDegree);
        return Rgb{light, light, light};
    });
}

} // namespace

TEST(Markers, standUprightOnTheirCoordinateAndKeepTheirSize) {
    Stage stage({});
    for (const CGPoint anchor : {CGPoint{0.5, 1}, CGPoint{0.2, 0.7}}) {
        const auto marker = stage.add(markerAt(kPlace, anchor));
        if (anchor.y < 1) {
            // A white icon in a blue tint is a blue one.
            marker->setMarkerIcon(plainImage(kWidth, kHeight, kWhite));
            stage.draw();
            marker->setTint(UIColor::blueColor());
        }
        for (const float zoom : {15.0F, 17.3F, 20.5F, 23.0F}) {
            for (const auto& [rotation, tilt] :
                 {std::pair{0.0, 0.0}, {37.0, 0.0}, {0.0, 55.0}, {123.0, 30.0}, {270.0, 55.0}}) {
                const Look look{rotation, tilt, zoom};
                SCOPED_TRACE(testing::Message() << look);
                stage.look(look);
                expectFilled(stage.draw(), upright({400, 300}, anchor, 1), 0.5);
            }
        }
        marker->setMap(nullptr);
    }
}

TEST(Markers, awayFromTheTargetKeepTheirAnchorAndScaleWithTheDistance) {
    Stage stage({});
    const CLLocationCoordinate2D coordinate = metresFrom(kPlace, 31, 24);
    const CGPoint anchor{0.5, 1};
    stage.add(markerAt(coordinate, anchor));
    for (const double tilt : {0.0, 30.0, 55.0}) {
        for (const double rotation : {0.0, 37.0, 123.0, 270.0}) {
            const Look look{rotation, tilt};
            SCOPED_TRACE(testing::Message() << look);
            stage.look(look);
            const CGPoint place = stage.project(coordinate);
            // How far in front of the camera, in units of the target's distance: the plane's slope along y.
            const double above = (300 - place.y) / 300 * std::tan(30 * kDegree);
            const double scale = 1 - above * std::tan(tilt * kDegree);
            expectFilled(stage.draw(), upright(place, anchor, scale), 0.5);
        }
    }
}

TEST(Markers, thatAreFlatLieOnTheGroundAndTurnWithIt) {
    Stage stage({});
    const CGPoint anchor{0.2, 0.7};
    const auto marker = markerAt(kPlace, anchor);
    marker->setIsFlat(true);
    stage.add(marker);
    for (const auto& [own, rotation, tilt] : {std::tuple{0.0, 0.0, 0.0},
                                              {25.0, 0.0, 0.0},
                                              {25.0, 123.0, 30.0},
                                              {0.0, 37.0, 55.0},
                                              {-70.0, 270.0, 55.0}}) {
        marker->setMarkerRotation(own);
        const Look look{rotation, tilt, 19.3F};
        SCOPED_TRACE(testing::Message() << look << " own rotation " << own);
        stage.look(look);
        const Picture picture = stage.draw();
        // A point of the icon in map pixels of zoom 19 at the target: the view is 600 points high and shows
        // 2 tan 30 times the camera's distance, which is 512 map pixels of the zoom.
        const double unit = 512 * std::tan(30 * kDegree) * 2 / 600 * std::exp2(-0.3);
        const MapPixel middle = mapPixel(kPlace, 19);
        Outline outline;
        for (const auto& [u, v] : {std::pair{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}}) {
            const double x = (u - anchor.x) * kWidth * unit, y = (v - anchor.y) * kHeight * unit;
            const double c = std::cos(own * kDegree), s = std::sin(own * kDegree);
            outline.push_back(
                stage.project(coordinateOf({middle.x + x * c - y * s, middle.y + x * s + y * c}, 19)));
        }
        expectFilled(picture, outline, 0.5);
    }
}

TEST(Markers, atTheDeepestZoomFarFromTheFirstTargetStandWithinATenthOfAPixelOfTheProjection) {
    // The scene's origin stays where the engine started.
    Stage stage({});
    const auto icon = softDot();
    for (const double bearing : {20.0, 111.0, 250.0}) {
        const CLLocationCoordinate2D place =
            metresFrom(kPlace, 19900 * std::sin(bearing * kDegree), 19900 * std::cos(bearing * kDegree));
        for (const auto& [rotation, tilt] :
             {std::pair{0.0, 0.0}, {37.0, 0.0}, {123.0, 55.0}, {270.0, 30.0}}) {
            for (const double shift : {0.0, 0.37, 1.13}) {
                const Look look{rotation, tilt, 23, place};
                SCOPED_TRACE(testing::Message() << look << " bearing " << bearing << " shift " << shift);
                stage.look(look);
                const auto marker = stage.add(
                    TrelmixMapEngineFactory::createMapMarkerWith(icon, metresFrom(place, shift, -shift / 3)));
                const CGPoint expected = stage.project(marker->coordinate());
                const Window around = windowAround({expected}, 50, 800, 600);
                const Blob drawn = blobIn(stage.draw(), around, {0, 0, 0}, kWhite);
                EXPECT_NEAR(drawn.centre.x, expected.x, 0.1);
                EXPECT_NEAR(drawn.centre.y, expected.y, 0.1);
                marker->setMap(nullptr);
            }
        }
    }
}
