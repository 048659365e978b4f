#pragma once

#include "Render/GLCapabilities.h"
#include "Render/GLObjects.h"

#include <algorithm>
#include <memory>
#include <string>

namespace trelmix {

/// The framebuffer that frames are drawn into: multisampled when asked for, then resolved into a texture.
///
/// Its rows run from the top of the picture, as those of images do, so that reading back turns nothing over;
/// the renderer's matrices look accordingly.
class FrameTarget {
public:
    FrameTarget(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> graveyard);

    /// Of those asked for, how many samples a pixel the driver has at most.
    int limitedSamples(int samples) const { return std::clamp(samples, 1, _capabilities.maximumSamples); }
    /// Why nothing this large can be drawn; empty when it can.
    std::string refusalOf(int width, int height) const;
    /// Makes it this large; empty when it is, else the reason why not, and what was there stays.
    std::string resize(int width, int height, int samples);
    /// Gives its memory back.
    void clear() { _surface = {}; }
    int width() const { return _surface.width; }
    int height() const { return _surface.height; }
    /// That each pixel really has.
    int samples() const { return _surface.drawn ? _surface.samples : 1; }
    bool isEmpty() const { return _surface.width == 0; }

    /// Binds what is drawn into and sets the viewport.
    void bindForDrawing() const;
    void resolve() const;
    /// Binds the resolved picture.
    void bindResolved() const;
    GLuint texture() const { return _surface.texture.name(); }

private:
    struct Surface {
        int width = 0;
        int height = 0;
        int samples = 0;
        GLTexture texture;
        GLFramebuffer resolved;
        GLRenderbuffer multisampled;
        GLFramebuffer drawn;
    };
    /// Empty, or the driver's error.
    std::string build(Surface& surface) const;
    std::string addSamples(Surface& surface) const;

    GLCapabilities _capabilities;
    std::shared_ptr<GLGraveyard> _graveyard;
    Surface _surface;
};

} // namespace trelmix
