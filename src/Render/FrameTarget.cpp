#include "Render/FrameTarget.h"

#include <algorithm>
#include <cstdint>

namespace trelmix {

namespace {

constexpr GLenum kReadFramebuffer = 0x8CA8; // GL_READ_FRAMEBUFFER in version 3 and in the extensions
constexpr GLenum kDrawFramebuffer = 0x8CA9;
constexpr GLenum kRGBA8 = 0x8058;
constexpr std::int64_t kMaximumSampleBytes = std::int64_t{1} << 30;

void forgetErrors() {
    // A lost context answers with an error for ever.
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
    }
}

bool isComplete() {
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE && glGetError() == GL_NO_ERROR;
}

} // namespace

FrameTarget::FrameTarget(const GLCapabilities& capabilities, std::shared_ptr<GLGraveyard> graveyard)
    : _capabilities(capabilities), _graveyard(std::move(graveyard)) {}

std::string FrameTarget::resize(int width, int height, int samples) {
    if (width <= 0 || height <= 0) {
        return "a picture needs a width and a height of at least one pixel";
    }
    const int limit = _capabilities.maximumTargetSize;
    if (width > limit || height > limit) {
        return "a picture of " + std::to_string(width) + " x " + std::to_string(height) +
               " pixels is larger than the driver's limit of " + std::to_string(limit);
    }
    int used = std::clamp(samples, 1, _capabilities.maximumSamples);
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
    if (!build(surface)) {
        return "the driver has no memory for a picture of " + std::to_string(width) + " x " +
               std::to_string(height) + " pixels";
    }
    _surface = std::move(surface);
    return {};
}

bool FrameTarget::build(Surface& surface) const {
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
    if (!isComplete()) {
        return false;
    }
    if (surface.samples > 1 && !addSamples(surface)) {
        forgetErrors();
        surface.drawn = {};
        surface.multisampled = {};
    }
    return true;
}

bool FrameTarget::addSamples(Surface& surface) const {
    surface.multisampled = GLRenderbuffer::make(_graveyard);
    glBindRenderbuffer(GL_RENDERBUFFER, surface.multisampled.name());
    _capabilities.renderbufferStorageMultisample(GL_RENDERBUFFER, surface.samples, kRGBA8, surface.width,
                                                 surface.height);
    surface.drawn = GLFramebuffer::make(_graveyard);
    glBindFramebuffer(GL_FRAMEBUFFER, surface.drawn.name());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                              surface.multisampled.name());
    return isComplete();
}

void FrameTarget::bindForDrawing() const {
    glBindFramebuffer(GL_FRAMEBUFFER, _surface.drawn ? _surface.drawn.name() : _surface.resolved.name());
    glViewport(0, 0, _surface.width, _surface.height);
}

void FrameTarget::resolve() const {
    if (!_surface.drawn) {
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
