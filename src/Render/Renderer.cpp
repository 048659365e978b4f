#include "Render/Renderer.h"

#include "Render/FrameTarget.h"
#include "Render/GLErrors.h"
#include "Render/OverlayPainter.h"
#include "Render/RunPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace trelmix {

struct Renderer::Parts {
    Parts(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> shared, Options given)
        : graveyard(std::move(shared)), options(given), target(capabilities, graveyard),
          stores(capabilities, graveyard,
                 TextureLimits::of(capabilities, options.maximumTextureSize, options.anisotropy)),
          plan(stores), painter(stores, plan, graveyard, capabilities.hasHighPrecision) {}

    void setState();
    std::string update(const DrawFrame& frame, int width, int height, bool rowsRunDown, FrameReport& report);
    std::string drawHere(const DrawFrame& frame, int width, int height, FrameReport& report);
    std::string drawThere(const DrawFrame& frame, const RenderArea& area, FrameReport& report);
    std::string copyTo(const RenderArea& area);
    void paint(const DrawFrame& frame, FrameReport& report);
    void fade(const UIColor& background, double alpha);
    void drawOverlays(std::span<const OverlayQuad> quads, int width, int height, bool rowsRunDown);

    std::shared_ptr<GLGraveyard> graveyard;
    Options options;
    FrameTarget target;
    FrameView view;
    RenderStores stores;
    DrawPlan plan;
    RunPainter painter;
    OverlayPainter overlays{stores.images};
    VertexArrays arrays;
};

namespace {

constexpr const char* kShaders = "the renderer's shaders: ";

bool isUsable(const OverlayQuad& quad) {
    const CGRect& r = quad.pixels;
    return quad.image && std::isfinite(r.origin.x) && std::isfinite(r.origin.y) &&
           std::isfinite(r.size.width) && std::isfinite(r.size.height);
}

void clear(const UIColor& color) {
    const UIColor c = color.limited();
    glClearColor(static_cast<float>(c.red * c.alpha), static_cast<float>(c.green * c.alpha),
                 static_cast<float>(c.blue * c.alpha), static_cast<float>(c.alpha));
    glClear(GL_COLOR_BUFFER_BIT);
}

/// How many samples a pixel the area's framebuffer has, and binds it.
int samplesOf(const RenderArea& area) {
    GLint samples = 0;
    glBindFramebuffer(GL_FRAMEBUFFER, area.framebuffer);
    glGetIntegerv(GL_SAMPLES, &samples);
    return std::max(1, static_cast<int>(samples));
}

Result<FrameReport> resultOf(const FrameReport& report, std::string failure) {
    return failure.empty() ? Result(report) : Result<FrameReport>::failure(std::move(failure));
}

} // namespace

Renderer::Renderer(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> graveyard,
                   Options options)
    : _parts(std::make_unique<Parts>(capabilities, std::move(graveyard), options)) {}

Renderer::~Renderer() = default;

void Renderer::setUploadSecondsPerFrame(double seconds) {
    _parts->options.uploadSecondsPerFrame = seconds;
}

void Renderer::setSamples(int samples) {
    _parts->options.samples = samples;
}

int Renderer::samples() const {
    return _parts->options.samples;
}

Result<FrameReport> Renderer::draw(const DrawFrame& frame, int pixelWidth, int pixelHeight) {
    FrameReport report;
    std::string reason = _parts->drawHere(frame, pixelWidth, pixelHeight, report);
    return resultOf(report, std::move(reason));
}

Result<FrameReport> Renderer::drawInto(const DrawFrame& frame, const RenderArea& area) {
    Parts& parts = *_parts;
    FrameReport report;
    // Asked for only then: drivers may let a question wait.
    const bool wantsSamples = parts.target.limitedSamples(parts.options.samples) > 1;
    report.samples = wantsSamples ? samplesOf(area) : 1;
    std::string reason;
    if (!wantsSamples || report.samples > 1) {
        reason = parts.drawThere(frame, area, report);
    } else {
        reason = parts.drawHere(frame, area.width, area.height, report);
        reason = reason.empty() ? parts.copyTo(area) : reason;
    }
    return resultOf(report, std::move(reason));
}

std::string Renderer::Parts::drawHere(const DrawFrame& frame, int width, int height, FrameReport& report) {
    graveyard->deleteObjects();
    setState();
    if (std::string reason = target.resize(width, height, options.samples); !reason.empty()) {
        return reason;
    }
    if (std::string reason = update(frame, width, height, true, report); !reason.empty()) {
        return reason;
    }
    report.samples = target.samples();
    target.bindForDrawing();
    paint(frame, report);
    target.resolve();
    return {};
}

std::string Renderer::Parts::drawThere(const DrawFrame& frame, const RenderArea& area, FrameReport& report) {
    graveyard->deleteObjects();
    setState();
    if (std::string reason = target.refusalOf(area.width, area.height); !reason.empty()) {
        return reason;
    }
    if (std::string reason = update(frame, area.width, area.height, false, report); !reason.empty()) {
        return reason;
    }
    target.clear();
    glBindFramebuffer(GL_FRAMEBUFFER, area.framebuffer);
    glViewport(area.x, area.y, area.width, area.height);
    glScissor(area.x, area.y, area.width, area.height);
    glEnable(GL_SCISSOR_TEST);
    paint(frame, report);
    glDisable(GL_SCISSOR_TEST);
    return {};
}

std::string Renderer::Parts::copyTo(const RenderArea& area) {
    setState();
    if (const std::string reason = overlays.prepare(graveyard); !reason.empty()) {
        return kShaders + reason;
    }
    glDisable(GL_BLEND);
    glBindFramebuffer(GL_FRAMEBUFFER, area.framebuffer);
    glViewport(area.x, area.y, area.width, area.height);
    overlays.draw({-1, 1, 1, -1, 0, 0, 1, 1}, target.texture(), arrays);
    return {};
}

