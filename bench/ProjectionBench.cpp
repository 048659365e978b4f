// Points a second through the projection, as an application calls it, against a plain loop over the same
// formulas with everything that depends on the camera alone taken out of the loop. Both must give the same
// bits, or nothing is timed.

#include "Camera/CameraProjection.h"
#include "Geo/GeoUtils.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

namespace trelmix {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double d = DEG_TO_RAD_CONST;
constexpr ScreenPoint kSize{800, 600};
constexpr Coordinate kOrigin{43.735, 7.421};
constexpr Coordinate kTarget{43.741, 7.428};
constexpr float kInternalZoom = 16.4F;
constexpr double kRotation = 0.7;
constexpr double kTilt = 0.6;

/// The formulas, and what is hoisted out of the loop.
struct PlainLoop {
    double originX, originY, targetX, targetY, m, scale, focal, height, heightBack, offsetX, offsetY;
    double sz = std::sin(kRotation), cz = std::cos(kRotation), sx = std::sin(kTilt), cx = std::cos(kTilt);
    double r10 = -(cx * sz), r11 = cx * cz, r20 = sx * sz, r21 = -(sx * cz);
    double turnedX, turnedY, turnedZ, tangent, shift;

    PlainLoop() {
        originX = GeoUtils::scenePoint(kOrigin).x, originY = GeoUtils::scenePoint(kOrigin).y;
        targetX = GeoUtils::scenePoint(kTarget).x, targetY = GeoUtils::scenePoint(kTarget).y;
        m = GeoUtils::mapPointsPerMeter(kOrigin.lat, 22);
        scale = GeoUtils::mapPointsPerMeter(kTarget.lat, kInternalZoom);
        focal = kSize.y / scale * 0.5 * 0.8660254037844387 / 0.49999999999999994;
        const double distance =
            40041468.24594933 * std::cos(kTarget.lat * d) / std::exp2(static_cast<double>(kInternalZoom));
        height = distance * cx;
        heightBack = height * m / m;
        const double back = std::abs(distance * sx) * m;
        offsetX = (targetX - std::sin(kRotation - kPi) * back - originX) / m;
        offsetY = (targetY - std::cos(kRotation - kPi) * back - originY) / m;
        turnedX = cz * -offsetX + sz * -offsetY + 0.0 * height;
        turnedY = r10 * -offsetX + r11 * -offsetY + sx * height;
        turnedZ = r20 * -offsetX + r21 * -offsetY + cx * height;
        tangent = std::tan(kPi / 2 - kTilt);
        shift = -height / tangent;
    }

    CGPoint forward(CLLocationCoordinate2D place) const {
        const double x = (place.longitude * d + kPi) * 170891318.8941079;
        const double y =
            (kPi - std::log(std::tan(place.latitude * d * 0.5 + 0.7853981633974483))) * 170891318.8941079;
        const double e = (x - originX) / m - offsetX;
        const double n = -((y - originY) / m - offsetY);
        const double w1 = cz * e + sz * n + 0.0 * -heightBack;
        const double w2 = r10 * e + r11 * n + sx * -heightBack;
        const double w3 = r20 * e + r21 * n + cx * -heightBack;
        const double k = focal / w3;
        return {kSize.x * 0.5 - w1 * k * scale, kSize.y * 0.5 + w2 * k * scale};
    }

