// What a host draws, and what it leaves alone.
#include "Host/HostStage.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <GLES3/gl3.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace trelmix::view_host_test {

using Color = std::array<int, 4>;
using Drawing = ViewHost::Drawing;

constexpr Color kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255}, kBlue{0, 0, 255, 255};

class ViewHostTest : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        engine->setBackgroundColor(UIColor{1, 0, 0, 1});
        engine->initialiseWithTarget({53.5, 10}, 17);
        host = std::move(*ViewHost::make(engine, kLayout, {}));
    }
    void TearDown() override {
        host.reset();
        WindowFixture::TearDown();
    }

    Drawing frame(bool always = false) {
        Clock::set(Clock::now() + kFrame);
        const Drawing drawing = host->drawFrame(always);
        host->pump();
        return drawing;
    }
    /// Draws until nothing changes; false when it never ends.
    bool comesToRest() {
        for (int i = 0; i < 200; ++i) {
            if (frame() == Drawing::unchanged) {
                return true;
            }
        }
        return false;
    }

    static constexpr ViewHost::Layout kLayout{{200, 150}, {{20, 10}, {100, 80}}, 1};
    std::unique_ptr<ViewHost> host;
};

TEST_F(ViewHostTest, mapAndImagesLieInTheirPlacesAtEveryScaleAndTheRestOfTheWindowStays) {
    const std::pair<Color, std::vector<std::pair<int, int>>> places[] = {
        {kRed, {{20, 10}, {119, 10}, {20, 89}, {109, 79}}},
        {kGreen, {{19, 10}, {120, 10}, {20, 9}, {20, 90}, {140, 99}, {139, 100}}},
        {kBlue, {{110, 80}, {139, 99}}}};
    for (const double scale : {1.0, 2.0}) {
        const auto points = [scale](double x, double y, double width, double height) {
            return CGRect{{x / scale, y / scale}, {width / scale, height / scale}};
        };
        ASSERT_TRUE(host->setLayout({points(0, 0, 200, 150).size, points(20, 10, 100, 80), scale}));
        host->setOverlayImages({{plainImage(10, 10, {0, 0, 255, 255}), points(110, 80, 30, 20)}});
        window->fill(0, 1, 0);
        ASSERT_TRUE(comesToRest());
        for (const auto& [color, pixels] : places) {
            for (const auto& [x, y] : pixels) {
                EXPECT_EQ(window->pixel(x, y), color) << x << ", " << y << " at " << scale;
            }
        }
        const auto picture = *host->image();
        EXPECT_EQ(picture->pixelWidth(), 100) << "the map alone";
        EXPECT_EQ(picture->scale(), scale);
    }
}

TEST_F(ViewHostTest, aFrameWithoutChangesLeavesTheWindowAlone) {
    ASSERT_TRUE(comesToRest());
    const auto isDrawnAfter = [&](const std::function<void()>& change) {
        window->fill(0, 1, 0);
        change();
        const bool isDrawn = frame() == Drawing::drawn;
        EXPECT_EQ(window->pixel(50, 50) == kRed, isDrawn);
        EXPECT_TRUE(comesToRest());
        return isDrawn;
    };
    const auto image = plainImage(4, 4, {0, 0, 255, 255});
    EXPECT_FALSE(isDrawnAfter([] {}));
    EXPECT_TRUE(isDrawnAfter([&] { engine->setCameraWithRotation(0, 0, 18, false); }));
    EXPECT_FALSE(isDrawnAfter([&] { engine->setCameraWithRotation(0, 0, 18, false); }));
    EXPECT_TRUE(isDrawnAfter([&] { host->setOverlayImages({{image, {{0, 0}, {4, 4}}}}); }));
    EXPECT_FALSE(isDrawnAfter([&] { host->setOverlayImages({{image, {{0, 0}, {4, 4}}}}); }));
    EXPECT_TRUE(isDrawnAfter([&] { host->setOverlayImages({}); }));
    EXPECT_TRUE(isDrawnAfter([&] { host->setLayout({{200, 150}, {{0, 0}, {180, 80}}, 1}); }));
    EXPECT_EQ(frame(true), Drawing::drawn) << "asked for";
}

