#include "Render/FrameTarget.h"

#include "Render/GLErrors.h"

#include <algorithm>
#include <cstdint>

namespace trelmix {

namespace {

constexpr GLenum kReadFramebuffer = 0x8CA8; // GL_READ_FRAMEBUFFER in version 3 and in the extensions
constexpr GLenum kDrawFramebuffer = 0x8CA9;
constexpr GLenum kRGBA8 = 0x8058;
constexpr std::int64_t kMaximumSampleBytes = std::int64_t{1} << 30;

/// Of the bound framebuffer and the calls that made it; empty when it can be drawn into.
std::string fault() {
    const bool isComplete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    const std::string error = takeError();
    return error.empty() && !isComplete ? "the framebuffer is not complete" : error;
}

} // namespace

FrameTarget::FrameTarget(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> graveyard)
    : _capabilities(capabilities), _graveyard(std::move(graveyard)) {}

std::string FrameTarget::refusalOf(int width, int height) const {
    if (width <= 0 || height <= 0) {
        return "a picture needs a width and a height of at least one pixel";
    }
    const int limit = _capabilities.maximumTargetSize;
    if (width > limit || height > limit) {
        return "a picture of " + std::to_string(width) + " x " + std::to_string(height) +
               " pixels is larger than the driver's limit of " + std::to_string(limit);
    }
    return {};
}

std::string FrameTarget::resize(int width, int height, int samples) {
    if (std::string refusal = refusalOf(width, height); !refusal.empty()) {
        return refusal;
    }
    int used = limitedSamples(samples);
    while (used > 1 && std::int64_t{width} * height * 4 * used > kMaximumSampleBytes) {
        used /= 2;
    }
    if (width == _surface.width && height == _surface.height && used == _surface.samples) {
        return {};
    }
    Surface surface;
    surface.width = width;
    surface.height = height;
    surface.samples = used;
    if (const std::string error = build(surface); !error.empty()) {
        return "the driver refuses a picture of " + std::to_string(width) + " x " + std::to_string(height) +
               " pixels: " + error;
    }
    _surface = std::move(surface);
    return {};
}

std::string FrameTarget::build(Surface& surface) const {
    forgetErrors();
    surface.texture = GLTexture::make(_graveyard);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, surface.texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, surface.width, surface.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    surface.resolved = GLFramebuffer::make(_graveyard);
    glBindFramebuffer(GL_FRAMEBUFFER, surface.resolved.name());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, surface.texture.name(), 0);
    std::string error = fault();
    if (error.empty() && surface.samples > 1 && !addSamples(surface).empty()) {
        surface.drawn = {};
        surface.multisampled = {};
    }
    return error;
}

std::string FrameTarget::addSamples(Surface& surface) const {
    surface.drawn = GLFramebuffer::make(_graveyard);
    glBindFramebuffer(GL_FRAMEBUFFER, surface.drawn.name());
    if (_capabilities.framebufferTexture2DMultisample) {
        // The driver keeps the samples to itself and resolves them before the texture is next read.
        _capabilities.framebufferTexture2DMultisample(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                                                      surface.texture.name(), 0, surface.samples);
        return fault();
    }
    surface.multisampled = GLRenderbuffer::make(_graveyard);
    glBindRenderbuffer(GL_RENDERBUFFER, surface.multisampled.name());
    _capabilities.renderbufferStorageMultisample(GL_RENDERBUFFER, surface.samples, kRGBA8, surface.width,
                                                 surface.height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                              surface.multisampled.name());
    return fault();
}

void FrameTarget::bindForDrawing() const {
    glBindFramebuffer(GL_FRAMEBUFFER, _surface.drawn ? _surface.drawn.name() : _surface.resolved.name());
    glViewport(0, 0, _surface.width, _surface.height);
}

void FrameTarget::resolve() const {
    if (!_surface.multisampled) {
        return;
    }
    glBindFramebuffer(kReadFramebuffer, _surface.drawn.name());
    glBindFramebuffer(kDrawFramebuffer, _surface.resolved.name());
    _capabilities.blitFramebuffer(0, 0, _surface.width, _surface.height, 0, 0, _surface.width,
                                  _surface.height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    if (_capabilities.invalidateFramebuffer) {
        const GLenum color = GL_COLOR_ATTACHMENT0;
        _capabilities.invalidateFramebuffer(kReadFramebuffer, 1, &color);
    }
}

void FrameTarget::bindResolved() const {
    glBindFramebuffer(GL_FRAMEBUFFER, _surface.resolved.name());
    glViewport(0, 0, _surface.width, _surface.height);
}

} // namespace trelmix
