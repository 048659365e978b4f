// Whatever the bytes are, decoding gives either nothing or an image whose pixels are all there. The input is
// a file, or edits to a good one: without those hardly any input would get past the first bytes and the
// checksums.
#include "Graphics/ImageFiles.h"

#include <Trelmix/Platform/UIImage.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include <zlib.h>

namespace {

using trelmix::FileBytes;
using trelmix::PngSpec;
using trelmix::UIImage;

constexpr std::uint32_t kSide = 23;

std::vector<FileBytes> goodFiles() {
    std::vector<std::uint8_t> samples(std::size_t{kSide} * kSide * 8);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::uint8_t>(i * i / 7 + i);
    }
    const auto png = [&samples](PngSpec spec, std::size_t rowBytes) {
        return pngFile(spec,
                       {samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(kSide * rowBytes)});
    };
    PngSpec interlaced{kSide, kSide, 16, 6};
    interlaced.isInterlaced = true;
    PngSpec palette{kSide, kSide, 4, 3};
    palette.palette = std::vector<std::uint32_t>(16, 0x40C08080);
    PngSpec grey{kSide, kSide, 1, 0};
    grey.transparentGrey = 1;
    const int side = kSide;
    std::vector<std::uint8_t> pixels(std::size_t{kSide} * kSide * 4, 255);
    const auto opaque = UIImage::withPixels(side, side, pixels);
    std::fill(pixels.begin(), pixels.begin() + kSide * 4, std::uint8_t{90});
    const auto translucent = UIImage::withPixels(side, side, pixels);
    return {png({kSide, kSide}, kSide * 4),
            png(interlaced, kSide * 8),
            png(palette, (kSide + 1) / 2),
            png(grey, (kSide + 7) / 8),
            trelmix::progressiveJpegFile(side, side, samples),
            trelmix::inkJpegFile(side, side, samples),
            translucent->jpegData(),
            translucent->webpData(),
            opaque->webpData()};
}

/// Gives every chunk that is there the checksum of its edited content.
void repairPng(FileBytes& file) {
    std::size_t at = 8;
    while (file.size() >= at + 12) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            length = length << 8 | static_cast<std::size_t>(file[at + i]);
        }
        if (length > file.size() - at - 12) {
            return;
        }
        const auto sum =
            ::crc32(0, reinterpret_cast<const Bytef*>(&file[at + 4]), static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i) {
            file[at + 8 + length + i] = static_cast<std::byte>(sum >> (24 - 8 * i));
        }
        at += 12 + length;
    }
}

/// The first byte chooses the file; then come edits of three bytes: the place in two, and what is put there.
FileBytes edited(std::span<const std::byte> input) {
    static const std::vector<FileBytes> files = goodFiles();
    const auto choice = static_cast<std::size_t>(input[0]);
    if (choice % 16 >= files.size()) {
        return {input.begin() + 1, input.end()};
    }
    FileBytes file = files[choice % 16];
    for (std::size_t i = 1; i + 2 < input.size(); i += 3) {
        const std::size_t place =
            static_cast<std::size_t>(input[i]) << 8 | static_cast<std::size_t>(input[i + 1]);
        file[place % file.size()] = input[i + 2];
    }
    if (choice % 16 < 4 && choice >= 128) {
        repairPng(file);
    }
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string reason;
    const auto image = trelmix::UIImage::withData(edited(std::as_bytes(std::span(data, size))), 1, &reason);
    if (image) {
        const auto expected = static_cast<std::size_t>(image->pixelWidth()) *
                              static_cast<std::size_t>(image->pixelHeight()) * 4;
        if (image->pixels().size() != expected || expected == 0) {
            std::abort();
        }
    } else if (reason.empty()) {
        std::abort();
    }
    return 0;
}
