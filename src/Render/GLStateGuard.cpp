#include "Render/GLStateGuard.h"

#include <GLES3/gl3.h>

#include <EGL/egl.h>

#include <algorithm>
#include <array>
#include <vector>

namespace trelmix {

namespace {

constexpr std::array<GLenum, 9> kFeatures{
    GL_BLEND,          GL_DEPTH_TEST, GL_STENCIL_TEST,        GL_CULL_FACE,
    GL_SCISSOR_TEST,   GL_DITHER,     GL_POLYGON_OFFSET_FILL, GL_SAMPLE_ALPHA_TO_COVERAGE,
    GL_SAMPLE_COVERAGE};
/// Of version 3, all 0 by default.
constexpr std::array<GLenum, 10> kPixelStores{
    GL_UNPACK_ROW_LENGTH,  GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_IMAGE_HEIGHT,
    GL_UNPACK_SKIP_IMAGES, GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,     GL_PACK_SKIP_PIXELS,
    GL_UNPACK_ALIGNMENT,   GL_PACK_ALIGNMENT};
constexpr std::size_t kPixelStores2 = 8; ///< from here on they are version 2's as well

GLint integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

void setFeature(GLenum feature, bool on) {
    on ? glEnable(feature) : glDisable(feature);
}

using BindSampler = void (*)(GLuint unit, GLuint sampler);

/// Looked up, so that the library asks its loader for nothing beyond version 2.
BindSampler bindSampler() {
    return reinterpret_cast<BindSampler>(eglGetProcAddress("glBindSampler"));
}

/// One vertex attribute of the default vertex array.
struct Attribute {
    GLint isEnabled = 0;
    GLint size = 4;
    GLint stride = 0;
    GLint type = GL_FLOAT;
    GLint isNormalized = 0;
    GLint buffer = 0;
    void* pointer = nullptr;
    std::array<GLfloat, 4> constant{};

    void save(GLuint index) {
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &isEnabled);
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_SIZE, &size);
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE, &stride);
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_TYPE, &type);
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, &isNormalized);
        glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, &buffer);
        glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        glGetVertexAttribfv(index, GL_CURRENT_VERTEX_ATTRIB, constant.data());
    }
    void restore(GLuint index) const {
        glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(buffer));
        glVertexAttribPointer(index, size, static_cast<GLenum>(type), static_cast<GLboolean>(isNormalized),
                              stride, pointer);
        glVertexAttrib4fv(index, constant.data());
        isEnabled ? glEnableVertexAttribArray(index) : glDisableVertexAttribArray(index);
    }
};

} // namespace

struct GLStateGuard::Saved {
    GLCapabilities capabilities;
    std::array<bool, kFeatures.size()> features{};
    std::array<GLint, kPixelStores.size()> pixelStores{};
    GLint framebuffer = 0;
    GLint readFramebuffer = 0;
    GLint renderbuffer = 0;
    GLint program = 0;
    GLint activeTexture = 0;
    GLint texture = 0;
    GLint sampler = 0;
    GLint vertexArray = 0;
    GLint arrayBuffer = 0;
    GLint elementBuffer = 0;
    GLint packBuffer = 0;
    GLint unpackBuffer = 0;
    GLint depthMask = 0;
    bool discards = false;
    std::array<GLint, 4> viewport{};
    std::array<GLint, 4> scissor{};
    std::array<GLint, 4> colorMask{};
    std::array<GLint, 6> blend{};
    std::array<GLfloat, 4> clearColor{};
    std::array<GLfloat, 4> blendColor{};
    std::vector<Attribute> attributes;

    bool isThree() const { return capabilities.majorVersion >= 3; }
    void saveBindings();
    void saveValues();
    void restoreBindings() const;
    void restoreValues() const;
    void setDefaults() const;
};

void GLStateGuard::Saved::saveBindings() {
    framebuffer = integer(GL_FRAMEBUFFER_BINDING);
    renderbuffer = integer(GL_RENDERBUFFER_BINDING);
    program = integer(GL_CURRENT_PROGRAM);
    activeTexture = integer(GL_ACTIVE_TEXTURE);
    glActiveTexture(GL_TEXTURE0);
    texture = integer(GL_TEXTURE_BINDING_2D);
    arrayBuffer = integer(GL_ARRAY_BUFFER_BINDING);
    if (capabilities.bindVertexArray) {
        vertexArray = integer(GL_VERTEX_ARRAY_BINDING);
        capabilities.bindVertexArray(0);
    }
    elementBuffer = integer(GL_ELEMENT_ARRAY_BUFFER_BINDING);
    if (isThree()) {
        readFramebuffer = integer(GL_READ_FRAMEBUFFER_BINDING);
        sampler = integer(GL_SAMPLER_BINDING);
        packBuffer = integer(GL_PIXEL_PACK_BUFFER_BINDING);
        unpackBuffer = integer(GL_PIXEL_UNPACK_BUFFER_BINDING);
    }
    attributes.resize(static_cast<std::size_t>(std::max(0, integer(GL_MAX_VERTEX_ATTRIBS))));
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        attributes[i].save(static_cast<GLuint>(i));
        glDisableVertexAttribArray(static_cast<GLuint>(i));
    }
}

