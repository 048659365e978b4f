#pragma once

#include <GLES2/gl2.h>

#include <array>
#include <cstdint>

namespace trelmix {

/// What stands for a window: a bitmap of the current context that is bound for drawing.
class TestWindow {
public:
    TestWindow(int width, int height) : _height(height) {
        glGenTextures(1, &_texture);
        glBindTexture(GL_TEXTURE_2D, _texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenFramebuffers(1, &_framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, _texture, 0);
    }
    ~TestWindow() {
        glDeleteFramebuffers(1, &_framebuffer);
        glDeleteTextures(1, &_texture);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    void fill(float red, float green, float blue, float alpha = 1) const {
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        glClearColor(red, green, blue, alpha);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    /// Pixels from the top left corner.
    std::array<int, 4> pixel(int x, int y) const {
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        std::array<std::uint8_t, 4> rgba{};
        glReadPixels(x, _height - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        return {rgba[0], rgba[1], rgba[2], rgba[3]};
    }

    unsigned framebuffer() const { return _framebuffer; }

private:
    int _height;
    GLuint _texture = 0, _framebuffer = 0;
};

} // namespace trelmix
