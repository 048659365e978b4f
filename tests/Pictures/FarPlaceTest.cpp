#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

/// Black in the middle, fading to nothing: its centre can be told from any pixels it falls on.
std::shared_ptr<const UIImage> softDot() {
    constexpr int size = 48;
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double distance = std::hypot(x + 0.5 - size / 2, y + 0.5 - size / 2) / (size / 2 - 2);
            const double alpha = distance < 1 ? 0.5 + 0.5 * std::cos(distance * 180 * kDegree) : 0;
            pixels.insert(pixels.end(), {0, 0, 0, static_cast<std::uint8_t>(alpha * 255)});
        }
    }
    return UIImage::withPixels(size, size, std::move(pixels));
}

} // namespace

TEST(FarPlaces, atTheDeepestZoomStandWithinATenthOfAPixelOfTheProjection) {
    // The scene's origin stays where the engine started.
    Stage stage({});
    const auto icon = softDot();
    for (const double bearing : {20.0, 111.0, 250.0}) {
        const double distance = 19900;
        const CLLocationCoordinate2D place = metresFrom(kPlace, distance * std::sin(bearing * kDegree),
                                                        distance * std::cos(bearing * kDegree));
        for (const auto& [rotation, tilt] :
             {std::pair{0.0, 0.0}, {37.0, 0.0}, {123.0, 55.0}, {270.0, 30.0}}) {
            for (const double shift : {0.0, 0.37, 1.13}) {
                const Look look{rotation, tilt, 23, place};
                SCOPED_TRACE(testing::Message() << look << " bearing " << bearing << " shift " << shift);
                stage.look(look);
                const auto marker = stage.add(
                    TrelmixMapEngineFactory::createMapMarkerWith(icon, metresFrom(place, shift, -shift / 3)));
                const CGPoint expected = stage.project(marker->coordinate());
                const Picture picture = stage.draw();
                const Outline around = {{expected.x - 50, expected.y - 50},
                                        {expected.x + 50, expected.y + 50}};
                const Blob drawn =
                    blobIn(picture, windowAround(around, 0, 800, 600), {0, 0, 0}, {255, 255, 255});
                EXPECT_NEAR(drawn.centre.x, expected.x, 0.1);
                EXPECT_NEAR(drawn.centre.y, expected.y, 0.1);
                marker->setMap(nullptr);
            }
        }
    }
}
