// Pictures a second of 512 x 512 from one warm process, a new camera each, tiles in memory; and the most
// memory that a program with one tile layer takes, above one that draws a single textured quad.

#include "common/scene/MapScene.h"
#include "Report.h"
#include "Town.h"

#include "Render/FrameTarget.h"
#include "Render/GLContext.h"
#include "Render/GLShader.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>

namespace trelmix::bench {
namespace {

constexpr double kMiB = 1 << 20;

std::unique_ptr<OffscreenHost> makeHost(const apps::MapScene& map, CGSize size, int samples) {
    OffscreenHost::Options options;
    options.width = size.width;
    options.height = size.height;
    options.samples = samples;
    auto host = OffscreenHost::make(map.engine, options);
    if (!host) {
        std::fprintf(stderr, "%s\n", host.reason().c_str());
        std::exit(3);
    }
    return std::move(*host);
}

/// Pictures a second: places, headings and tilts in turn around the town's middle. The first round brings the
/// tiles.
double picturesPerSecond(const std::string& archive, int samples, bool asPng) {
    constexpr int kPictures = 120;
    const CGSize size{512, 512};
    const apps::MapScene map = makeTown(tilesOfArchive(archive), size, 16);
    const auto host = makeHost(map, size, samples);
    double start = 0;
    for (int picture = -kPictures; picture < kPictures; ++picture) {
        if (picture == 0) {
            start = seconds();
        }
        const int place = (picture + kPictures) % kPictures;
        const double turn = place * 0.7;
        map.engine->setCamera(std::make_shared<TrelmixMapEngineCamera>(
                                  CLLocationCoordinate2D{kTownMiddle.latitude + 0.004 * std::sin(turn),
                                                         kTownMiddle.longitude + 0.008 * std::cos(turn)},
                                  place * 3.0, place % 3 * 15.0,
                                  16.0F + 0.01F * static_cast<float>(place % 40)),
                              false);
        if (picture < 0) {
            host->settle(30);
        } else {
            host->step(1);
            while (host->pump()) {
            }
        }
        const auto image = host->image();
        const auto count = apps::countOf(map);
        if (!image || count.answered < count.wanted || (asPng && (*image)->pngData().empty())) {
            std::fputs("an incomplete picture\n", stderr);
            std::exit(1);
        }
    }
    return kPictures / (seconds() - start);
}

double peakBytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

/// The driver's own: a context, a target of 800 x 600, one textured quad, and its pixels.
double peakOfOneQuad() {
    auto context = GLContext::makeOffscreen();
    if (!context) {
        std::exit(3);
    }
    const auto graveyard = (*context)->graveyard();
    FrameTarget target((*context)->capabilities(), graveyard);
    target.resize(800, 600, 1);
    const auto program = linkProgram(
        graveyard,
        "#version 100\nattribute vec2 a; varying vec2 v; void main() { gl_Position = vec4(a, 0, 1); v = a; }",
        "#version 100\nprecision mediump float; uniform sampler2D i; varying vec2 v; void main() { "
        "gl_FragColor = "
        "texture2D(i, v); }",
        std::array{GLAttribute{0, "a"}});
    const std::vector<std::uint8_t> pixels(std::size_t{256} * 256 * 4, 128);
    const auto texture = GLTexture::make(graveyard);
    glBindTexture(GL_TEXTURE_2D, texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 256, 256, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    target.bindForDrawing();
    glUseProgram(program->name());
    const std::array<float, 8> corners{-1, -1, 1, -1, -1, 1, 1, 1};
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, corners.data());
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    std::vector<std::uint8_t> read(std::size_t{800} * 600 * 4);
    glReadPixels(0, 0, 800, 600, GL_RGBA, GL_UNSIGNED_BYTE, read.data());
    return peakBytes();
}

double peakOfTown(const std::string& archive, int samples) {
    const CGSize size{800, 600};
    const apps::MapScene map = makeTown(tilesOfArchive(archive), size, 16);
    const auto host = makeHost(map, size, samples);
    host->settle(30);
    return host->image() ? peakBytes() : NAN;
}

void run(const std::string& archive) {
    startTable("repeated pictures of 512x512");
    for (const int samples : {1, 4}) {
        const std::string name = samples > 1 ? ", 4 samples" : ", 1 sample";
        for (const bool asPng : {false, true}) {
            report({(asPng ? "as PNG" : "as pixels") + name,
                    inOwnProcess([&] { return picturesPerSecond(archive, samples, asPng); }),
                    "pictures/s",
                    {},
                    Goal{Goal::Kind::atLeast, asPng && samples == 1 ? 100.0 : 60.0}});
        }
    }
    startTable("peak memory, 800x600, one tile layer");
    const double quad = inOwnProcess(peakOfOneQuad) / kMiB;
    report({"one textured quad", quad, "MiB"});
    report({"above it, 1 sample",
            inOwnProcess([&] { return peakOfTown(archive, 1); }) / kMiB - quad,
            "MiB",
            {},
            Goal{Goal::Kind::atMost, 64}});
    report(
        {"above it, 4 samples", inOwnProcess([&] { return peakOfTown(archive, 4); }) / kMiB - quad, "MiB"});
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv));
}
