#pragma once

#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <string>

namespace trelmix {

/// What the current OpenGL ES context offers beyond version 2.0. A plain value: tests switch parts off to run
/// the fallbacks.
struct GLCapabilities {
    /// Reads them from the context that is current on this thread; works for contexts that an application
    /// brought.
    static GLCapabilities ofCurrentContext();

    int majorVersion = 2;
    std::string renderer;
    /// The driver draws on the CPU.
    bool isSoftwareDriver = false;
    int maximumTextureSize = 64;
    /// Smallest of the limits for a framebuffer's side.
    int maximumTargetSize = 64;
    bool has32BitIndices = false;
    /// Levels of detail for textures whose sides are no powers of two.
    bool hasLevelsOfAnySize = false;
    /// 1 when the extension is missing.
    float maximumAnisotropy = 1;
    /// False where fragment shaders have to do with `mediump`.
    bool hasHighPrecision = false;
    /// 1 when there is no way to draw with several samples a pixel.
    int maximumSamples = 1;

    /// The way to draw with samples straight into a texture: only where the next two are missing, because a
    /// driver that has both may do this one badly.
    PFNGLFRAMEBUFFERTEXTURE2DMULTISAMPLEEXTPROC framebufferTexture2DMultisample = nullptr;
    PFNGLRENDERBUFFERSTORAGEMULTISAMPLEANGLEPROC renderbufferStorageMultisample = nullptr;
    PFNGLBLITFRAMEBUFFERANGLEPROC blitFramebuffer = nullptr;
    PFNGLBINDVERTEXARRAYOESPROC bindVertexArray = nullptr;
    PFNGLDISCARDFRAMEBUFFEREXTPROC invalidateFramebuffer = nullptr;
};

} // namespace trelmix
