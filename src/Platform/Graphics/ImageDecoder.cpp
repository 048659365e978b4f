#include "Platform/Graphics/ImageDecoder.h"

#include <Trelmix/Platform/UIImage.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <spng.h>
#include <turbojpeg.h>
#include <webp/decode.h>

namespace trelmix {
namespace {

using Decoded = Result<DecodedImage>;
using Bytes = std::span<const std::byte>;

// Notes and colour profiles are unpacked by the library though nobody reads them.
constexpr std::size_t kLargestChunk = std::size_t{16} << 20;
constexpr std::size_t kAllChunks = std::size_t{32} << 20;
// Deflate packs at most 1,032 to 1: a file that promises more cannot be whole.
constexpr std::int64_t kMostPixelBitsPerByte = std::int64_t{1040} * 8;

const std::uint8_t* bytesOf(Bytes data) {
    return reinterpret_cast<const std::uint8_t*>(data.data());
}

bool startsWith(Bytes data, std::string_view magic, std::size_t at = 0) {
    return data.size() >= at + magic.size() && std::memcmp(data.data() + at, magic.data(), magic.size()) == 0;
}

/// Empty when the size is fine, else the reason why not.
std::string sizeFault(std::int64_t width, std::int64_t height) {
    if (isImageSizeAllowed(width, height)) {
        return {};
    }
    return std::to_string(width) + " x " + std::to_string(height) + " pixels are more than an image may have";
}

DecodedImage emptyImage(int width, int height) {
    DecodedImage image{width, height, {}};
    image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    return image;
}

Decoded pngFailure(int error) {
    return Decoded::failure(std::string("the PNG is damaged: ") + spng_strerror(error));
}

/// True when every chunk up to the end mark is there in full length. The library stops before that mark.
bool hasAllChunks(Bytes data) {
    constexpr std::size_t kSignature = 8;
    constexpr std::size_t kAroundContent = 12;
    std::size_t at = kSignature;
    while (data.size() - at >= kAroundContent) {
        const std::uint8_t* chunk = bytesOf(data) + at;
        const std::size_t length = std::size_t{chunk[0]} << 24 | std::size_t{chunk[1]} << 16 |
                                   std::size_t{chunk[2]} << 8 | std::size_t{chunk[3]};
        if (data.size() - at - kAroundContent < length) {
            return false;
        }
        if (startsWith(data, "IEND", at + 4)) {
            return true;
        }
        at += kAroundContent + length;
    }
    return false;
}

Decoded decodePng(Bytes data) {
    const std::unique_ptr<spng_ctx, decltype(&spng_ctx_free)> context(spng_ctx_new(0), &spng_ctx_free);
    if (!context) {
        return Decoded::failure("does not fit into memory");
    }
    // A wrong checksum in a note is no reason to lose the picture; in the pixels it is.
    spng_set_crc_action(context.get(), SPNG_CRC_ERROR, SPNG_CRC_DISCARD);
    spng_set_chunk_limits(context.get(), kLargestChunk, kAllChunks);
    if (const int error = spng_set_png_buffer(context.get(), data.data(), data.size())) {
        return pngFailure(error);
    }
    spng_ihdr header{};
    if (const int error = spng_get_ihdr(context.get(), &header)) {
        return pngFailure(error);
    }
    const std::int64_t width = header.width;
    const std::int64_t height = header.height;
    if (std::string fault = sizeFault(width, height); !fault.empty()) {
        return Decoded::failure(std::move(fault));
    }
    if (!hasAllChunks(data) ||
        width * height * header.bit_depth > static_cast<std::int64_t>(data.size()) * kMostPixelBitsPerByte) {
        return Decoded::failure("the PNG is cut short");
    }
    DecodedImage image = emptyImage(static_cast<int>(width), static_cast<int>(height));
    if (const int error = spng_decode_image(context.get(), image.pixels.data(), image.pixels.size(),
                                            SPNG_FMT_RGBA8, SPNG_DECODE_TRNS)) {
        return pngFailure(error);
    }
    premultiply(image.pixels);
    return image;
}

/// Whether the maker's mark is there that says, among other things, that inks are stored as what they leave
/// of the light.
bool hasAdobeMark(Bytes data) {
    constexpr std::size_t kSignature = 2;
    constexpr std::uint8_t kMarker = 0xFF;
    constexpr std::uint8_t kApplication14 = 0xEE;
    constexpr std::uint8_t kStartOfScan = 0xDA;
    const std::uint8_t* bytes = bytesOf(data);
    for (std::size_t at = kSignature; at + 4 <= data.size() && bytes[at] == kMarker;) {
        if (bytes[at + 1] == kStartOfScan) {
            return false;
        }
        if (bytes[at + 1] == kApplication14 && startsWith(data, "Adobe", at + 4)) {
            return true;
        }
        // A marker may be filled up with further 0xFF.
        at +=
            bytes[at + 1] == kMarker ? 1 : 2 + (std::size_t{bytes[at + 2]} << 8 | std::size_t{bytes[at + 3]});
    }
    return false;
}

/// Cyan, magenta, yellow and black to opaque red, green and blue, without a colour profile.
void replaceInks(std::span<std::uint8_t> pixels, bool isLightLeft) {
    const unsigned flip = isLightLeft ? 0 : 255;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const unsigned black = pixels[i + 3] ^ flip;
        for (std::size_t c = i; c < i + 3; ++c) {
            pixels[c] = static_cast<std::uint8_t>(((pixels[c] ^ flip) * black + 127U) / 255U);
        }
        pixels[i + 3] = 255;
    }
}

Decoded decodeJpeg(Bytes data) {
    struct Close {
        void operator()(void* handle) const { tjDestroy(handle); }
    };
    const std::unique_ptr<void, Close> handle(tjInitDecompress());
    if (!handle) {
        return Decoded::failure("does not fit into memory");
    }
    const auto failure = [&handle] {
        return Decoded::failure(std::string("the JPEG is damaged: ") + tjGetErrorStr2(handle.get()));
    };
    const auto size = static_cast<unsigned long>(data.size());
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colourSpace = 0;
    if (tjDecompressHeader3(handle.get(), bytesOf(data), size, &width, &height, &subsampling, &colourSpace) !=
        0) {
        return failure();
    }
    if (std::string fault = sizeFault(width, height); !fault.empty()) {
        return Decoded::failure(std::move(fault));
    }
    const bool hasInks = colourSpace == TJCS_CMYK || colourSpace == TJCS_YCCK;
    DecodedImage image = emptyImage(width, height);
    // A warning counts as failure too: a file that was cut gives only a warning and a grey rest.
    if (tjDecompress2(handle.get(), bytesOf(data), size, image.pixels.data(), width, 0, height,
                      hasInks ? TJPF_CMYK : TJPF_RGBA, TJFLAG_LIMITSCANS) != 0) {
        return failure();
    }
    if (hasInks) {
        replaceInks(image.pixels, hasAdobeMark(data));
    }
    return image;
}

std::uint64_t riffSize(Bytes data) {
    const std::uint8_t* size = bytesOf(data) + 4;
    return std::uint64_t{size[0]} | std::uint64_t{size[1]} << 8 | std::uint64_t{size[2]} << 16 |
           std::uint64_t{size[3]} << 24;
}

Decoded decodeWebp(Bytes data) {
    // The decoder fills up a cut file's last rows without complaint, so the length is checked here.
    if (riffSize(data) + 8 > data.size()) {
        return Decoded::failure("the WebP is cut short");
    }
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(bytesOf(data), data.size(), &features) != VP8_STATUS_OK) {
        return Decoded::failure("the WebP is damaged");
    }
    if (features.has_animation != 0) {
        return Decoded::failure("the WebP is animated");
    }
    if (std::string fault = sizeFault(features.width, features.height); !fault.empty()) {
        return Decoded::failure(std::move(fault));
    }
    DecodedImage image = emptyImage(features.width, features.height);
    if (WebPDecodeRGBAInto(bytesOf(data), data.size(), image.pixels.data(), image.pixels.size(),
                           features.width * 4) == nullptr) {
        return Decoded::failure("the WebP is damaged");
    }
    if (features.has_alpha != 0) {
        premultiply(image.pixels);
    }
    return image;
}

} // namespace

Decoded decodeImage(Bytes data) {
    using namespace std::string_view_literals;
    if (startsWith(data, "\x89PNG\r\n\x1a\n"sv)) {
        return decodePng(data);
    }
    if (startsWith(data, "\xff\xd8\xff"sv)) {
        return decodeJpeg(data);
    }
    if (startsWith(data, "RIFF"sv) && startsWith(data, "WEBP"sv, 8)) {
        return decodeWebp(data);
    }
    return Decoded::failure(data.empty() ? "there is no data" : "is no PNG, JPEG or WebP image");
}

bool isImageSizeAllowed(std::int64_t width, std::int64_t height) {
    return width > 0 && height > 0 && width <= UIImage::kMaximumPixelCount &&
           height <= UIImage::kMaximumPixelCount / width;
}

void premultiply(std::span<std::uint8_t> rgba) {
    for (std::size_t i = 0; i + 3 < rgba.size(); i += 4) {
        const unsigned alpha = rgba[i + 3];
        if (alpha == 255) {
            continue;
        }
        for (std::size_t c = i; c < i + 3; ++c) {
            rgba[c] = static_cast<std::uint8_t>((rgba[c] * alpha + 127U) / 255U);
        }
    }
}

} // namespace trelmix
