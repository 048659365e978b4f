#include "common/TileSource.h"

#include <algorithm>
#include <cmath>

namespace trelmix::apps {

namespace {

constexpr std::size_t kRememberedAncestors = 16;

/// For one pixel of the enlarged row or column: the two old pixels it lies between and the second one's
/// share.
struct Tap {
    std::size_t first;
    std::size_t second;
    float share;
};

std::vector<Tap> tapsAlong(int size, std::int64_t part, std::int64_t levels) {
    const double parts = std::exp2(static_cast<double>(levels));
    std::vector<Tap> taps;
    taps.reserve(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        // Centre of the new pixel on the old picture; half a pixel back, as old pixels have their centres at
        // one half.
        const double place = (static_cast<double>(part) * size + i + 0.5) / parts - 0.5;
        const double inside = std::clamp(place, 0.0, size - 1.0);
        const auto first = static_cast<std::size_t>(inside);
        taps.push_back({first, std::min(first + 1, static_cast<std::size_t>(size) - 1),
                        static_cast<float>(inside - std::floor(inside))});
    }
    return taps;
}

} // namespace

std::shared_ptr<const UIImage> enlargedPart(const UIImage& ancestor, const TileIndex& tile,
                                            std::int64_t levels) {
    const std::int64_t mask = (std::int64_t{1} << levels) - 1;
    const auto across = tapsAlong(ancestor.pixelWidth(), tile.x & mask, levels);
    const auto down = tapsAlong(ancestor.pixelHeight(), tile.y & mask, levels);
    const auto old = ancestor.pixels();
    const std::size_t rowBytes = across.size() * 4;
    std::vector<std::uint8_t> pixels(rowBytes * down.size());
    auto* out = pixels.data();
    for (const Tap& y : down) {
        const std::uint8_t* upper = old.data() + y.first * rowBytes;
        const std::uint8_t* lower = old.data() + y.second * rowBytes;
        for (const Tap& x : across) {
            for (std::size_t channel = 0; channel < 4; ++channel) {
                const std::size_t left = x.first * 4 + channel;
                const std::size_t right = x.second * 4 + channel;
                const auto mix = [](float a, float b, float share) { return a + (b - a) * share; };
                const float top = mix(upper[left], upper[right], x.share);
                const float bottom = mix(lower[left], lower[right], x.share);
                *out++ = static_cast<std::uint8_t>(mix(top, bottom, y.share) + 0.5F);
            }
        }
    }
    return UIImage::withPixels(ancestor.pixelWidth(), ancestor.pixelHeight(), std::move(pixels),
                               ancestor.scale());
}

TileSource::TileSource(std::unique_ptr<TileStore> store) : _store(std::move(store)) {}

std::shared_ptr<const UIImage> TileSource::imageFor(const TileIndex& tile) const {
    if (!isInWorld(tile)) {
        return nullptr;
    }
    std::shared_ptr<const UIImage> image;
    for (std::int64_t levels = 0; levels <= tile.zoom; ++levels) {
        const TileIndex ancestor{tile.x >> levels, tile.y >> levels, tile.zoom - levels};
        image = levels > 0 ? remembered(ancestor) : nullptr;
        const Found found = image ? Found::image : load(ancestor, image);
        if (found == Found::broken) {
            return nullptr;
        }
        if (found == Found::image) {
            if (levels > 0) {
                remember(ancestor, image);
                image = enlargedPart(*image, tile, levels);
            }
            break;
        }
    }
    if (image) {
        image->prepareLevels();
    }
    return image;
}

TileSource::Found TileSource::load(const TileIndex& tile, std::shared_ptr<const UIImage>& image) const {
    const auto bytes = _store->tile(tile);
    if (!bytes) {
        report(tile, bytes.reason());
        return Found::broken;
    }
    if (!*bytes) {
        return Found::missing;
    }
    std::string reason;
    image = UIImage::withData(**bytes, 1, &reason);
    if (!image) {
        report(tile, reason);
    }
    return image ? Found::image : Found::broken;
}

std::shared_ptr<const UIImage> TileSource::remembered(const TileIndex& tile) const {
    const std::lock_guard lock(_mutex);
    const auto found = std::find_if(_ancestors.begin(), _ancestors.end(),
                                    [&](const auto& entry) { return entry.first == tile; });
    return found == _ancestors.end() ? nullptr : found->second;
}

void TileSource::remember(const TileIndex& tile, const std::shared_ptr<const UIImage>& image) const {
    const std::lock_guard lock(_mutex);
    std::erase_if(_ancestors, [&](const auto& entry) { return entry.first == tile; });
    if (_ancestors.size() >= kRememberedAncestors) {
        _ancestors.erase(_ancestors.begin());
    }
    _ancestors.emplace_back(tile, image);
}

void TileSource::report(const TileIndex& tile, const std::string& reason) const {
    const std::lock_guard lock(_mutex);
    if (++_faultCount == 1) {
        _firstFault = "tile " + std::to_string(tile.zoom) + "/" + std::to_string(tile.x) + "/" +
                      std::to_string(tile.y) + ": " + reason;
    }
}

std::size_t TileSource::faultCount() const {
    const std::lock_guard lock(_mutex);
    return _faultCount;
}

std::string TileSource::firstFault() const {
    const std::lock_guard lock(_mutex);
    return _firstFault;
}

} // namespace trelmix::apps
