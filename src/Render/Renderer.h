#pragma once

#include "Platform/Scene/DrawList.h"
#include "Render/GLCapabilities.h"
#include "Render/GLObjects.h"

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <string>

namespace trelmix {

/// What one call of `Renderer::draw` did.
struct FrameReport {
    int drawCalls = 0;
    /// Images in view that are not on the graphics processor yet; the frame was drawn without them.
    int uploadsLeft = 0;
    std::size_t uploadedBytes = 0;
    /// Bytes of vertices and indices that were written.
    std::size_t rewrittenBytes = 0;
    /// That each pixel had: 1, and stairs along edges, where the driver has no multisampling or no memory for
    /// it.
    int samples = 1;
};

/// An image drawn upright over a finished picture.
struct OverlayQuad {
    std::shared_ptr<const UIImage> image;
    /// Pixels from the top left corner of what is drawn on.
    CGRect pixels;
};

/// A rectangle of a framebuffer of the context (0: the window's); pixels from its lower left corner.
struct RenderArea {
    unsigned framebuffer = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// Draws frames with OpenGL ES 2, into a framebuffer of its own or straight into one of the context.
///
/// Belongs to one context: every call, construction and destruction included, happens on a thread where that
/// context is current, except that it may be destroyed anywhere when the graveyard outlives it. Changes
/// OpenGL state freely; `GLStateGuard` protects an application's. A frame with the list and the camera of the
/// one before allocates nothing.
///
/// Longer than other classes, as the ways into a framebuffer (its own, another, over what is there) share one
/// state. What the picture is made of stands in DrawPlan, how that is drawn in RunPainter.
class Renderer {
public:
    struct Options {
        /// Samples a pixel; limited to what the driver has, and to 1 GiB of them.
        int samples = 4;
        /// Largest side of a texture; 0 for the driver's limit. Larger images are drawn in parts.
        int maximumTextureSize = 0;
        /// How many texels along a slant a filter takes in, limited to what the driver has; 0 for 4, or 1 on
        /// a driver that draws in software, where it costs more than it shows.
        float anisotropy = 0;
        /// How long one frame may go on uploading images, in seconds. At least one piece is uploaded a frame.
        double uploadSecondsPerFrame = std::numeric_limits<double>::infinity();
    };

    Renderer(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> graveyard, Options options);
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// Takes effect with the next frame.
    void setUploadSecondsPerFrame(double seconds);
    void setSamples(int samples);
    int samples() const;

    /// Draws the frame into a framebuffer of its own and resolves it. Fails, without a change to the picture
    /// before, when a size is not positive or beyond the driver's limits and when the driver has no memory
    /// for it.
    Result<FrameReport> draw(const DrawFrame& frame, int pixelWidth, int pixelHeight);
    /// Draws the frame into an area, and nothing beside it. Straight into it when one sample a pixel is
    /// wanted or the framebuffer has several of its own; else as `draw`, and the picture is copied there.
    /// Fails as `draw` does.
    Result<FrameReport> drawInto(const DrawFrame& frame, const RenderArea& area);
    /// Whether there is a picture of its own to read back: not when the last frame went straight into an
    /// area.
    bool hasPicture() const;
    /// The picture of the last frame, with what `drawImages` put over it.
    Result<std::shared_ptr<const UIImage>> readBack(double scale);
    /// Draws images over that picture. Their textures stay as long as the images do.
    void drawImages(std::span<const OverlayQuad> quads);

    /// As `drawImages`, into a framebuffer of the context that has `width` x `height` pixels.
    void drawImagesTo(unsigned framebuffer, int width, int height, std::span<const OverlayQuad> quads);

    /// Bytes of the textures that the last list's nodes and the images drawn over it hold.
    std::size_t textureBytes() const;

private:
    struct Parts;
    std::unique_ptr<Parts> _parts;
};

} // namespace trelmix
