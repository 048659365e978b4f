// The smallest application with a map: it brings the OpenGL ES context, the touches and the tiles, and saves
// what it has drawn. With a window, the context is the window's, and the loop at the end is the event loop.
#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>

#include <algorithm>
#include <fstream>
#include <iostream>

using namespace trelmix;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;

/// A context that draws into a bitmap; an application with a window makes its window's current instead.
bool makeContextCurrent() {
    auto platformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLDisplay display = platformDisplay ? platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr)
                                         : eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_ES2_BIT,
                             EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, kWidth, EGL_HEIGHT, kHeight, EGL_NONE};
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_ES_API) ||
        !eglChooseConfig(display, wanted, &config, 1, &count) || count == 0) {
        return false;
    }
    const EGLSurface surface = eglCreatePbufferSurface(display, config, size);
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
    return eglMakeCurrent(display, surface, surface, context) == EGL_TRUE;
}

/// A bitmap of one colour with a white edge.
std::shared_ptr<const UIImage> square(int side, std::uint32_t rgb) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < side * side; ++i) {
        const int inset = std::min({i % side, i / side, side - 1 - i % side, side - 1 - i / side});
        for (const int shift : {16, 8, 0}) {
            pixels.push_back(static_cast<std::uint8_t>(inset < 2 ? 255U : rgb >> shift));
        }
        pixels.push_back(255);
    }
    return UIImage::withPixels(side, side, std::move(pixels));
}

/// Answers tile requests and hears of taps.
class Application : public TrelmixMapEngineDelegate {
public:
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
        layer->provideTileForX(x, y, zoom, square(256, (x + y) % 2 == 0 ? 0xd5e3cc : 0xc9d8ea));
    }
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override {
        std::cout << "tapped " << marker->description() << std::endl;
        isTapped = true;
        return true;
    }
    bool isTapped = false;
};

/// Rows come from OpenGL bottom up.
std::shared_ptr<const UIImage> pictureOfContext() {
    std::vector<std::uint8_t> pixels(std::size_t{kWidth} * kHeight * 4);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    constexpr std::ptrdiff_t kRow = std::ptrdiff_t{kWidth} * 4;
    for (std::ptrdiff_t top = 0; top < kHeight / 2; ++top) {
        const auto row = pixels.begin() + top * kRow;
        std::swap_ranges(row, row + kRow, pixels.end() - (top + 1) * kRow);
    }
    return UIImage::withPixels(kWidth, kHeight, std::move(pixels));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: trelmix-embedding PICTURE.png" << std::endl;
        return 2;
    }
    if (!makeContextCurrent()) {
        std::cerr << "no OpenGL ES driver: apt-get install libgl1-mesa-dri libegl1 libgles2" << std::endl;
        return 3;
    }
    const CLLocationCoordinate2D home{53.5413, 9.9841};
    const auto application = std::make_shared<Application>();
    const auto map = TrelmixMapEngineFactory::createMap();
    map->setDelegate(application);
    const auto host = ViewHost::make(map, {{kWidth, kHeight}, {{0, 0}, {kWidth, kHeight}}, 1}, {});
    if (!host) {
        std::cerr << host.reason() << std::endl;
        return 2;
    }
    map->initialiseWithTarget(home, 17);
    const auto tiles = TrelmixMapEngineFactory::createMapTilesNode();
    tiles->setMap(map);
    const auto marker = TrelmixMapEngineFactory::createMapMarkerWith(square(24, 0xd03030), home);
    marker->setMap(map);

    // Seconds of any steady clock; what happens is said in points, from the top left corner.
    double time = 0;
    const auto touch = [&](auto phase, double x, double y) { ((**host).*phase)(1, {x, y}, time += 0.016); };
    touch(&ViewHost::touchBegan, 320, 240);
    for (int step = 1; step <= 10; ++step) {
        touch(&ViewHost::touchMoved, 320 - 10 * step, 240 + 4 * step);
    }
    touch(&ViewHost::touchEnded, 220, 280);
    time += 1;
    // The marker has followed the finger.
    touch(&ViewHost::touchBegan, 220, 280);
    touch(&ViewHost::touchEnded, 220, 280);

    const auto isComplete = [&] {
        return application->isTapped && tiles->wantedTileCount() > 0 &&
               tiles->answeredTileCount() == tiles->wantedTileCount();
    };
    // A frame in which nothing changes is not drawn, and need not be shown.
    for (int frame = 0; frame < 600 && ((*host)->drawFrame() == ViewHost::Drawing::drawn || !isComplete());
         ++frame) {
        (*host)->pump();
        (*host)->waitForWork(1.0 / 60);
    }
    const auto png = pictureOfContext()->pngData();
    std::ofstream(argv[1], std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
    return isComplete() ? 0 : 4;
}