bool Renderer::hasPicture() const {
    return !_parts->target.isEmpty();
}

void Renderer::Parts::setState() {
    constexpr std::array<GLenum, 8> features{GL_DEPTH_TEST,
                                             GL_STENCIL_TEST,
                                             GL_CULL_FACE,
                                             GL_SCISSOR_TEST,
                                             GL_DITHER,
                                             GL_POLYGON_OFFSET_FILL,
                                             GL_SAMPLE_ALPHA_TO_COVERAGE,
                                             GL_SAMPLE_COVERAGE};
    for (const GLenum feature : features) {
        glDisable(feature);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_FALSE);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glActiveTexture(GL_TEXTURE0);
    arrays.reset();
}

/// Brings what the frame shows to the graphics processor; nothing is drawn yet.
std::string Renderer::Parts::update(const DrawFrame& frame, int width, int height, bool rowsRunDown,
                                    FrameReport& report) {
    const std::size_t before = stores.atlas.uploadedBytes();
    const std::size_t meshesBefore = stores.meshes.uploadedBytes();
    // Asked for only then, because drivers wait for the answer, and errors of an application's are its own.
    const bool mayUpload = !plan.has(frame.list) || stores.textures.isAnyWaiting();
    if (mayUpload) {
        forgetErrors();
    }
    const bool originMoved = view.update(frame.camera, width, height, rowsRunDown);
    report.rewrittenBytes = plan.setList(frame.list, view, originMoved);
    plan.markWaiting(view);
    report.uploadedBytes = stores.textures.upload(options.uploadSecondsPerFrame) +
                           stores.atlas.uploadedBytes() - before + stores.meshes.uploadedBytes() -
                           meshesBefore;
    if (std::string error = mayUpload ? takeError() : std::string(); !error.empty()) {
        return "the driver refuses what the picture shows: " + error;
    }
    report.uploadsLeft = stores.textures.waitingInView();
    const auto& runs = plan.makeRuns(view);
    report.rewrittenBytes +=
        stores.images.slots().upload() + stores.discs.slots().upload() + stores.indices.upload();
    const std::string reason = painter.prepare(runs);
    return reason.empty() ? reason : kShaders + reason;
}

/// Into what is bound.
void Renderer::Parts::paint(const DrawFrame& frame, FrameReport& report) {
    clear(frame.background);
    if (frame.alpha > 0 && view.isFinite()) {
        report.drawCalls += painter.paint(plan.runs(), view, arrays);
        if (frame.alpha < 1) {
            fade(frame.background, frame.alpha);
        }
    }
}

void Renderer::Parts::fade(const UIColor& background, double alpha) {
    if (!overlays.prepare(graveyard).empty()) {
        return;
    }
    // Over what was drawn, the bare background by the rest: an image of one pixel is all that takes.
    const UIColor c = background.limited();
    const auto byte = [&](double component) {
        return static_cast<std::uint8_t>(std::lround(component * c.alpha * 255));
    };
    const auto pixel = UIImage::withPixels(1, 1, {byte(c.red), byte(c.green), byte(c.blue), byte(1)});
    glEnable(GL_BLEND);
    glBlendColor(0, 0, 0, static_cast<float>(alpha));
    glBlendFunc(GL_ONE_MINUS_CONSTANT_ALPHA, GL_CONSTANT_ALPHA);
    overlays.draw({-1, -1, 1, 1, 0, 0, 1, 1}, stores.textures.overlay(pixel).parts().front().texture.name(),
                  arrays);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_BLEND);
    stores.textures.dropDeadOverlays();
}

Result<std::shared_ptr<const UIImage>> Renderer::readBack(double scale) {
    using Read = Result<std::shared_ptr<const UIImage>>;
    const FrameTarget& target = _parts->target;
    if (target.isEmpty()) {
        return Read::failure("nothing has been drawn yet");
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(target.width()) *
                                     static_cast<std::size_t>(target.height()) * 4);
    target.bindResolved();
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, target.width(), target.height(), GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    auto image = UIImage::withPixels(target.width(), target.height(), std::move(pixels), scale);
    if (!image) {
        return Read::failure(
            "the picture cannot be kept as an image: it is too large or its scale is not positive");
    }
    return Read(std::move(image));
}

void Renderer::drawImages(std::span<const OverlayQuad> quads) {
    Parts& parts = *_parts;
    if (parts.target.isEmpty()) {
        return;
    }
    parts.target.bindResolved();
    parts.drawOverlays(quads, parts.target.width(), parts.target.height(), true);
}

void Renderer::drawImagesTo(unsigned framebuffer, int width, int height, std::span<const OverlayQuad> quads) {
    if (width <= 0 || height <= 0) {
        return;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glViewport(0, 0, width, height);
    _parts->drawOverlays(quads, width, height, false);
}

void Renderer::Parts::drawOverlays(std::span<const OverlayQuad> quads, int width, int height,
                                   bool rowsRunDown) {
    setState();
    stores.textures.dropDeadOverlays();
    if (!overlays.prepare(graveyard).empty()) {
        return;
    }
    glEnable(GL_BLEND);
    for (const OverlayQuad& quad : quads) {
        if (isUsable(quad)) {
            overlays.draw(stores.textures.overlay(quad.image), quad.pixels, width, height, rowsRunDown,
                          arrays);
        }
    }
    glDisable(GL_BLEND);
}

std::size_t Renderer::textureBytes() const {
    return _parts->stores.textures.byteCount() + _parts->stores.atlas.byteCount();
}

} // namespace trelmix
