#pragma once

#include "Platform/Scene/DrawList.h"
#include "Render/GLContext.h"
#include "Render/Renderer.h"
#include "support/NotFinite.h"
#include "support/Pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <set>
#include <vector>

namespace trelmix::render_test {

using Rgba = std::array<int, 4>;
using Items = std::vector<std::shared_ptr<const DrawItem>>;

inline constexpr double kDegree = std::numbers::pi / 180;

/// A rectangle that lies on the ground.
inline std::array<Vector3d, 4> ground(double west, double south, double east, double north) {
    return {{{west, north, 0}, {east, north, 0}, {west, south, 0}, {east, south, 0}}};
}

inline std::shared_ptr<DrawItem> itemOf(DrawKind kind, std::uint64_t sequence) {
    auto item = std::make_shared<DrawItem>();
    item->kind = kind;
    item->sequence = sequence;
    return item;
}

inline std::shared_ptr<DrawItem> imageItem(std::shared_ptr<const UIImage> image,
                                           std::array<Vector3d, 4> corners, std::uint64_t sequence,
                                           bool usesLevels = false) {
    auto item = itemOf(DrawKind::image, sequence);
    item->image = std::move(image);
    item->corners = corners;
    item->usesLevels = usesLevels;
    return item;
}

inline std::shared_ptr<DrawItem> discItem(Vector3d centre, double radius, std::array<float, 4> color,
                                          std::uint64_t sequence = 1) {
    auto item = itemOf(DrawKind::disc, sequence);
    item->color = color;
    item->corners = ground(centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius);
    return item;
}

inline std::shared_ptr<DrawItem> fillItem(std::shared_ptr<const SCNMesh> mesh, std::array<float, 4> color,
                                          std::uint64_t sequence) {
    auto item = itemOf(DrawKind::fill, sequence);
    item->mesh = std::move(mesh);
    item->meshPosition = item->mesh->origin;
    item->color = color;
    return item;
}

inline std::shared_ptr<const SCNMesh> triangle(std::vector<float> vertices) {
    auto mesh = std::make_shared<SCNMesh>();
    mesh->vertices = std::move(vertices);
    mesh->indices = std::vector<std::uint8_t>{0, 1, 2};
    return mesh;
}

template <class T>
Renderer::Options withOption(T Renderer::Options::*option, T value) {
    Renderer::Options options;
    options.*option = value;
    return options;
}

/// Looks at the ground so that, straight below, a scene unit is a pixel of a view of this height.
inline DrawCamera cameraAt(Vector3d target, double pixelHeight, double tilt = 0, double rotation = 0,
                           double unitsPerPixel = 1) {
    DrawCamera camera;
    const double distance = pixelHeight * unitsPerPixel * 0.5 / std::tan(camera.fieldOfView * 0.5);
    camera.eulerAngles = {tilt, 0, rotation};
    camera.position = target + Matrix4d::rotation(camera.eulerAngles).transformPoint({0, 0, distance});
    return camera;
}

class RenderTest : public testing::Test {
protected:
    void SetUp() override {
        auto made = GLContext::makeOffscreen();
        ASSERT_TRUE(made) << made.reason();
        context = std::move(*made);
        capabilities = context->capabilities();
        makeRenderer();
    }
    void TearDown() override { renderer.reset(); }

    void makeRenderer(const Renderer::Options& options = {}) {
        renderer = std::make_unique<Renderer>(capabilities, context->graveyard(), options);
    }

    static DrawFrame frameOf(Items items, const DrawCamera& camera,
                             UIColor background = UIColor::whiteColor()) {
        DrawFrame frame;
        frame.camera = camera;
        frame.background = background;
        auto list = std::make_shared<DrawList>();
        list->items = std::move(items);
        frame.list = std::move(list);
        return frame;
    }

    FrameReport draw(const DrawFrame& frame, int width, int height) {
        const auto report = renderer->draw(frame, width, height);
        EXPECT_TRUE(report) << report.reason();
        return report ? *report : FrameReport{};
    }

    std::shared_ptr<const UIImage> picture(const DrawFrame& frame, int width, int height) {
        draw(frame, width, height);
        auto image = renderer->readBack(1);
        EXPECT_TRUE(image) << image.reason();
        return image ? *image : plainImage(width, height, {0, 0, 0, 0});
    }

    std::unique_ptr<GLContext> context;
    GLCapabilities capabilities;
    std::unique_ptr<Renderer> renderer;
};

/// All values of the red channel.
inline std::set<int> levelsIn(const UIImage& image) {
    std::set<int> levels;
    for (std::size_t i = 0; i < image.pixels().size(); i += 4) {
        levels.insert(image.pixels()[i]);
    }
    return levels;
}

/// Where the camera shows a place of the scene, in pixels from the top left.
inline CGPoint projected(const DrawCamera& camera, Vector3d place, int width, int height) {
    const Matrix4d clip = camera.clipFromScene({}, static_cast<double>(width) / height);
    const auto row = [&](std::size_t r) {
        return clip.m[r] * place.x + clip.m[4 + r] * place.y + clip.m[8 + r] * place.z + clip.m[12 + r];
    };
    return {(row(0) / row(3) + 1) * 0.5 * width, (1 - row(1) / row(3)) * 0.5 * height};
}

} // namespace trelmix::render_test
