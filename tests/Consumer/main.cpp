// A program of somebody else's: it knows the installed headers and the library, and draws one picture.

#include <Trelmix/Host/OffscreenHost.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <cstdio>

int main() {
    using namespace trelmix;
    const auto map = TrelmixMapEngineFactory::createMap();
    map->initialiseWithTarget({54.93, 14.02}, 17);
    const auto circle = TrelmixMapEngineFactory::createMapCircleWithCoordinate({54.93, 14.02}, 50);
    circle->setColor(UIColor::redColor());
    circle->setMap(map);
    auto host = OffscreenHost::make(map, {.width = 200, .height = 100, .scale = 1, .samples = 1});
    if (!host) {
        std::fprintf(stderr, "%s\n", host.reason().c_str());
        return 1;
    }
    (*host)->step(0);
    const auto picture = (*host)->image();
    if (!picture) {
        std::fprintf(stderr, "%s\n", picture.reason().c_str());
        return 1;
    }
    const auto pixels = (*picture)->pixels();
    const std::size_t middle = (50 * 200 + 100) * 4;
    std::printf("middle pixel: %d %d %d\n", pixels[middle], pixels[middle + 1], pixels[middle + 2]);
    return pixels[middle] == 255 && pixels[middle + 1] == 0 ? 0 : 1;
}