    CLLocationCoordinate2D inverse(CGPoint point) const {
        const double bx = (point.x - kSize.x * 0.5) / scale;
        const double by = (point.y - kSize.y * 0.5) / scale;
        const double t = -height / (sx * by + cx * focal);
        const double w1 = turnedX + -bx * t, w2 = turnedY + by * t, w3 = turnedZ + focal * t;
        const double x = cz * w1 + r10 * w2 + r20 * w3;
        const double y = sz * w1 + r11 * w2 + r21 * w3;
        const double z = 0.0 * w1 + sx * w2 + cx * w3;
        const double correction = shift - z / tangent;
        const double mapX = (x - sz * correction + offsetX) * m + targetX;
        const double mapY = targetY - (y + cz * correction + offsetY) * m;
        const double latitude =
            (2.0 * std::atan(std::exp(kPi - mapY * HALF_DIM_PI_INV / 4194304.0)) - kPi / 2.0) / d;
        double longitude = mapX * HALF_DIM_PI_INV / (4194304.0 * d) - 180.0;
        while (longitude < -180.0) {
            longitude += 180.0;
        }
        while (longitude > 180.0) {
            longitude -= 180.0;
        }
        return {latitude, longitude};
    }
};

struct Fixture {
    PlainLoop plain;
    std::shared_ptr<TrelmixMapProjection> projection;
    std::vector<CGPoint> points;
    std::vector<CLLocationCoordinate2D> places;

    Fixture() {
        auto camera = std::make_shared<CameraProjection>(kOrigin, kSize);
        camera->setCameraTarget(GeoUtils::scenePoint(kTarget), kTarget);
        camera->setInternalZoom(kInternalZoom);
        camera->setMapRotation(Radians(kRotation));
        camera->setMapViewingAngle(Radians(kTilt));
        projection = camera;
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> x(0, kSize.x), y(0, kSize.y);
        for (int i = 0; i < 4096; ++i) {
            points.push_back({x(random), y(random)});
            places.push_back(plain.inverse(points.back()));
            if (projection->worldCoordinateFor(points.back()) != places.back() ||
                projection->screenCoordinateFor(places.back()) != plain.forward(places.back())) {
                std::fputs("the projection and the plain loop differ\n", stderr);
                std::exit(1);
            }
        }
    }
};

const Fixture& fixture() {
    static const Fixture instance;
    return instance;
}

/// Both directions and both contenders run the same loop: convert every input, store every answer.
template <class In, class Convert>
void convertAll(benchmark::State& state, const std::vector<In>& inputs, Convert convert) {
    std::vector<decltype(convert(inputs[0]))> answers(inputs.size());
    for (auto _ : state) {
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            answers[i] = convert(inputs[i]);
        }
        benchmark::DoNotOptimize(answers.data());
        benchmark::ClobberMemory();
    }
    state.counters["per"] = static_cast<double>(inputs.size());
    state.counters["goalRatio"] = 1.3;
}

void forwardPlain(benchmark::State& state) {
    const PlainLoop& plain = fixture().plain;
    convertAll(state, fixture().places, [&plain](CLLocationCoordinate2D p) { return plain.forward(p); });
}

void forwardProjection(benchmark::State& state) {
    const TrelmixMapProjection& projection = *fixture().projection;
    convertAll(state, fixture().places,
               [&](CLLocationCoordinate2D p) { return projection.screenCoordinateFor(p); });
}

void inversePlain(benchmark::State& state) {
    const PlainLoop& plain = fixture().plain;
    convertAll(state, fixture().points, [&plain](CGPoint p) { return plain.inverse(p); });
}

void inverseProjection(benchmark::State& state) {
    const TrelmixMapProjection& projection = *fixture().projection;
    convertAll(state, fixture().points, [&](CGPoint p) { return projection.worldCoordinateFor(p); });
}

void cameraChange(benchmark::State& state) {
    CameraProjection projection(kOrigin, kSize);
    double rotation = 0;
    for (auto _ : state) {
        projection.setMapRotation(Radians(rotation += 0.01));
        benchmark::DoNotOptimize(projection.exactCameraPosition());
    }
}

BENCHMARK(forwardPlain)->Name("projection, forward, bare");
BENCHMARK(forwardProjection)->Name("projection, forward");
BENCHMARK(inversePlain)->Name("projection, inverse, bare");
BENCHMARK(inverseProjection)->Name("projection, inverse");
BENCHMARK(cameraChange)->Name("camera change");

} // namespace
} // namespace trelmix