void GLStateGuard::Saved::saveValues() {
    for (std::size_t i = 0; i < kFeatures.size(); ++i) {
        features[i] = glIsEnabled(kFeatures[i]) == GL_TRUE;
    }
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    glGetIntegerv(GL_SCISSOR_BOX, scissor.data());
    glGetIntegerv(GL_COLOR_WRITEMASK, colorMask.data());
    depthMask = integer(GL_DEPTH_WRITEMASK);
    blend = {integer(GL_BLEND_EQUATION_RGB), integer(GL_BLEND_EQUATION_ALPHA), integer(GL_BLEND_SRC_RGB),
             integer(GL_BLEND_DST_RGB),      integer(GL_BLEND_SRC_ALPHA),      integer(GL_BLEND_DST_ALPHA)};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clearColor.data());
    glGetFloatv(GL_BLEND_COLOR, blendColor.data());
    for (std::size_t i = isThree() ? 0 : kPixelStores2; i < kPixelStores.size(); ++i) {
        pixelStores[i] = integer(kPixelStores[i]);
    }
    discards = isThree() && glIsEnabled(GL_RASTERIZER_DISCARD) == GL_TRUE;
}

void GLStateGuard::Saved::setDefaults() const {
    if (!isThree()) {
        return;
    }
    glDisable(GL_RASTERIZER_DISCARD);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    if (const BindSampler bind = bindSampler()) {
        bind(0, 0);
    }
    for (std::size_t i = 0; i < kPixelStores2; ++i) {
        glPixelStorei(kPixelStores[i], 0);
    }
}

void GLStateGuard::Saved::restoreBindings() const {
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        attributes[i].restore(static_cast<GLuint>(i));
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(elementBuffer));
    if (capabilities.bindVertexArray) {
        capabilities.bindVertexArray(static_cast<GLuint>(vertexArray));
    }
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    if (isThree()) {
        if (const BindSampler bind = bindSampler()) {
            bind(0, static_cast<GLuint>(sampler));
        }
        glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(unpackBuffer));
    }
    glActiveTexture(static_cast<GLenum>(activeTexture));
    glUseProgram(static_cast<GLuint>(program));
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbuffer));
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
    if (isThree()) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer));
    }
}

void GLStateGuard::Saved::restoreValues() const {
    for (std::size_t i = 0; i < kFeatures.size(); ++i) {
        setFeature(kFeatures[i], features[i]);
    }
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
    const auto flag = [](GLint value) { return static_cast<GLboolean>(value != 0); };
    glColorMask(flag(colorMask[0]), flag(colorMask[1]), flag(colorMask[2]), flag(colorMask[3]));
    glDepthMask(flag(depthMask));
    glBlendEquationSeparate(static_cast<GLenum>(blend[0]), static_cast<GLenum>(blend[1]));
    glBlendFuncSeparate(static_cast<GLenum>(blend[2]), static_cast<GLenum>(blend[3]),
                        static_cast<GLenum>(blend[4]), static_cast<GLenum>(blend[5]));
    glClearColor(clearColor[0], clearColor[1], clearColor[2], clearColor[3]);
    glBlendColor(blendColor[0], blendColor[1], blendColor[2], blendColor[3]);
    for (std::size_t i = isThree() ? 0 : kPixelStores2; i < kPixelStores.size(); ++i) {
        glPixelStorei(kPixelStores[i], pixelStores[i]);
    }
    if (discards) {
        glEnable(GL_RASTERIZER_DISCARD);
    }
}

GLStateGuard::GLStateGuard(const GLCapabilities& capabilities) : _saved(std::make_unique<Saved>()) {
    _saved->capabilities = capabilities;
    _saved->saveBindings();
    _saved->saveValues();
    _saved->setDefaults();
}

GLStateGuard::~GLStateGuard() {
    _saved->restoreValues();
    _saved->restoreBindings();
}

unsigned GLStateGuard::framebuffer() const {
    return static_cast<unsigned>(_saved->framebuffer);
}

} // namespace trelmix
