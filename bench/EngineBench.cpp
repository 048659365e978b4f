// What the engine itself does for a frame, without any OpenGL: overlay updates, the draw list, the tile
// check, hits. Figures that have a baseline stand beside it in the same run.

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Scene/HitTest.h"
#include "Tiles/TileGround.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace trelmix {
namespace {

constexpr CLLocationCoordinate2D kPlace{54.93, 14.02};

std::shared_ptr<const UIImage> icon() {
    static const auto image = UIImage::withPixels(16, 16, std::vector<std::uint8_t>(16 * 16 * 4, 255));
    return image;
}

/// An engine of 1280 x 720 points with markers scattered over 2 km.
struct Stage {
    std::shared_ptr<TrelmixMapEngineSceneView> engine =
        TrelmixMapEngineSceneView::make({{0, 0}, {1280, 720}});
    std::vector<std::shared_ptr<TrelmixMapMarker>> markers;
    std::mt19937 random{3};

    explicit Stage(std::int64_t count) {
        Clock::set(Clock::now());
        engine->layoutIfNeeded();
        engine->initialiseWithTarget(kPlace, 17);
        for (std::int64_t i = 0; i < count; ++i) {
            markers.push_back(TrelmixMapEngineFactory::createMapMarkerWith(icon(), scattered()));
            markers.back()->setMap(engine);
        }
        frame();
    }
    CLLocationCoordinate2D scattered() {
        std::uniform_real_distribution<double> offset(-0.01, 0.01);
        return {kPlace.latitude + offset(random), kPlace.longitude + offset(random)};
    }
    DrawFrame frame() {
        Clock::set(Clock::now() + 1.0 / 60);
        return engine->sceneView()->nextFrame(Clock::now());
    }
    void moveCamera(double east, float zoom) {
        auto change = engine->currentCamera();
        change.target.x += east;
        change.zoom = zoom;
        change.fromGesture = true;
        engine->internalSetCamera(change);
    }
};

void frameInWhichNothingChanged(benchmark::State& state) {
    Stage stage(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(stage.frame());
    }
}
BENCHMARK(frameInWhichNothingChanged)
    ->Name("frame in which nothing changed")
    ->ArgName("markers")
    ->Arg(500)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

void panningFrame(benchmark::State& state) {
    Stage stage(state.range(0));
    for (auto _ : state) {
        stage.moveCamera(0.5, 17);
        benchmark::DoNotOptimize(stage.frame());
    }
}
BENCHMARK(panningFrame)
    ->Name("panning frame")
    ->ArgName("markers")
    ->Arg(500)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

void zoomingFrame(benchmark::State& state) {
    Stage stage(state.range(0));
    int i = 0;
    for (auto _ : state) {
        stage.moveCamera(0, 17.0F + 0.001F * static_cast<float>(++i % 100));
        benchmark::DoNotOptimize(stage.frame());
    }
}
BENCHMARK(zoomingFrame)
    ->Name("zooming frame")
    ->ArgName("markers")
    ->Arg(500)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

void frameInWhichSomeOfTenThousandMove(benchmark::State& state) {
    Stage stage(10000);
    const auto moving = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        for (std::size_t i = 0; i < moving; ++i) {
            stage.markers[i * 10]->setCoordinate(stage.scattered(), false, 0);
        }
        benchmark::DoNotOptimize(stage.frame());
    }
    state.counters["goal"] = 1000;
}
BENCHMARK(frameInWhichSomeOfTenThousandMove)
    ->Name("frame of 10,000 markers")
    ->ArgName("moving")
    ->Arg(1)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

void addingAndRemovingMarkers(benchmark::State& state) {
    Stage stage(0);
    for (auto _ : state) {
        std::vector<std::shared_ptr<TrelmixMapMarker>> markers;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            markers.push_back(TrelmixMapEngineFactory::createMapMarkerWith(icon(), kPlace));
            markers.back()->setMap(stage.engine);
        }
        for (const auto& marker : markers) {
            marker->setMap(nullptr);
        }
    }
}
BENCHMARK(addingAndRemovingMarkers)
    ->Name("adding and removing")
    ->ArgName("markers")
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);

void tileCheck(benchmark::State& state) {
    CameraProjection projection({kPlace.latitude, kPlace.longitude}, {1280, 720});
    projection.setMapZoom(17);
    projection.setMapViewingAngle(Radians::fromDegrees(static_cast<double>(state.range(0))));
    projection.setMapRotation(Radians(0.6));
    std::size_t tiles = 0;
    for (auto _ : state) {
        tiles = tilesInView(projection, 17).tiles.size();
    }
    state.counters["tiles"] = static_cast<double>(tiles);
}
BENCHMARK(tileCheck)
    ->Name("tile check, 1280x720")
    ->ArgName("tilt")
    ->Arg(0)
    ->Arg(55)
    ->Unit(benchmark::kMicrosecond);

void hitTest(benchmark::State& state) {
    Stage stage(10000);
    const auto camera = stage.frame().camera;
    for (auto _ : state) {
        const SceneRay ray = sceneRayThrough({640, 360}, {1280, 720}, camera);
        benchmark::DoNotOptimize(hitTestScene(*stage.engine->defaultScene(), ray, true));
    }
    state.counters["goalRatio"] = 1.5;
}
BENCHMARK(hitTest)->Name("hit test, 10,000 markers")->Unit(benchmark::kMicrosecond);

/// The baseline of `hitTest`: the same boxes, one after another in one array, each met by the ray.
void plainScanOfTheSameBoxes(benchmark::State& state) {
    Stage stage(10000);
    const auto frame = stage.frame();
    struct Box {
        Vector3d corner;
        Vector3d across;
        Vector3d down;
    };
    std::vector<Box> boxes;
    for (const auto& item : frame.list->items) {
        boxes.push_back(
            {item->corners[0], item->corners[1] - item->corners[0], item->corners[2] - item->corners[0]});
    }
    const auto dot = [](Vector3d a, Vector3d b) { return a.x * b.x + a.y * b.y + a.z * b.z; };
    for (auto _ : state) {
        const SceneRay ray = sceneRayThrough({640, 360}, {1280, 720}, frame.camera);
        std::vector<std::pair<double, std::size_t>> hits;
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            const auto& [corner, u, v] = boxes[i];
            const Vector3d normal{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
            const double t = dot(normal, corner - ray.origin) / dot(normal, ray.direction);
            const Vector3d p = ray.origin + ray.direction * t - corner;
            const double a = dot(p, u) / dot(u, u);
            const double b = dot(p, v) / dot(v, v);
            if (t > 0 && a >= 0 && a <= 1 && b >= 0 && b <= 1) {
                hits.emplace_back(t, i);
            }
        }
        benchmark::DoNotOptimize(hits);
    }
}
BENCHMARK(plainScanOfTheSameBoxes)->Name("hit test, 10,000 markers, bare")->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace trelmix
