#include "Render/ImageTexture.h"

#include <algorithm>
#include <cstring>

namespace trelmix {

namespace {

constexpr std::size_t kPieceBytes = 1 << 20;
/// A power of two: down to this reduction the levels of a part are cut from the image's own, texel for texel.
constexpr int kWidestBorder = 64;

bool isPowerOfTwo(int n) {
    return (n & (n - 1)) == 0;
}

struct Span {
    int start; ///< texels that the part shows
    int end;
    int first; ///< texels that it holds; beyond the image's edge they repeat it
    int last;
};

/// Cuts a side of `size` texels so that no part holds more than `limit`.
std::vector<Span> cut(int size, int limit) {
    if (size <= limit) {
        return {{0, size, 0, size}};
    }
    int border = kWidestBorder;
    while (border > 1 && border * 8 > limit) {
        border /= 2;
    }
    const int step = std::max(1, limit / border - 2) * border;
    std::vector<Span> spans;
    for (int start = 0; start < size; start += step) {
        const int end = std::min(size, start + step);
        // Whole borders, so that halving keeps texels in line with those of the image's own levels.
        const int last = std::min((size + border - 1) / border * border, end + border);
        spans.push_back({start, end, std::max(0, start - border), last});
    }
    return spans;
}

} // namespace

TextureLimits TextureLimits::of(const GLCapabilities& capabilities, int maximumSize, float anisotropy) {
    TextureLimits limits;
    limits.maximumSize = capabilities.maximumTextureSize;
    if (maximumSize > 0) {
        limits.maximumSize = std::clamp(maximumSize, 16, capabilities.maximumTextureSize);
    }
    if (anisotropy == 0) {
        anisotropy = capabilities.isSoftwareDriver ? 1.0F : 4.0F;
    }
    limits.anisotropy = std::clamp(anisotropy, 1.0F, std::max(1.0F, capabilities.maximumAnisotropy));
    limits.hasLevelsOfAnySize = capabilities.hasLevelsOfAnySize;
    return limits;
}

ImageTexture::ImageTexture(std::shared_ptr<const UIImage> image, bool usesLevels, const TextureLimits& limits)
    : _image(std::move(image)), _isOpaque(_image->isOpaque()), _usesLevels(usesLevels),
      _anisotropy(limits.anisotropy) {
    split(limits.maximumSize);
    for (const Part& part : _parts) {
        if (!limits.hasLevelsOfAnySize && !(isPowerOfTwo(part.width) && isPowerOfTwo(part.height))) {
            _usesLevels = false;
        }
    }
}

void ImageTexture::split(int limit) {
    const double width = _image->pixelWidth();
    const double height = _image->pixelHeight();
    for (const Span& row : cut(_image->pixelHeight(), limit)) {
        for (const Span& column : cut(_image->pixelWidth(), limit)) {
            Part part;
            part.x = column.first;
            part.y = row.first;
            part.width = column.last - column.first;
            part.height = row.last - row.first;
            part.left = column.start / width;
            part.right = column.end / width;
            part.top = row.start / height;
            part.bottom = row.end / height;
            const auto coordinate = [](int texel, int first, int size) {
                return static_cast<float>(texel - first) / static_cast<float>(size);
            };
            part.s0 = coordinate(column.start, part.x, part.width);
            part.s1 = coordinate(column.end, part.x, part.width);
            part.t0 = coordinate(row.start, part.y, part.height);
            part.t1 = coordinate(row.end, part.y, part.height);
            _parts.push_back(std::move(part));
        }
    }
}

int ImageTexture::levelCount(const Part& part) const {
    int count = 1;
    if (_usesLevels) {
        while ((std::max(part.width, part.height) >> count) > 0) {
            ++count;
        }
    }
    return count;
}

std::size_t ImageTexture::uploadPiece(const std::shared_ptr<GLGraveyard>& graveyard) {
    std::size_t bytes = 0;
    while (!isUploaded() && bytes < kPieceBytes) {
        Part& part = _parts[_nextPart];
        if (!part.texture) {
            startPart(part, graveyard);
        } else {
            glBindTexture(GL_TEXTURE_2D, part.texture.name());
        }
        bytes += uploadRows(part);
        if (_nextRow == std::max(1, part.height >> _nextLevel)) {
            _nextRow = 0;
            ++_nextLevel;
        }
        if (_nextLevel == levelCount(part)) {
            _nextLevel = 0;
            ++_nextPart;
        }
    }
    _byteCount += bytes;
    if (isUploaded()) {
        _image.reset();
        _rows = {};
    }
    return bytes;
}

void ImageTexture::startPart(Part& part, const std::shared_ptr<GLGraveyard>& graveyard) {
    part.texture = GLTexture::make(graveyard);
    glBindTexture(GL_TEXTURE_2D, part.texture.name());
    // Before the first level comes, so that drivers lay the levels out at once.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, _usesLevels ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (_usesLevels && _anisotropy > 1) {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, _anisotropy);
    }
}

void ImageTexture::copyRows(std::span<const std::uint8_t> pixels, Texels source, Texels from, Texels size) {
    const auto rowBytes = static_cast<std::size_t>(size.x) * 4;
    const auto sourceRowBytes = static_cast<std::size_t>(source.x) * 4;
    const auto there = static_cast<std::size_t>(std::min(size.x, source.x - from.x)) * 4;
    _rows.resize(rowBytes * static_cast<std::size_t>(size.y));
    for (int row = 0; row < size.y; ++row) {
        const int sourceRow = std::min(from.y + row, source.y - 1);
        const std::uint8_t* in = pixels.data() + static_cast<std::size_t>(sourceRow) * sourceRowBytes +
                                 static_cast<std::size_t>(from.x) * 4;
        std::uint8_t* out = _rows.data() + static_cast<std::size_t>(row) * rowBytes;
        std::memcpy(out, in, there);
        for (std::size_t at = there; at < rowBytes; at += 4) {
            std::memcpy(out + at, in + there - 4, 4);
        }
    }
}

std::size_t ImageTexture::uploadRows(const Part& part) {
    const auto level = _nextLevel;
    const int width = std::max(1, part.width >> level);
    const int height = std::max(1, part.height >> level);
    const int sourceWidth = std::max(1, _image->pixelWidth() >> level);
    const int sourceHeight = std::max(1, _image->pixelHeight() >> level);
    const int x = std::min(part.x >> level, sourceWidth - 1);
    const int y = std::min(part.y >> level, sourceHeight - 1);
    const auto pixels = level == 0 ? _image->pixels() : _image->levels()[static_cast<std::size_t>(level)];

    const auto rowBytes = static_cast<std::size_t>(width) * 4;
    const int rows = static_cast<int>(std::max<std::size_t>(1, kPieceBytes / rowBytes));
    const int count = std::min(rows, height - _nextRow);
    const std::uint8_t* data =
        pixels.data() + (static_cast<std::size_t>(y + _nextRow) * static_cast<std::size_t>(sourceWidth) +
                         static_cast<std::size_t>(x)) *
                            4;
    if (width != sourceWidth || y + _nextRow + count > sourceHeight) {
        copyRows(pixels, {sourceWidth, sourceHeight}, {x, y + _nextRow}, {width, count});
        data = _rows.data();
    }
    if (count == height) {
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    } else {
        if (_nextRow == 0) {
            glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        }
        glTexSubImage2D(GL_TEXTURE_2D, level, 0, _nextRow, width, count, GL_RGBA, GL_UNSIGNED_BYTE, data);
    }
    _nextRow += count;
    return rowBytes * static_cast<std::size_t>(count);
}

} // namespace trelmix
