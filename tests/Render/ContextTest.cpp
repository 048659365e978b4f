#include "Render/RenderFixture.h"

#include <GLES2/gl2.h>

#include <thread>

namespace trelmix::render_test::context_test {

/// Of every kind, in the current context; drivers count names from 1.
int objectsAlive() {
    int count = 0;
    for (GLuint name = 1; name < 200; ++name) {
        count += glIsTexture(name) + glIsBuffer(name) + glIsFramebuffer(name) + glIsRenderbuffer(name) +
                 glIsProgram(name) + glIsShader(name);
    }
    return count;
}

TEST_F(RenderTest, twoContextsDrawSideBySideAndEachKeepsItsOwnTextures) {
    auto other = GLContext::makeOffscreen();
    ASSERT_TRUE(other);
    auto second =
        std::make_unique<Renderer>((*other)->capabilities(), (*other)->graveyard(), Renderer::Options{});
    const auto image = plainImage(40, 40, {0, 99, 0, 255});
    const DrawFrame frame = frameOf({imageItem(image, ground(-9, -9, 9, 9), 1, true)}, cameraAt({}, 8));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(context->makeCurrent());
        EXPECT_EQ(pixelAt(*picture(frame, 8, 8), 4, 4), (Rgba{0, 99, 0, 255}));
        ASSERT_TRUE((*other)->makeCurrent());
        ASSERT_TRUE(second->draw(frame, 8, 8));
        EXPECT_EQ(pixelAt(**second->readBack(1), 4, 4), (Rgba{0, 99, 0, 255}));
    }
    ASSERT_TRUE(context->makeCurrent());
    // Another context's end leaves the current one current.
    second.reset();
    *other = nullptr;
    EXPECT_EQ(pixelAt(*picture(frame, 8, 8), 4, 4), (Rgba{0, 99, 0, 255}));
}

TEST_F(RenderTest, objectsDroppedOnAnotherThreadAreDeletedOnTheContextsOwn) {
    const auto graveyard = context->graveyard();
    auto texture = GLTexture::make(graveyard);
    const GLuint name = texture.name();
    glBindTexture(GL_TEXTURE_2D, name);
    std::thread([dropped = std::move(texture)]() mutable { GLTexture last = std::move(dropped); }).join();
    EXPECT_TRUE(glIsTexture(name));
    graveyard->deleteObjects();
    EXPECT_FALSE(glIsTexture(name));
    // A whole renderer, too, which has drawn something of each kind.
    const auto fill = fillItem(triangle({-9, -9, 0, 9, -9, 0, 0, 9, 0}), {1, 1, 1, 1}, 2);
    const auto all = ground(-9, -9, 9, 9);
    const auto image = plainImage(40, 40, {0, 99, 0, 255});
    draw(frameOf(
             {discItem({}, 5, {1, 0, 0, 1}), fill, imageItem(image, all, 3, true), imageItem(image, all, 4)},
             cameraAt({}, 8)),
         8, 8);
    const OverlayQuad over{image, {{0, 0}, {4, 4}}};
    renderer->drawImages({&over, 1});
    EXPECT_GT(objectsAlive(), 8);
    std::thread([dropped = std::move(renderer)] {}).join();
    glUseProgram(0); // a program in use outlives its deletion
    graveyard->deleteObjects();
    EXPECT_EQ(objectsAlive(), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

} // namespace trelmix::render_test::context_test
