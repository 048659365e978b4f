#include "Render/GLCapabilities.h"

#include <EGL/egl.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string_view>

namespace trelmix {

namespace {

constexpr GLenum kMaximumSamples = 0x8D57; // GL_MAX_SAMPLES, the same value in every extension

std::string text(GLenum name) {
    const auto* value = reinterpret_cast<const char*>(glGetString(name));
    return value ? value : "";
}

int number(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

template <class F>
F function(const char* name) {
    return reinterpret_cast<F>(eglGetProcAddress(name));
}

/// Whole words only: one extension's name may be the beginning of another's.
bool hasWord(std::string_view words, std::string_view word) {
    for (std::size_t at = words.find(word); at != std::string_view::npos; at = words.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || words[at - 1] == ' ') && (end == words.size() || words[end] == ' ')) {
            return true;
        }
    }
    return false;
}

int majorVersionOf(const std::string& version) {
    int major = 2;
    if (std::sscanf(version.c_str(), "OpenGL ES %d", &major) != 1) {
        return 2;
    }
    return major;
}

bool drawsOnTheCPU(const std::string& renderer) {
    for (const char* name : {"llvmpipe", "softpipe", "SwiftShader", "swrast"}) {
        if (renderer.find(name) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool fragmentsHaveHighPrecision() {
    GLint range[2] = {};
    GLint bits = 0;
    glGetShaderPrecisionFormat(GL_FRAGMENT_SHADER, GL_HIGH_FLOAT, range, &bits);
    return range[1] > 0;
}

void findMultisampling(GLCapabilities& c, std::string_view extensions) {
    const char* storage = nullptr;
    const char* blit = nullptr;
    if (c.majorVersion >= 3) {
        storage = "glRenderbufferStorageMultisample";
        blit = "glBlitFramebuffer";
    } else if (hasWord(extensions, "GL_ANGLE_framebuffer_multisample") &&
               hasWord(extensions, "GL_ANGLE_framebuffer_blit")) {
        storage = "glRenderbufferStorageMultisampleANGLE";
        blit = "glBlitFramebufferANGLE";
    } else if (hasWord(extensions, "GL_NV_framebuffer_multisample") &&
               hasWord(extensions, "GL_NV_framebuffer_blit")) {
        storage = "glRenderbufferStorageMultisampleNV";
        blit = "glBlitFramebufferNV";
    } else if (hasWord(extensions, "GL_EXT_multisampled_render_to_texture")) {
        c.framebufferTexture2DMultisample =
            function<PFNGLFRAMEBUFFERTEXTURE2DMULTISAMPLEEXTPROC>("glFramebufferTexture2DMultisampleEXT");
        c.maximumSamples = c.framebufferTexture2DMultisample ? std::max(1, number(kMaximumSamples)) : 1;
        return;
    } else {
        return;
    }
    c.renderbufferStorageMultisample = function<PFNGLRENDERBUFFERSTORAGEMULTISAMPLEANGLEPROC>(storage);
    c.blitFramebuffer = function<PFNGLBLITFRAMEBUFFERANGLEPROC>(blit);
    if (c.renderbufferStorageMultisample && c.blitFramebuffer) {
        c.maximumSamples = std::max(1, number(kMaximumSamples));
    }
}

} // namespace

GLCapabilities GLCapabilities::ofCurrentContext() {
    GLCapabilities c;
    const std::string extensions = text(GL_EXTENSIONS);
    c.majorVersion = majorVersionOf(text(GL_VERSION));
    const bool three = c.majorVersion >= 3;
    c.renderer = text(GL_RENDERER);
    c.isSoftwareDriver = drawsOnTheCPU(c.renderer);
    c.maximumTextureSize = std::max(64, number(GL_MAX_TEXTURE_SIZE));
    GLint viewport[2] = {64, 64};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    c.maximumTargetSize =
        std::min({c.maximumTextureSize, number(GL_MAX_RENDERBUFFER_SIZE), viewport[0], viewport[1]});
    c.has32BitIndices = three || hasWord(extensions, "GL_OES_element_index_uint");
    c.hasHighPrecision = fragmentsHaveHighPrecision();
    c.hasLevelsOfAnySize = three || hasWord(extensions, "GL_OES_texture_npot");
    if (hasWord(extensions, "GL_EXT_texture_filter_anisotropic")) {
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &c.maximumAnisotropy);
    }
    findMultisampling(c, extensions);
    if (three) {
        c.bindVertexArray = function<PFNGLBINDVERTEXARRAYOESPROC>("glBindVertexArray");
        c.invalidateFramebuffer = function<PFNGLDISCARDFRAMEBUFFEREXTPROC>("glInvalidateFramebuffer");
    } else if (hasWord(extensions, "GL_OES_vertex_array_object")) {
        c.bindVertexArray = function<PFNGLBINDVERTEXARRAYOESPROC>("glBindVertexArrayOES");
    }
    return c;
}

} // namespace trelmix
