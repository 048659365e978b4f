// Levels files of any bytes: refused in one line, or a projection that survives every number.
#include "Sideview/SideviewProjection.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <span>

namespace {

using namespace trelmix;

class Corners final : public TrelmixMapProjection {
public:
    explicit Corners(CLLocationCoordinate2D corner) : _corner(corner) {}
    CLLocationCoordinate2D topLeftCoordinate() const override { return _corner; }
    CLLocationCoordinate2D bottomLeftCoordinate() const override { return {0, 0}; }
    CLLocationCoordinate2D topRightCoordinate() const override { return _corner; }
    CLLocationCoordinate2D bottomRightCoordinate() const override { return {53.5, 10}; }
    CGPoint screenCoordinateFor(CLLocationCoordinate2D) const override { return {}; }
    CLLocationCoordinate2D worldCoordinateFor(CGPoint) const override { return {}; }

private:
    CLLocationCoordinate2D _corner;
};

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void useEveryOperation(const SideviewProjection& side) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::array<double, 6> kNumbers = {0,     53.5,      -90,
                                                1e308, kInfinity, std::numeric_limits<double>::quiet_NaN()};
    for (const double a : kNumbers) {
        for (const double b : kNumbers) {
            const std::int64_t level = side.levelNumber({a, b});
            (void)side.levelHeight({a, b});
            (void)side.coordinate({a, b});
            (void)side.cameraBoundingRectangle(Corners({a, b}), level);
            const auto camera = side.cameraForSideviewPoint({a, b}, {{b, a}, 0, 0, 18});
            require(!camera ||
                    (std::isfinite(camera->target().latitude) && std::isfinite(camera->target().longitude)));
        }
    }
    require(std::isfinite(side.coordinate({10, 10}).latitude));
    if (!side.levels()) {
        return;
    }
    std::size_t looked = 0;
    for (const SideviewLevel& level : *side.levels()) {
        // Every look-up walks the list.
        if (level.levelNumber && ++looked <= 16) {
            require(std::isfinite(side.point({53.5, 10}, *level.levelNumber).y));
            require(side.levelInfo(*level.levelNumber).has_value());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Result<LevelsFile> file = parseLevelsFile(std::as_bytes(std::span(data, size)));
    if (!file) {
        require(!file.reason().empty() && file.reason().find('\n') == std::string::npos);
        return 0;
    }
    const auto side = SideviewProjection::make(std::move(*file), 1000, 300);
    if (side) {
        useEveryOperation(**side);
    } else {
        require(!side.reason().empty());
    }
    return 0;
}
