#pragma once

#include "Render/DiscPainter.h"
#include "Render/FillPainter.h"
#include "Render/FrameView.h"
#include "Render/IconAtlas.h"
#include "Render/ImagePainter.h"
#include "Render/MeshStore.h"
#include "Render/Placement.h"
#include "Render/ProgramStore.h"
#include "Render/QuadIndices.h"
#include "Render/TextureStore.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace trelmix {

/// What one context holds of the scene.
struct RenderStores {
    RenderStores(const GLCapabilities& capabilities, const std::shared_ptr<GLGraveyard>& graveyard,
                 const TextureLimits& limits);

    TextureStore textures;
    IconAtlas atlas;
    MeshStore meshes;
    ProgramStore programs;
    ImagePainter images;
    DiscPainter discs;
    FillPainter fills;
    QuadIndices indices;
};

/// A row of neighbours in painter's order that are drawn together.
struct DrawRun {
    enum class Kind : std::uint8_t { images, discs, sharedFills, largeFill, program };
    Kind kind = Kind::images;
    bool isTranslucent = true;
    bool isMultiplied = false;
    GLuint texture = 0;
    /// Of quads: where their vertices begin; of shared fills: their batch.
    std::uint32_t chunk = 0;
    /// Quads, or indices of shared fills.
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::uint32_t placement = 0;
};

/// Follows the draw list from frame to frame: writes what has changed, and finds what is drawn and in how
/// many calls.
///
/// Larger than most classes: following the list, placing what is new and finding the runs all walk the same
/// placements.
class DrawPlan {
public:
    explicit DrawPlan(RenderStores& stores) : _stores(stores) {}
    ~DrawPlan() = default;
    DrawPlan(const DrawPlan&) = delete;
    DrawPlan& operator=(const DrawPlan&) = delete;

    bool has(const std::shared_ptr<const DrawList>& list) const { return list == _list; }
    /// `originMoved`: everything that is relative to the view's origin is written again. Returns the bytes
    /// written to other buffers than those of the quads.
    std::size_t setList(const std::shared_ptr<const DrawList>& list, const FrameView& view, bool originMoved);
    /// Tells the images that wait to be uploaded whether the view shows them.
    void markWaiting(const FrameView& view) const;
    /// Finds what the view shows of it.
    const std::vector<DrawRun>& makeRuns(const FrameView& view);
    /// The last ones made.
    const std::vector<DrawRun>& runs() const { return _runs; }
    const Placement& placement(const DrawRun& run) const { return _placements[run.placement]; }

private:
    void follow(const DrawList& list, const FrameView& view);
    Placement place(const DrawItem& item, const FrameView& view);
    /// The same node's placement for its new item.
    Placement replace(const Placement& old, const DrawItem& item, const FrameView& view);
    void release(const Placement& placement);
    void rewrite(const FrameView& view, bool iconsOnly);
    void placeImage(Placement& placement, const FrameView& view);
    void placeMesh(Placement& placement);
    void addImage(const Placement& placement, const FrameView& view);
    void addDisc(const Placement& placement, const FrameView& view);
    void addFill(const Placement& placement, std::uint32_t number);

    RenderStores& _stores;
    std::shared_ptr<const DrawList> _list;
    std::vector<Placement> _placements;
    std::vector<Placement> _next;
    std::vector<DrawRun> _runs;
    int _atlasGeneration = 0;
    bool _fillsChanged = false;
};

} // namespace trelmix
