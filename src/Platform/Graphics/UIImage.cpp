#include <Trelmix/Platform/UIImage.h>

#include "Platform/Graphics/ImageDecoder.h"
#include "Platform/Graphics/ImageEncoder.h"
#include "Platform/Graphics/ImageLevels.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <new>
#include <utility>

namespace trelmix {
namespace {

// Alpha is every fourth byte; a whole block is looked at before the answer, so that the loop is a plain AND.
bool isOpaqueThroughout(std::span<const std::uint8_t> pixels) {
    constexpr std::size_t kBlock = 4096;
    for (std::size_t start = 0; start < pixels.size(); start += kBlock) {
        unsigned all = 255;
        const std::size_t end = std::min(start + kBlock, pixels.size());
        for (std::size_t i = start + 3; i < end; i += 4) {
            all &= pixels[i];
        }
        if (all != 255) {
            return false;
        }
    }
    return true;
}

bool isScaleAllowed(double scale) {
    return std::isfinite(scale) && scale >= 1e-6 && scale <= 1e6;
}

} // namespace

struct UIImage::Levels {
    std::once_flag once;
    /// The levels below the image itself.
    std::vector<std::vector<std::uint8_t>> smaller;
    std::vector<std::span<const std::uint8_t>> all;
    std::atomic<std::size_t> byteCount{0};

    void make(int width, int height, std::span<const std::uint8_t> pixels);
};

void UIImage::Levels::make(int width, int height, std::span<const std::uint8_t> pixels) {
    std::size_t bytes = 0;
    try {
        all.push_back(pixels);
        while (width > 1 || height > 1) {
            smaller.push_back(halvedLevel(width, height, all.back()));
            // The spans point into the inner vectors, which stay where they are when the outer one grows.
            all.emplace_back(smaller.back());
            bytes += smaller.back().size();
            width = std::max(width / 2, 1);
            height = std::max(height / 2, 1);
        }
    } catch (const std::bad_alloc&) {
        // Drawn without the levels that are missing; the picture itself is there.
    }
    byteCount.store(bytes, std::memory_order_relaxed);
}

UIImage::UIImage(int width, int height, std::vector<std::uint8_t> pixels, double scale)
    : _pixelWidth(width), _pixelHeight(height), _scale(scale), _isOpaque(isOpaqueThroughout(pixels)),
      _pixels(std::move(pixels)), _detail(std::make_unique<Levels>()) {}

UIImage::~UIImage() = default;

std::shared_ptr<const UIImage> UIImage::own(int width, int height, std::vector<std::uint8_t> pixels,
                                            double scale) {
    return std::shared_ptr<const UIImage>(new UIImage(width, height, std::move(pixels), scale));
}

std::shared_ptr<const UIImage> UIImage::withData(std::span<const std::byte> data, double scale,
                                                 std::string* reason) {
    const auto refuse = [reason](std::string why) -> std::shared_ptr<const UIImage> {
        if (reason != nullptr) {
            *reason = std::move(why);
        }
        return nullptr;
    };
    if (!isScaleAllowed(scale)) {
        return refuse("the scale is not a positive number");
    }
    try {
        Result<DecodedImage> decoded = decodeImage(data);
        if (!decoded) {
            return refuse(decoded.reason());
        }
        return own(decoded->width, decoded->height, std::move(decoded->pixels), scale);
    } catch (const std::bad_alloc&) {
        return refuse("does not fit into memory");
    }
}

std::shared_ptr<const UIImage> UIImage::withPixels(int width, int height, std::vector<std::uint8_t> pixels,
                                                   double scale) {
    if (!isImageSizeAllowed(width, height) || !isScaleAllowed(scale) ||
        pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) {
        return nullptr;
    }
    return own(width, height, std::move(pixels), scale);
}

std::size_t UIImage::byteCount() const {
    return _pixels.size() + _detail->byteCount.load(std::memory_order_relaxed);
}

std::vector<std::byte> UIImage::pngData() const {
    return encodePng(_pixelWidth, _pixelHeight, _pixels, _isOpaque);
}

std::vector<std::byte> UIImage::jpegData(int quality) const {
    return encodeJpeg(_pixelWidth, _pixelHeight, _pixels, std::clamp(quality, 1, 100));
}

std::vector<std::byte> UIImage::webpData(int quality) const {
    return encodeWebp(_pixelWidth, _pixelHeight, _pixels, _isOpaque, std::clamp(quality, 1, 100));
}

void UIImage::prepareLevels() const {
    std::call_once(_detail->once, [this] { _detail->make(_pixelWidth, _pixelHeight, _pixels); });
}

std::span<const std::span<const std::uint8_t>> UIImage::levels() const {
    prepareLevels();
    return _detail->all;
}

} // namespace trelmix