TEST_F(ViewHostTest, theApplicationsStateIsAsItWas) {
    const bool isThree = context->capabilities().majorVersion >= 3;
    GLuint names[3] = {};
    glGenTextures(1, &names[0]);
    glGenBuffers(1, &names[1]);
    if (isThree) {
        glGenSamplers(1, &names[2]);
        glBindSampler(0, names[2]);
    }
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, names[0]);
    glBindBuffer(GL_ARRAY_BUFFER, names[1]);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 2, 3, 4);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glVertexAttribPointer(1, 2, GL_SHORT, GL_TRUE, 12, nullptr);
    glEnableVertexAttribArray(1);
    glBlendFunc(GL_ZERO, GL_SRC_COLOR);
    glViewport(5, 6, 7, 8);
    glClearColor(0.25F, 0.5F, 0.75F, 0.125F);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_TRUE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    const auto state = [isThree] {
        std::vector<GLint> values;
        for (const int name :
             {GL_ACTIVE_TEXTURE, GL_TEXTURE_BINDING_2D, GL_ARRAY_BUFFER_BINDING, GL_SCISSOR_TEST,
              GL_SCISSOR_BOX, GL_BLEND, GL_DEPTH_TEST, GL_CULL_FACE, GL_BLEND_SRC_RGB, GL_BLEND_DST_ALPHA,
              GL_VIEWPORT, GL_COLOR_WRITEMASK, GL_UNPACK_ALIGNMENT, GL_FRAMEBUFFER_BINDING,
              GL_CURRENT_PROGRAM, GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_RENDERBUFFER_BINDING}) {
            GLint value[4] = {};
            glGetIntegerv(static_cast<GLenum>(name), value);
            values.insert(values.end(), std::begin(value), std::end(value));
        }
        for (const int name : {GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_ENABLED}) {
            glGetVertexAttribiv(1, static_cast<GLenum>(name), &values.emplace_back());
        }
        glActiveTexture(GL_TEXTURE0);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &values.emplace_back());
        if (isThree) {
            glGetIntegerv(GL_SAMPLER_BINDING, &values.emplace_back());
        }
        glActiveTexture(static_cast<GLenum>(values[0]));
        GLfloat color[4] = {};
        glGetFloatv(GL_COLOR_CLEAR_VALUE, color);
        std::transform(std::begin(color), std::end(color), std::back_inserter(values),
                       [](GLfloat part) { return static_cast<GLint>(std::lround(part * 1000)); });
        return values;
    };
    host->setOverlayImages({{plainImage(4, 4, {0, 0, 255, 255}), {{0, 0}, {4, 4}}}});
    for (const auto setBlending : {glEnable, glDisable}) {
        setBlending(GL_BLEND);
        const auto before = state();
        EXPECT_EQ(frame(true), Drawing::drawn);
        EXPECT_TRUE(host->image());
        EXPECT_EQ(state(), before);
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_SCISSOR_TEST);
    EXPECT_EQ(window->pixel(50, 50), kRed) << "drawn whole in spite of it";
    glDeleteTextures(1, &names[0]);
    glDeleteBuffers(1, &names[1]);
    if (isThree) {
        glDeleteSamplers(1, &names[2]);
    }
}

TEST_F(ViewHostTest, aPictureMadeMeanwhileLeavesTheWindowsContextCurrent) {
    window->fill(0, 1, 0);
    const auto other = makeEngine();
    other->initialiseWithTarget({53.5, 10}, 17);
    {
        const auto offscreen = std::move(*OffscreenHost::make(other, {.width = 50, .height = 40}));
        EXPECT_EQ(window->pixel(50, 50), kGreen) << "after make";
        offscreen->step(0);
        EXPECT_EQ(window->pixel(50, 50), kGreen) << "after the first step";
        EXPECT_TRUE(offscreen->image());
        EXPECT_EQ(frame(), Drawing::drawn);
        EXPECT_EQ(window->pixel(50, 50), kRed);
    }
    window->fill(0, 1, 0);
    EXPECT_EQ(window->pixel(50, 50), kGreen) << "after its end";
    context->release();
    {
        const auto offscreen = std::move(*OffscreenHost::make(other, {.width = 50, .height = 40}));
        offscreen->step(0);
        EXPECT_TRUE(offscreen->image());
        EXPECT_EQ(glGetString(GL_VERSION), nullptr) << "none where none was";
    }
    ASSERT_TRUE(context->makeCurrent());
}

TEST_F(ViewHostTest, drawingFailsWithoutAContextAndGoesOnWithItOrWithTheNextOne) {
    context->release();
    EXPECT_FALSE(host->image());
    EXPECT_EQ(frame(), Drawing::failed);
    EXPECT_FALSE(host->failure().empty());
    ASSERT_TRUE(context->makeCurrent());
    host->setOverlayImages({{plainImage(4, 4, {0, 0, 255, 255}), {{0, 0}, {4, 4}}}});
    EXPECT_EQ(frame(), Drawing::drawn);
    EXPECT_EQ(host->failure(), "");
    ASSERT_TRUE(comesToRest());
    host->contextWasLost();
    openWindow();
    EXPECT_EQ(frame(), Drawing::drawn);
    EXPECT_EQ(window->pixel(50, 50), kRed);
    EXPECT_EQ(window->pixel(2, 2), kBlue);
}

TEST_F(ViewHostTest, layoutsOutOfRangeAndForeignEnginesAreRefused) {
    ASSERT_TRUE(comesToRest());
    const double nan = std::nan("");
    const CGSize all{200, 150}, map{100, 80};
    const ViewHost::Layout refused[] = {
        {all, {{}, {0, 80}}, 1},      {all, {{}, {nan, 80}}, 1},  {all, {{}, {20000, 80}}, 1},
        {all, {{}, map}, 0},          {all, {{}, map}, nan},      {all, {{}, map}, 1e300},
        {{-1e15, 150}, {{}, map}, 1}, {{200, nan}, {{}, map}, 1}, {{200, 20000}, {{}, map}, 1},
        {all, {{-1e15, 0}, map}, 1},  {all, {{0, nan}, map}, 1}};
    for (const ViewHost::Layout& layout : refused) {
        EXPECT_FALSE(host->setLayout(layout)) << &layout - refused;
        EXPECT_FALSE(ViewHost::make(engine, layout, {})) << &layout - refused;
    }
    EXPECT_FALSE(host->resize(100, 20000, 1));
    EXPECT_EQ(frame(), Drawing::unchanged) << "the layout is the old one";
    EXPECT_FALSE(ViewHost::make(nullptr, kLayout, {}));
}

} // namespace trelmix::view_host_test
