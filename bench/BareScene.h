#pragma once

#include "Platform/Scene/DrawList.h"

#include <memory>
#include <vector>

namespace trelmix::bench {

/// The markers' icons: so many, each a square of so many pixels.
constexpr int kIconCount = 64;
constexpr int kIconSize = 32;

struct SceneSize {
    int markers = 0;
    int polygons = 0;
    int lines = 0;
    int circles = 0;
};

/// A draw list and what it is made of.
struct Scene {
    std::shared_ptr<const DrawList> list;
    std::vector<std::shared_ptr<const UIImage>> icons;
};

/// A town's worth of things on a ground of 4 x 4 tiles around the origin.
Scene makeScene(const SceneSize& size);
/// Gives every marker another place, in new items as the scene's collection makes them.
void moveMarkers(Scene& scene, int frame);

/// GLSL ES 1.00.
extern const char* const kLineVertexShader;
extern const char* const kLineFragmentShader;

} // namespace trelmix::bench
