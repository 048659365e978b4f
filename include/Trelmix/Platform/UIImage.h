/// @file
/// Bitmaps as the public interface exchanges them.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace trelmix {

/// A bitmap that never changes: rows from the top, four bytes a pixel (red, green, blue, alpha), colours
/// premultiplied by alpha.
///
/// Created by the factories below, shared by everything that shows it; may be used on any thread. Its size is
/// in points: pixels divided by `scale`.
class TRELMIX_API UIImage {
public:
    /// No image has more pixels than this; larger ones are refused before anything is allocated for them.
    static constexpr std::int64_t kMaximumPixelCount = 64LL * 1024 * 1024;

    /// A JPEG file holds no more pixels a side.
    static constexpr int kMaximumJpegSide = 65500;
    /// A WebP file holds no more pixels a side.
    static constexpr int kMaximumWebpSide = 16383;

    /// Decodes a PNG, JPEG or WebP file. Empty when the bytes are none of these, damaged, cut short, of no
    /// size, or larger than `kMaximumPixelCount`; `reason`, when given, then says why.
    /// @param scale pixels per point, greater than 0.
    static std::shared_ptr<const UIImage> withData(std::span<const std::byte> data, double scale = 1,
                                                   std::string* reason = nullptr);

    /// Takes over finished pixels (premultiplied RGBA, `width * height * 4` bytes). Empty when the sizes do
    /// not fit together, are not positive, or `scale` is not positive.
    static std::shared_ptr<const UIImage> withPixels(int width, int height, std::vector<std::uint8_t> pixels,
                                                     double scale = 1);

    ~UIImage();
    UIImage(const UIImage&) = delete;
    UIImage& operator=(const UIImage&) = delete;

    /// Size in points.
    CGSize size() const { return {_pixelWidth / _scale, _pixelHeight / _scale}; }
    /// Pixels per point.
    double scale() const { return _scale; }
    /// Pixels from left to right.
    int pixelWidth() const { return _pixelWidth; }
    /// Pixels from top to bottom.
    int pixelHeight() const { return _pixelHeight; }
    /// `pixelWidth() * pixelHeight() * 4` bytes, premultiplied.
    std::span<const std::uint8_t> pixels() const { return _pixels; }
    /// True when every pixel has full alpha.
    bool isOpaque() const { return _isOpaque; }
    /// Bytes held, levels of detail included.
    std::size_t byteCount() const;

    /// The image as a PNG file, not premultiplied. Empty only when memory runs out.
    std::vector<std::byte> pngData() const;
    /// The image as a JPEG file; what is translucent lies on white. Empty when memory runs out or a side has
    /// more than `kMaximumJpegSide` pixels.
    /// @param quality from 1, small, to 100, faithful; limited to that range.
    std::vector<std::byte> jpegData(int quality = 90) const;
    /// The image as a lossy WebP file, with its alpha. Empty when memory runs out or a side has more than
    /// `kMaximumWebpSide` pixels.
    /// @param quality as for `jpegData`.
    std::vector<std::byte> webpData(int quality = 90) const;

    /// Makes the half-sized levels of detail, down to one pixel, unless they are there. Slow for large
    /// images: call it off the main thread. May be called at once from several threads.
    void prepareLevels() const;
    /// Level 0 is the image; level n has max(1, size >> n) pixels a side. Prepares the levels when needed.
    /// Ends early only when memory runs out.
    std::span<const std::span<const std::uint8_t>> levels() const;

private:
    struct Levels;
    UIImage(int width, int height, std::vector<std::uint8_t> pixels, double scale);
    static std::shared_ptr<const UIImage> own(int width, int height, std::vector<std::uint8_t> pixels,
                                              double scale);

    int _pixelWidth;
    int _pixelHeight;
    double _scale;
    bool _isOpaque;
    std::vector<std::uint8_t> _pixels;
    std::unique_ptr<Levels> _detail;
};

} // namespace trelmix
