// A map in a window: SDL brings the window, its OpenGL ES context, and what mouse and fingers do.
//   window [FRAMES]      ends after so many turns of the loop, with 0 when every tile in view was there
#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

using namespace trelmix;

namespace {

constexpr CLLocationCoordinate2D kHome{54.9297, 14.0215};

/// A bitmap of one colour with a white edge. An image from a file: UIImage::withData(bytes).
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
struct Application : TrelmixMapEngineDelegate {
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
        layer->provideTileForX(x, y, zoom, square(256, (x + y) % 2 == 0 ? 0xd5e3cc : 0xc9d8ea));
    }
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override {
        std::cout << "tapped " << marker->description() << std::endl;
        return true; // false would move the map there
    }
};

/// The window's events count in its units, which serve as points; a unit may have several pixels.
ViewHost::Layout layoutOf(SDL_Window* window) {
    int width = 0;
    int height = 0;
    int pixels = 0;
    SDL_GetWindowSize(window, &width, &height);
    SDL_GL_GetDrawableSize(window, &pixels, nullptr);
    const CGSize size{1.0 * width, 1.0 * height};
    return {size, {{0, 0}, size}, 1.0 * pixels / width};
}

void zoomBy(TrelmixMapEngine& map, float levels) {
    if (const auto camera = map.camera()) {
        map.setCameraWithRotation(camera->rotation(), camera->viewingAngle(), camera->zoom() + levels, false);
    }
}

/// False when the window is to close.
bool handle(const SDL_Event& event, SDL_Window* window, TrelmixMapEngine& map, ViewHost& host) {
    constexpr std::int64_t kMouse = -1;
    const double time = event.common.timestamp / 1000.0;
    const CGSize size = layoutOf(window).window;
    const auto finger = [&] {
        return CGPoint{static_cast<double>(event.tfinger.x) * size.width,
                       static_cast<double>(event.tfinger.y) * size.height};
    };
    const auto mouse = [](const auto& part) { return CGPoint{1.0 * part.x, 1.0 * part.y}; };
    if (event.type == SDL_MOUSEBUTTONDOWN && event.button.button == SDL_BUTTON_LEFT) {
        host.touchBegan(kMouse, mouse(event.button), time);
    } else if (event.type == SDL_MOUSEMOTION && (event.motion.state & SDL_BUTTON_LMASK) != 0) {
        host.touchMoved(kMouse, mouse(event.motion), time);
    } else if (event.type == SDL_MOUSEBUTTONUP && event.button.button == SDL_BUTTON_LEFT) {
        host.touchEnded(kMouse, mouse(event.button), time);
    } else if (event.type == SDL_FINGERDOWN) {
        host.touchBegan(event.tfinger.fingerId, finger(), time);
    } else if (event.type == SDL_FINGERMOTION) {
        host.touchMoved(event.tfinger.fingerId, finger(), time);
    } else if (event.type == SDL_FINGERUP) {
        host.touchEnded(event.tfinger.fingerId, finger(), time);
    } else if (event.type == SDL_MOUSEWHEEL) {
        zoomBy(map, event.wheel.preciseY / 4);
    } else if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        host.setLayout(layoutOf(window));
    } else if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_FOCUS_LOST) {
        host.cancelTouches();
    }
    return event.type != SDL_QUIT;
}

/// Milliseconds until something has to be done, if no event comes before.
int sleepOf(const ViewHost& host, bool isCounting) {
    const double seconds = host.needsDisplay() || isCounting ? 1.0 / 60 : host.secondsToPump();
    return static_cast<int>(std::ceil(1000 * std::min(seconds, 3600.0)));
}

int run(SDL_Window* window, long frames) {
    const auto map = TrelmixMapEngineFactory::createMap();
    const auto application = std::make_shared<Application>(); // the map does not own its delegate
    map->setDelegate(application);
    const auto host = ViewHost::make(map, layoutOf(window), {});
    if (!host) {
        std::cerr << host.reason() << std::endl;
        return 1;
    }
    map->initialiseWithTarget(kHome, 17);
    const auto tiles = TrelmixMapEngineFactory::createMapTilesNode();
    tiles->setMap(map);
    TrelmixMapEngineFactory::createMapMarkerWith(square(24, 0xd03030), kHome)->setMap(map);

    (*host)->setWakeUp([type = SDL_RegisterEvents(1)] {
        SDL_Event event{};
        event.type = type;
        SDL_PushEvent(&event); // ends the wait below; the map itself must not be called here
    });
    bool isOpen = true;
    for (long frame = 0; isOpen && (frames == 0 || frame < frames); ++frame) {
        SDL_Event event;
        for (bool isThere = SDL_WaitEventTimeout(&event, sleepOf(**host, frames > 0)) != 0; isThere;
             isThere = SDL_PollEvent(&event) != 0) {
            isOpen = handle(event, window, *map, **host) && isOpen;
        }
        (*host)->pump(); // tile answers, timers, what the delegate hears
        if ((*host)->drawFrame() == ViewHost::Drawing::drawn) {
            SDL_GL_SwapWindow(window);
        } // in an unchanged map nothing has been drawn
    }
    const bool isComplete =
        tiles->tileCounts().wanted > 0 && tiles->tileCounts().answered == tiles->tileCounts().wanted;
    return isOpen && !isComplete ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    SDL_SetHint(SDL_HINT_VIDEO_X11_FORCE_EGL, "1"); // OpenGL ES comes with EGL
    SDL_SetHint(SDL_HINT_TOUCH_MOUSE_EVENTS, "0");  // a finger is no mouse as well
    SDL_Init(SDL_INIT_VIDEO);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_ES);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_Window* window =
        SDL_CreateWindow("Map", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, 800, 600,
                         SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    SDL_GLContext context = window != nullptr ? SDL_GL_CreateContext(window) : nullptr;
    if (context == nullptr) {
        std::cerr << SDL_GetError() << std::endl;
        return 1;
    }
    const int code = run(window, argc > 1 ? std::strtol(argv[1], nullptr, 10) : 0);
    SDL_GL_DeleteContext(context); // after the host, which had its textures there
    SDL_DestroyWindow(window);
    SDL_Quit();
    return code;
}
