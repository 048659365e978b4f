#include "Render/FrameTarget.h"
#include "Render/RenderFixture.h"

#include <algorithm>

namespace trelmix::render_test::edge_test {

TEST_F(RenderTest, slantedEdgesHaveGreysWithSamplesAndNoneWithout) {
    const auto quad = [] {
        auto item = imageItem(plainImage(4, 4, {0, 0, 0, 255}), {}, 1, true);
        const Matrix4d turned = Matrix4d::rotation({0, 0, 0.3});
        const auto corners = ground(-30, -30, 30, 30);
        std::transform(corners.begin(), corners.end(), item->corners.begin(),
                       [&](Vector3d p) { return turned.transformPoint(p); });
        return item;
    }();
    const auto greys = [&](int samples) {
        makeRenderer(withOption(&Renderer::Options::samples, samples));
        const DrawFrame frame = frameOf({quad}, cameraAt({}, 100));
        EXPECT_EQ(draw(frame, 100, 100).samples, std::min(samples, capabilities.maximumSamples));
        return levelsIn(*picture(frame, 100, 100));
    };
    EXPECT_EQ(greys(1), (std::set<int>{0, 255}));
    const int most = capabilities.maximumSamples;
    if (most == 1) {
        GTEST_SKIP() << "the driver has no multisampling";
    }
    EXPECT_EQ(greys(most).size(), static_cast<std::size_t>(most) + 1);
    // A window with samples of its own needs no picture beside it.
    FrameTarget window(capabilities, context->graveyard());
    ASSERT_EQ(window.resize(100, 100, most), "");
    window.bindForDrawing();
    GLint framebuffer = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    const auto report = renderer->drawInto(frameOf({quad}, cameraAt({}, 100)),
                                           {static_cast<unsigned>(framebuffer), 0, 0, 100, 100});
    EXPECT_EQ(report->samples, most);
    EXPECT_FALSE(renderer->hasPicture());
    window.resolve();
    window.bindResolved();
    std::vector<std::uint8_t> pixels(40'000);
    glReadPixels(0, 0, 100, 100, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(levelsIn(*UIImage::withPixels(100, 100, pixels)).size(), static_cast<std::size_t>(most) + 1);
    capabilities.maximumSamples = 1;
    EXPECT_EQ(greys(4), (std::set<int>{0, 255}));
}

GLsizei samplesAsked = 0;

TEST_F(RenderTest, samplesGoStraightIntoTheTextureWhereThereIsNoOtherWay) {
    // Drivers that have this way alone are for telephones: here it draws with one sample.
    samplesAsked = 0;
    capabilities.renderbufferStorageMultisample = nullptr;
    capabilities.blitFramebuffer = nullptr;
    capabilities.maximumSamples = 4;
    capabilities.framebufferTexture2DMultisample = [](GLenum target, GLenum attachment, GLenum kind,
                                                      GLuint texture, GLint level, GLsizei samples) {
        samplesAsked = samples;
        glFramebufferTexture2D(target, attachment, kind, texture, level);
    };
    makeRenderer();
    const DrawFrame frame = frameOf({discItem({}, 9, {0, 0, 1, 1})}, cameraAt({}, 8));
    EXPECT_EQ(draw(frame, 8, 8).samples, 4);
    EXPECT_EQ(samplesAsked, 4);
    EXPECT_EQ(pixelAt(*picture(frame, 8, 8), 4, 4), (Rgba{0, 0, 255, 255}));
}

/// Four by four tiles of three sizes that share edges, as layers of several zooms do.
Items whiteTiles(Vector3d at, double size) {
    Items items;
    const auto white = plainImage(8, 8, {255, 255, 255, 255});
    std::uint64_t sequence = 0;
    // The same expression for a shared edge, as the planes give it.
    const auto edge = [&](double origin, int n) { return origin + n * size / 7.0; };
    for (int row = -3; row < 3; ++row) {
        for (int column = -3; column < 3; ++column) {
            items.push_back(imageItem(
                white,
                ground(edge(at.x, column), edge(at.y, row), edge(at.x, column + 1), edge(at.y, row + 1)),
                ++sequence, true));
        }
    }
    return items;
}

TEST_F(RenderTest, noSeamOpensBetweenTilesAtAnyRotationAndTilt) {
    constexpr int kSize = 96;
    // This driver computes each triangle's edges by themselves: neighbours may miss pixels between them.
    const int allowed = capabilities.renderer == "softpipe" ? kSize : 0;
    for (const Vector3d at : {Vector3d{}, Vector3d{123456.789, -98765.4321, 0}}) {
        for (const int samples : {1, 4}) {
            makeRenderer(withOption(&Renderer::Options::samples, samples));
            for (int turn = 0; turn < 36; ++turn) {
                const double tilt = (turn % 4) * 18.0 * kDegree;
                const DrawCamera camera = cameraAt(at, kSize, tilt, turn * 10.37 * kDegree, 0.5);
                const auto shown =
                    picture(frameOf(whiteTiles(at, 700), camera, UIColor::blackColor()), kSize, kSize);
                ASSERT_LE(pixelsOtherThan({255, 255, 255, 255}, *shown), allowed) << "turn " << turn;
            }
        }
    }
}

TEST_F(RenderTest, stripesThatRunIntoAFlatViewAreSharperWithAnisotropy) {
    if (capabilities.maximumAnisotropy < 4) {
        GTEST_SKIP() << "the driver has no anisotropic filter";
    }
    const auto stripes = painted(256, 256, [](int x, int) {
        const int value = x / 2 % 2 * 255;
        return std::array{value, value, value};
    });
    const auto contrast = [&](float anisotropy) {
        makeRenderer(withOption(&Renderer::Options::anisotropy, anisotropy));
        const auto shown = picture(
            frameOf({imageItem(stripes, ground(-128, -128, 128, 128), 1, true)}, cameraAt({}, 64, 1.3)), 64,
            64);
        int least = 255, most = 0;
        for (int x = 16; x < 48; ++x) {
            least = std::min(least, pixelAt(*shown, x, 32)[0]);
            most = std::max(most, pixelAt(*shown, x, 32)[0]);
        }
        return most - least;
    };
    EXPECT_GT(contrast(4), contrast(1) + 60);
    EXPECT_EQ(contrast(0), contrast(capabilities.isSoftwareDriver ? 1 : 4));
}

} // namespace trelmix::render_test::edge_test
