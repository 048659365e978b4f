#pragma once

#include "Render/GLCapabilities.h"
#include "Render/GLObjects.h"

#include <Trelmix/Platform/UIImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace trelmix {

/// What the driver and the options leave to textures.
struct TextureLimits {
    int maximumSize = 64;
    float anisotropy = 1;
    bool hasLevelsOfAnySize = false;

    /// 0 for the driver's size, and for the anisotropy that suits it.
    static TextureLimits of(const GLCapabilities& capabilities, int maximumSize, float anisotropy);
};

/// One image on the graphics processor: a texture, or several for an image beyond the limit.
///
/// Parts share a border with their neighbours, wide enough that a filter at the edge of one sees the texels
/// that it would see in the whole. Uploaded piece by piece, so that a large image does not hold up a frame.
///
/// Larger than most classes: cutting an image into parts and uploading them piece by piece share the borders'
/// arithmetic.
class ImageTexture {
public:
    struct Part {
        GLTexture texture;
        /// The texels that the texture holds, border included.
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        /// What it shows of the image, as fractions of it from the top left.
        double left = 0;
        double top = 0;
        double right = 1;
        double bottom = 1;
        /// The same in texture coordinates.
        float s0 = 0;
        float t0 = 0;
        float s1 = 1;
        float t1 = 1;
    };

    ImageTexture(std::shared_ptr<const UIImage> image, bool usesLevels, const TextureLimits& limits);

    /// Makes the next piece of at most about a megabyte; returns its bytes.
    std::size_t uploadPiece(const std::shared_ptr<GLGraveyard>& graveyard);
    bool isUploaded() const { return _nextPart == _parts.size(); }
    bool isUploaded(std::size_t part) const { return part < _nextPart; }
    /// Whether the frame that is about to be drawn shows it; what is in view is uploaded first.
    bool isInView() const { return _isInView; }
    void setInView(bool isInView) { _isInView = isInView; }
    bool isOpaque() const { return _isOpaque; }
    const std::vector<Part>& parts() const { return _parts; }
    /// On the graphics processor, levels included.
    std::size_t byteCount() const { return _byteCount; }

private:
    void split(int limit);
    void startPart(Part& part, const std::shared_ptr<GLGraveyard>& graveyard);
    std::size_t uploadRows(const Part& part);
    struct Texels {
        int x;
        int y;
    };
    /// Cuts a rectangle out of a level, repeating the level's edge beyond it.
    void copyRows(std::span<const std::uint8_t> pixels, Texels source, Texels from, Texels size);
    int levelCount(const Part& part) const;

    std::shared_ptr<const UIImage> _image; ///< until it is uploaded
    bool _isOpaque;
    bool _isInView = false;
    bool _usesLevels;
    float _anisotropy;
    std::vector<Part> _parts;
    std::size_t _nextPart = 0;
    int _nextLevel = 0;
    int _nextRow = 0;
    std::size_t _byteCount = 0;
    std::vector<std::uint8_t> _rows;
};

} // namespace trelmix
