#pragma once

#include "Render/DrawPlan.h"
#include "Render/VertexArrays.h"

#include <memory>
#include <string>
#include <vector>

namespace trelmix {

/// Draws the runs that a plan has made into what is bound, each by the program of its kind.
///
/// A part of its renderer, on whose context it works.
class RunPainter {
public:
    RunPainter(RenderStores& stores, const DrawPlan& plan, std::shared_ptr<GLGraveyard> graveyard,
               bool hasHighPrecision)
        : _stores(stores), _plan(plan), _graveyard(std::move(graveyard)),
          _hasHighPrecision(hasHighPrecision) {}

    /// Makes the shaders that the runs want, when they are first needed: the first picture waits for no
    /// others. Empty when it went well.
    std::string prepare(const std::vector<DrawRun>& runs);
    /// Answers with how many draw calls. Blending is off afterwards.
    int paint(const std::vector<DrawRun>& runs, const FrameView& view, VertexArrays& arrays);

private:
    std::string prepare(const DrawRun& run);
    int paint(const DrawRun& run, const FrameView& view, VertexArrays& arrays);
    void paintImages(const DrawRun& run, const FrameView& view, VertexArrays& arrays);

    RenderStores& _stores;
    const DrawPlan& _plan;
    std::shared_ptr<GLGraveyard> _graveyard;
    bool _hasHighPrecision;
};

} // namespace trelmix
