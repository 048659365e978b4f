// One step of a zoom of a picture of 8000 x 2000 points with a path on it, up to the composed view of
// 1280 x 800: as it is, and with a bitmap made for every step.

#include "Platform/View/ViewComposer.h"
#include "Sideview/SideviewScrollView.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

namespace trelmix {
namespace {

constexpr int kWidth = 8000;
constexpr int kHeight = 2000;

std::shared_ptr<const UIImage> drawing() {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(kWidth) * kHeight * 4, 255);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        pixels[i] = static_cast<std::uint8_t>(i / 4 % kWidth / 32);
        pixels[i + 1] = static_cast<std::uint8_t>(i / 4 / kWidth / 8);
    }
    return UIImage::withPixels(kWidth, kHeight, std::move(pixels));
}

std::shared_ptr<SideviewScrollView> makeSideview() {
    const std::string path = std::filesystem::temp_directory_path() / "trelmix-bench-levels.json";
    std::ofstream(path) << R"({"bearing": 90, "southLatitude": 53.54, "northLatitude": 53.542,
        "westLongitude": 9.96, "eastLongitude": 9.964, "levels": [
        {"levelNumber": 0, "levelbounds": [{"relativeheight": 0, "ceilingheight": 30}]},
        {"levelNumber": 1, "levelbounds": [{"relativeheight": 30, "ceilingheight": 30}]}]})";
    auto sideview = SideviewScrollView::make({{0, 0}, {1280, 800}});
    sideview->setupSideviewWith(drawing(), path);
    std::filesystem::remove(path);
    if (!sideview->setupFailure().empty()) {
        std::fprintf(stderr, "%s\n", sideview->setupFailure().c_str());
        std::exit(1);
    }
    std::vector<CLLocation> walk;
    for (int i = 0; i <= 200; ++i) {
        walk.emplace_back(CLLocationCoordinate2D{53.541, 9.96 + 0.00002 * i}, i / 5 % 2);
    }
    sideview->drawNavigationPath(walk, UIColor::redColor(), 4);
    return sideview;
}

/// Back and forth between the whole width and the bitmap's own size, 41 steps each way.
double nextZoom(int step) {
    const int place = step % 82;
    return 0.16 * std::pow(1 / 0.16, (place < 41 ? place : 82 - place) / 41.0);
}

/// Milliseconds of this thread, so that whatever else runs on the machine does not count.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void zoomStep(benchmark::State& state) {
    const auto sideview = makeSideview();
    const bool makesBitmap = state.range(0) == 1;
    int step = 0;
    double slowest = 0;
    for (auto _ : state) {
        const double start = processorTime();
        sideview->scrollView()->setZoomScale(nextZoom(++step), false);
        if (makesBitmap) {
            benchmark::DoNotOptimize(sideview->sideviewImageView()->createImage());
        }
        benchmark::DoNotOptimize(ViewComposer::compose(*sideview));
        // The first step prepares what the others use.
        slowest = step > 1 ? std::max(slowest, processorTime() - start) : 0;
    }
    state.counters["slowest_ms"] = slowest;
}
BENCHMARK(zoomStep)
    ->Name("side view, zoom step")
    ->ArgName("bitmap")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(83)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace trelmix
