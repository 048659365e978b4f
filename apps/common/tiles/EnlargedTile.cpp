#include "common/tiles/EnlargedTile.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trelmix::apps {

namespace {

constexpr std::size_t kPixelBytes = 4;

/// For one pixel of the enlarged row or column: the first of the two old pixels it lies between, from -1 on,
/// and the second one's share.
struct Tap {
    int first;
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
        const double before = std::floor(place);
        taps.push_back({static_cast<int>(before), static_cast<float>(place - before)});
    }
    return taps;
}

/// A picture with a border of one pixel of the pictures around it.
class BorderedPicture {
public:
    BorderedPicture(const UIImage& picture, const PictureBeside& beside)
        : _picture(picture), _beside(beside) {}

    /// @param x,y from -1 to the picture's size
    const std::uint8_t* pixel(int x, int y) {
        const int east = side(x, _picture.pixelWidth());
        const int south = side(y, _picture.pixelHeight());
        if (east == 0 && south == 0) {
            return at(_picture, x, y);
        }
        const UIImage* const other = neighbour(east, south);
        return other != nullptr
                   ? at(*other, x - east * _picture.pixelWidth(), y - south * _picture.pixelHeight())
                   : at(_picture, std::clamp(x, 0, _picture.pixelWidth() - 1),
                        std::clamp(y, 0, _picture.pixelHeight() - 1));
    }

private:
    struct Neighbour {
        bool isKnown = false;
        std::shared_ptr<const UIImage> picture;
    };

    static int side(int i, int size) { return i < 0 ? -1 : i < size ? 0 : 1; }
    static const std::uint8_t* at(const UIImage& picture, int x, int y) {
        const auto index = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.pixelWidth()) +
                           static_cast<std::size_t>(x);
        return picture.pixels().data() + index * kPixelBytes;
    }

    /// Empty too when it is of another size, whose pixels do not continue ours.
    const UIImage* neighbour(int east, int south) {
        Neighbour& found =
            _neighbours[static_cast<std::size_t>(south + 1) * 3 + static_cast<std::size_t>(east + 1)];
        if (!found.isKnown) {
            found = {true, _beside(east, south)};
            if (found.picture && (found.picture->pixelWidth() != _picture.pixelWidth() ||
                                  found.picture->pixelHeight() != _picture.pixelHeight())) {
                found.picture = nullptr;
            }
        }
        return found.picture.get();
    }

    const UIImage& _picture;
    const PictureBeside& _beside;
    std::array<Neighbour, 9> _neighbours;
};

/// The old pixels that the taps need, row by row.
std::vector<std::uint8_t> cutOut(BorderedPicture& picture, const std::vector<Tap>& across,
                                 const std::vector<Tap>& down) {
    std::vector<std::uint8_t> pixels;
    for (int y = down.front().first; y <= down.back().first + 1; ++y) {
        for (int x = across.front().first; x <= across.back().first + 1; ++x) {
            const std::uint8_t* const pixel = picture.pixel(x, y);
            pixels.insert(pixels.end(), pixel, pixel + kPixelBytes);
        }
    }
    return pixels;
}

std::vector<std::uint8_t> enlarged(const std::vector<std::uint8_t>& old, const std::vector<Tap>& across,
                                   const std::vector<Tap>& down) {
    const auto indexOf = [](const Tap& tap, const Tap& first) {
        return static_cast<std::size_t>(tap.first - first.first) * kPixelBytes;
    };
    const std::size_t rowPixels = indexOf(across.back(), across.front()) / kPixelBytes + 2;
    std::vector<std::uint8_t> pixels(across.size() * down.size() * kPixelBytes);
    auto* out = pixels.data();
    for (const Tap& y : down) {
        const std::uint8_t* const upper = old.data() + indexOf(y, down.front()) * rowPixels;
        const std::uint8_t* const lower = upper + rowPixels * kPixelBytes;
        for (const Tap& x : across) {
            const std::size_t left = indexOf(x, across.front());
            for (std::size_t channel = left; channel < left + kPixelBytes; ++channel) {
                const auto mix = [](float a, float b, float share) { return a + (b - a) * share; };
                const float top = mix(upper[channel], upper[channel + kPixelBytes], x.share);
                const float bottom = mix(lower[channel], lower[channel + kPixelBytes], x.share);
                // The cast cuts off; a function that rounds would take most of the time here.
                const float between = mix(top, bottom, y.share) + 0.5F;
                *out++ = static_cast<std::uint8_t>(between);
            }
        }
    }
    return pixels;
}

} // namespace

std::shared_ptr<const UIImage> enlargedPart(const UIImage& ancestor, const TileIndex& tile,
                                            std::int64_t levels, const PictureBeside& beside) {
    const std::int64_t mask = (std::int64_t{1} << levels) - 1;
    const auto across = tapsAlong(ancestor.pixelWidth(), tile.x & mask, levels);
    const auto down = tapsAlong(ancestor.pixelHeight(), tile.y & mask, levels);
    BorderedPicture picture(ancestor, beside);
    return UIImage::withPixels(ancestor.pixelWidth(), ancestor.pixelHeight(),
                               enlarged(cutOut(picture, across, down), across, down), ancestor.scale());
}

} // namespace trelmix::apps
