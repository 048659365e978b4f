// The smallest application: a map with a marker, drawn into a file.
#include <Trelmix/Host/OffscreenHost.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <fstream>
#include <iostream>

using namespace trelmix;

/// Of one colour. An image from a file: UIImage::withData(bytes).
std::shared_ptr<const UIImage> square(int side, std::vector<std::uint8_t> rgba) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < side * side; ++i) {
        pixels.insert(pixels.end(), rgba.begin(), rgba.end());
    }
    return UIImage::withPixels(side, side, std::move(pixels));
}

/// Tiles are asked for once they come into view, and answered now or later, from any thread.
struct Tiles : TrelmixMapEngineDelegate {
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
        const bool isDark = (x + y) % 2 == 0;
        layer->provideTileForX(x, y, zoom,
                               square(256, isDark ? std::vector<std::uint8_t>{190, 214, 190, 255}
                                                  : std::vector<std::uint8_t>{220, 232, 210, 255}));
    }
};

int main(int argc, char** argv) {
    const auto map = TrelmixMapEngineFactory::createMap();
    const auto tiles = std::make_shared<Tiles>(); // the map does not own its delegate
    map->setDelegate(tiles);
    const auto host = OffscreenHost::make(map, {.width = 800, .height = 600});
    if (!host) {
        std::cerr << host.reason() << std::endl; // names the packages when there is no driver
        return 1;
    }
    map->initialiseWithTarget({54.9297, 14.0215}, 17);
    map->setCameraWithRotation(332, 45, 17, false); // rotation and viewing angle in degrees, zoom, at once
    TrelmixMapEngineFactory::createMapTilesNode()->setMap(map);
    TrelmixMapEngineFactory::createMapMarkerWith(square(20, {200, 40, 40, 255}), {54.9301, 14.0207})
        ->setMap(map);

    const TileCounts counts = (*host)->settle(30); // until every tile is answered, at most 30 seconds
    if (counts.failed > 0) {
        std::cerr << counts.failed << " tiles failed: " << counts.reason << std::endl;
    }
    const auto picture = (*host)->image();
    if (!picture || argc < 2) {
        std::cerr << (picture ? "usage: picture MAP.png" : picture.reason()) << std::endl;
        return 1;
    }
    const auto png = (*picture)->pngData();
    std::ofstream(argv[1], std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
}
