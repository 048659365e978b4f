#include "Platform/Graphics/ImageEncoder.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>

#include <libdeflate.h>
#include <turbojpeg.h>
#include <webp/encode.h>

namespace trelmix {
namespace {

// Measured on map pictures against level 2 of zlib: in half of its time 3 to 5 % smaller. One fixed filter
// (the difference from the row above) does better on photographs than none, and takes a fifth of what trying
// all takes.
constexpr int kCompressionLevel = 1;
constexpr std::uint8_t kDifferenceFromAbove = 2;
constexpr std::size_t kLargestChunk = 0x7FFFFFFF;

void copyOpaqueRow(std::span<const std::uint8_t> rgba, std::span<std::uint8_t> rgb) {
    for (std::size_t from = 0, to = 0; from < rgba.size(); from += 4, to += 3) {
        rgb[to] = rgba[from];
        rgb[to + 1] = rgba[from + 1];
        rgb[to + 2] = rgba[from + 2];
    }
}

void copyRowWithoutAlphaFactor(std::span<const std::uint8_t> from, std::span<std::uint8_t> to) {
    for (std::size_t i = 0; i < from.size(); i += 4) {
        const unsigned alpha = from[i + 3];
        for (std::size_t c = i; c < i + 3; ++c) {
            const unsigned colour = alpha == 0 ? 0 : (from[c] * 255U + alpha / 2) / alpha;
            to[c] = static_cast<std::uint8_t>(std::min(colour, 255U));
        }
        to[i + 3] = from[i + 3];
    }
}

/// The rows as the format compresses them: each behind its filter's number.
std::vector<std::uint8_t> filteredRows(std::size_t width, std::size_t height,
                                       std::span<const std::uint8_t> pixels, bool isOpaque) {
    const std::size_t bytes = width * (isOpaque ? 3 : 4);
    std::vector<std::uint8_t> above(bytes);
    std::vector<std::uint8_t> row(bytes);
    std::vector<std::uint8_t> rows((bytes + 1) * height);
    for (std::size_t y = 0; y < height; ++y) {
        const auto source = pixels.subspan(y * width * 4, width * 4);
        if (isOpaque) {
            copyOpaqueRow(source, row);
        } else {
            copyRowWithoutAlphaFactor(source, row);
        }
        std::uint8_t* const filtered = &rows[y * (bytes + 1)];
        filtered[0] = kDifferenceFromAbove;
        for (std::size_t i = 0; i < bytes; ++i) {
            filtered[i + 1] = static_cast<std::uint8_t>(row[i] - above[i]);
        }
        row.swap(above);
    }
    return rows;
}

void appendNumber(std::vector<std::byte>& file, std::uint32_t number) {
    for (const int shift : {24, 16, 8, 0}) {
        file.push_back(static_cast<std::byte>(number >> shift & 255U));
    }
}

/// Length, type, content, and the checksum of the last two.
void appendChunk(std::vector<std::byte>& file, std::string_view type, std::span<const std::byte> content) {
    appendNumber(file, static_cast<std::uint32_t>(content.size()));
    const std::size_t start = file.size();
    const auto letters = std::as_bytes(std::span<const char>(type.data(), type.size()));
    file.insert(file.end(), letters.begin(), letters.end());
    file.insert(file.end(), content.begin(), content.end());
    appendNumber(file, libdeflate_crc32(0, &file[start], file.size() - start));
}

/// In the format of zlib; empty when there is no memory.
std::vector<std::byte> compressed(std::span<const std::uint8_t> bytes) {
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(kCompressionLevel), &libdeflate_free_compressor);
    if (!compressor) {
        return {};
    }
    std::vector<std::byte> out(libdeflate_zlib_compress_bound(compressor.get(), bytes.size()));
    out.resize(
        libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(), out.data(), out.size()));
    return out;
}

/// Three channels; what is translucent lies on white.
std::vector<std::uint8_t> pixelsOverWhite(std::span<const std::uint8_t> rgba) {
    std::vector<std::uint8_t> rgb(rgba.size() / 4 * 3);
    for (std::size_t from = 0, to = 0; from < rgba.size(); from += 4, to += 3) {
        const unsigned white = 255U - rgba[from + 3];
        for (std::size_t c = 0; c < 3; ++c) {
            rgb[to + c] = static_cast<std::uint8_t>(std::min(rgba[from + c] + white, 255U));
        }
    }
    return rgb;
}

std::vector<std::byte> bytesOf(const std::uint8_t* file, std::size_t size) {
    const auto* first = reinterpret_cast<const std::byte*>(file);
    return {first, first + size};
}

} // namespace

std::vector<std::byte> encodePng(int width, int height, std::span<const std::uint8_t> pixels, bool isOpaque) {
    constexpr std::array<std::uint8_t, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::uint8_t kWithAlpha = 6;
    constexpr std::uint8_t kWithoutAlpha = 2;
    try {
        const auto content = compressed(filteredRows(static_cast<std::size_t>(width),
                                                     static_cast<std::size_t>(height), pixels, isOpaque));
        if (content.empty() || content.size() > kLargestChunk) {
            return {};
        }
        std::vector<std::byte> header;
        appendNumber(header, static_cast<std::uint32_t>(width));
        appendNumber(header, static_cast<std::uint32_t>(height));
        const std::array<std::uint8_t, 5> eightBits{8, isOpaque ? kWithoutAlpha : kWithAlpha, 0, 0, 0};
        const auto formatBytes = std::as_bytes(std::span(eightBits));
        header.insert(header.end(), formatBytes.begin(), formatBytes.end());

        std::vector<std::byte> file;
        file.reserve(content.size() + 64);
        const auto signature = std::as_bytes(std::span(kSignature));
        file.insert(file.end(), signature.begin(), signature.end());
        appendChunk(file, "IHDR", header);
        appendChunk(file, "IDAT", content);
        appendChunk(file, "IEND", {});
        return file;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

std::vector<std::byte> encodeJpeg(int width, int height, std::span<const std::uint8_t> pixels, int quality) {
    const std::unique_ptr<void, decltype(&tjDestroy)> handle(tjInitCompress(), &tjDestroy);
    if (!handle) {
        return {};
    }
    unsigned char* data = nullptr;
    unsigned long size = 0;
    std::vector<std::byte> file;
    try {
        const auto rgb = pixelsOverWhite(pixels);
        if (tjCompress2(handle.get(), rgb.data(), width, 0, height, TJPF_RGB, &data, &size, TJSAMP_420,
                        quality, 0) == 0) {
            file = bytesOf(data, size);
        }
    } catch (const std::bad_alloc&) {
        // Empty tells.
    }
    tjFree(data);
    return file;
}

std::vector<std::byte> encodeWebp(int width, int height, std::span<const std::uint8_t> pixels, bool isOpaque,
                                  int quality) {
    try {
        std::vector<std::uint8_t> plain(pixels.size() / 4 * (isOpaque ? 3 : 4));
        if (isOpaque) {
            copyOpaqueRow(pixels, plain);
        } else {
            copyRowWithoutAlphaFactor(pixels, plain);
        }
        const auto encode = isOpaque ? &WebPEncodeRGB : &WebPEncodeRGBA;
        std::uint8_t* data = nullptr;
        const std::size_t size = encode(plain.data(), width, height, width * (isOpaque ? 3 : 4),
                                        static_cast<float>(quality), &data);
        const std::unique_ptr<std::uint8_t, decltype(&WebPFree)> owned(data, &WebPFree);
        return bytesOf(data, size);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace trelmix
