#include "Render/GLStateGuard.h"
#include "Render/RenderFixture.h"

#include <GLES2/gl2.h>

#include <limits>

namespace trelmix::render_test {
namespace {

/// The bound framebuffer's pixel, counted from the lower left.
Rgba readPixel(int x, int y) {
    std::uint8_t p[4] = {};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, p);
    return {p[0], p[1], p[2], p[3]};
}

/// A framebuffer as an application's window has it.
class Window {
public:
    Window(int width, int height) {
        glGenTextures(1, &_texture);
        glBindTexture(GL_TEXTURE_2D, _texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, _texture, 0);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    ~Window() {
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteTextures(1, &_texture);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    GLuint framebuffer = 0;

private:
    GLuint _texture = 0;
};

TEST_F(RenderTest, thePictureStandsUprightInAWindowBesideWhatElseIsThere) {
    const auto red = plainImage(2, 2, {255, 0, 0, 255});
    draw(frameOf({imageItem(red, ground(-20, 0, 20, 20), 1)}, cameraAt({}, 32)), 32, 32);
    Window window(64, 40);
    renderer->blitTo(window.framebuffer, 4, 2, 32, 32);
    const OverlayQuad side{plainImage(4, 4, {0, 64, 0, 128}), {{40, 1}, {20, 10}}};
    renderer->drawImagesTo(window.framebuffer, 64, 40, {&side, 1});
    glBindFramebuffer(GL_FRAMEBUFFER, window.framebuffer);
    EXPECT_EQ(readPixel(20, 30), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(readPixel(20, 6), (Rgba{255, 255, 255, 255}));
    EXPECT_EQ(readPixel(2, 30), (Rgba{0, 0, 0, 0}));
    EXPECT_EQ(readPixel(45, 35), (Rgba{0, 64, 0, 128}));
    EXPECT_EQ(readPixel(45, 25), (Rgba{0, 0, 0, 0}));
}

TEST_F(RenderTest, imagesOverThePictureAreSharpAndGoWithTheirImages) {
    draw(frameOf({}, cameraAt({}, 20)), 30, 20);
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 35; ++i) {
        pixels.insert(pixels.end(),
                      {static_cast<std::uint8_t>(i * 7), 0, static_cast<std::uint8_t>(255 - i), 255});
    }
    auto label = UIImage::withPixels(7, 5, pixels);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<OverlayQuad> quads{
        {label, {{21, 14}, {7, 5}}}, {nullptr, {{0, 0}, {9, 9}}}, {label, {{nan, 0}, {9, 9}}}};
    renderer->drawImages(quads);
    const auto shown = renderer->readBack(2);
    ASSERT_TRUE(shown);
    EXPECT_EQ((*shown)->size(), (CGSize{15, 10}));
    for (int i = 0; i < 35; ++i) {
        EXPECT_EQ(pixelAt(**shown, 21 + i % 7, 14 + i / 7), pixelAt(*label, i % 7, i / 7));
    }
    EXPECT_EQ(pixelAt(**shown, 20, 14), (Rgba{255, 255, 255, 255}));
    EXPECT_GT(renderer->textureBytes(), 0U);
}

TEST_F(RenderTest, theGuardGivesAnApplicationItsStateBack) {
    Window window(8, 8);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 2, 2);
    glViewport(1, 2, 3, 4);
    glBlendFunc(GL_DST_COLOR, GL_ZERO);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glActiveTexture(GL_TEXTURE3);
    GLuint buffers[2];
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glVertexAttribPointer(1, 2, GL_SHORT, GL_TRUE, 12, nullptr);
    glEnableVertexAttribArray(1);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    std::shared_ptr<const UIImage> shown;
    {
        const GLStateGuard guard(capabilities);
        EXPECT_EQ(guard.framebuffer(), window.framebuffer);
        const auto image = plainImage(3, 3, {1, 2, 3, 255});
        shown = picture(frameOf({imageItem(image, ground(-9, -9, 9, 9), 1, true)}, cameraAt({}, 8)), 8, 8);
    }
    EXPECT_EQ(pixelAt(*shown, 6, 6), (Rgba{1, 2, 3, 255}));
    const auto number = [](GLenum name) {
        GLint value = 0;
        glGetIntegerv(name, &value);
        return static_cast<GLuint>(value);
    };
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(number(GL_BLEND_SRC_RGB), static_cast<GLuint>(GL_DST_COLOR));
    EXPECT_EQ(number(GL_UNPACK_ALIGNMENT), 8U);
    EXPECT_EQ(number(GL_ACTIVE_TEXTURE), static_cast<GLuint>(GL_TEXTURE3));
    EXPECT_EQ(number(GL_FRAMEBUFFER_BINDING), window.framebuffer);
    EXPECT_EQ(number(GL_ARRAY_BUFFER_BINDING), buffers[0]);
    EXPECT_EQ(number(GL_ELEMENT_ARRAY_BUFFER_BINDING), buffers[1]);
    GLint value = 0;
    glGetVertexAttribiv(1, GL_VERTEX_ATTRIB_ARRAY_STRIDE, &value);
    EXPECT_EQ(value, 12);
    glGetVertexAttribiv(1, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &value);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteBuffers(2, buffers);
}

} // namespace
} // namespace trelmix::render_test
