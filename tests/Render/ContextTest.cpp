#include "Render/RenderFixture.h"

#include <GLES2/gl2.h>

#include <thread>

namespace trelmix::render_test {
namespace {

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
    // A whole renderer, too.
    draw(frameOf({discItem({}, 5, {1, 0, 0, 1})}, cameraAt({}, 8)), 8, 8);
    std::thread([dropped = std::move(renderer)] {}).join();
    graveyard->deleteObjects();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RenderTest, aContextMovesToAnotherThreadOnceItIsReleased) {
    bool drawn = false;
    context->release();
    std::thread([&] {
        drawn = context->makeCurrent() &&
                renderer->draw(frameOf({discItem({}, 5, {1, 0, 0, 1})}, cameraAt({}, 8)), 8, 8);
        context->release();
    }).join();
    EXPECT_TRUE(drawn);
    ASSERT_TRUE(context->makeCurrent());
    EXPECT_EQ(pixelAt(**renderer->readBack(1), 4, 4), (Rgba{255, 0, 0, 255}));
}

} // namespace
} // namespace trelmix::render_test
