#include "Render/DrawPlan.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace trelmix {

namespace {

/// Indices of fills out of view that are drawn for the sake of one call.
constexpr std::uint32_t kBridgedIndices = 512;

bool isFinite(Vector3d v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool isBefore(const DrawItem& a, const DrawItem& b) {
    return std::tie(a.renderingOrder, a.sequence) < std::tie(b.renderingOrder, b.sequence);
}

void setBlending(Placement& placement) {
    const DrawItem& item = *placement.item;
    const bool isFaded = item.opacity < 1 || item.color[3] < 1;
    placement.isMultiplied = isFaded || item.color != std::array<float, 4>{1, 1, 1, 1};
    placement.isTranslucent = placement.icon || isFaded || !item.image->isOpaque();
}

bool hasFiniteCorners(const DrawItem& item) {
    return std::all_of(item.corners.begin(), item.corners.end(), isFinite);
}

} // namespace

RenderStores::RenderStores(const GLCapabilities& capabilities, const std::shared_ptr<GLGraveyard>& graveyard,
                           const TextureLimits& limits)
    : textures(graveyard, limits), atlas(graveyard, limits.maximumSize),
      meshes(graveyard, capabilities.has32BitIndices), images(graveyard), discs(graveyard), fills(graveyard),
      indices(graveyard, capabilities.has32BitIndices) {}

std::size_t DrawPlan::setList(const std::shared_ptr<const DrawList>& list, const FrameView& view,
                              bool originMoved) {
    if (originMoved) {
        rewrite(view, false);
        _fillsChanged = true;
    }
    if (list != _list) {
        static const DrawList none;
        follow(list ? *list : none, view);
        // Only now may the items of the list before go: placements told apart what is new by their addresses.
        _list = list;
        _stores.textures.dropUnused();
        _stores.meshes.dropUnused();
        _stores.atlas.dropUnusedPages();
    }
    if (_atlasGeneration != _stores.atlas.generation()) {
        _atlasGeneration = _stores.atlas.generation();
        rewrite(view, true);
    }
    if (!_fillsChanged) {
        return 0;
    }
    _fillsChanged = false;
    return _stores.fills.write(_placements, view);
}

void DrawPlan::follow(const DrawList& list, const FrameView& view) {
    _next.clear();
    _next.reserve(list.items.size());
    std::size_t old = 0;
    for (const auto& item : list.items) {
        if (!item) {
            continue;
        }
        // Both lists are in painter's order: what the old one has before this item has gone.
        while (old < _placements.size() && _placements[old].item != item.get() &&
               isBefore(*_placements[old].item, *item)) {
            release(_placements[old++]);
        }
        if (old == _placements.size() || isBefore(*item, *_placements[old].item)) {
            _next.push_back(place(*item, view));
        } else if (_placements[old].item == item.get()) {
            _next.push_back(_placements[old++]);
        } else {
            _next.push_back(replace(_placements[old++], *item, view));
        }
    }
    for (; old < _placements.size(); ++old) {
        release(_placements[old]);
    }
    std::swap(_placements, _next);
}

Placement DrawPlan::place(const DrawItem& item, const FrameView& view) {
    Placement placement;
    placement.item = &item;
    placement.kind = item.kind;
    switch (item.kind) {
    case DrawKind::image:
        placeImage(placement, view);
        break;
    case DrawKind::disc:
        placement.isDrawn = hasFiniteCorners(item);
        if (placement.isDrawn) {
            _stores.discs.write(placement, view);
        }
        break;
    case DrawKind::fill:
    case DrawKind::program:
        placeMesh(placement);
        break;
    }
    return placement;
}

void DrawPlan::placeImage(Placement& placement, const FrameView& view) {
    const DrawItem& item = *placement.item;
    if (!item.image || !hasFiniteCorners(item)) {
        return;
    }
    if (!item.usesLevels && _stores.atlas.takes(*item.image)) {
        placement.icon = _stores.atlas.retain(item.image);
    }
    if (!placement.icon) {
        placement.texture = _stores.textures.retain(item.image, item.usesLevels);
    }
    placement.isDrawn = true;
    setBlending(placement);
    _stores.images.write(placement, view);
}

void DrawPlan::placeMesh(Placement& placement) {
    const DrawItem& item = *placement.item;
    if (!item.mesh || !isFinite(item.meshPosition)) {
        return;
    }
    if (item.kind == DrawKind::fill) {
        _fillsChanged = true;
        if (item.mesh->vertexCount() <= FillPainter::kLargestShared) {
            placement.isDrawn = true;
            return;
        }
    } else {
        if (!item.program) {
            return;
        }
        placement.program = &_stores.programs.find(*item.program);
    }
    placement.mesh = _stores.meshes.retain(item.mesh);
    placement.isDrawn = placement.mesh != nullptr;
}

Placement DrawPlan::replace(const Placement& old, const DrawItem& item, const FrameView& view) {
    const DrawItem& before = *old.item;
    const bool isMovedQuad = item.kind == old.kind && old.isDrawn && old.slot != kNoSlot &&
                             item.image == before.image && item.usesLevels == before.usesLevels &&
                             hasFiniteCorners(item);
    if (!isMovedQuad) {
        Placement placement = place(item, view);
        release(old);
        return placement;
    }
    Placement placement = old;
    placement.item = &item;
    if (item.kind == DrawKind::disc) {
        _stores.discs.write(placement, view);
    } else {
        setBlending(placement);
        _stores.images.write(placement, view);
    }
    return placement;
}

void DrawPlan::release(const Placement& placement) {
    if (placement.kind == DrawKind::disc) {
        _stores.discs.slots().release(placement.slot);
    } else {
        _stores.images.slots().release(placement.slot);
    }
    if (placement.icon) {
        _stores.atlas.release(placement.icon);
    }
    if (placement.texture) {
        _stores.textures.release(placement.texture);
    }
    if (placement.mesh) {
        _stores.meshes.release(*placement.item->mesh);
    }
    _fillsChanged = _fillsChanged || placement.kind == DrawKind::fill;
}

void DrawPlan::rewrite(const FrameView& view, bool iconsOnly) {
    for (Placement& placement : _placements) {
        if (placement.slot == kNoSlot || (iconsOnly && !placement.icon)) {
            continue;
        }
        if (placement.kind == DrawKind::disc) {
            _stores.discs.write(placement, view);
        } else {
            _stores.images.write(placement, view);
        }
    }
}

void DrawPlan::markWaiting(const FrameView& view) const {
    if (!_stores.textures.isAnyWaiting()) {
        return;
    }
    const ImagePainter::Slots& slots = _stores.images.slots();
    const auto isInView = [&](const Placement& placement) {
        for (std::uint32_t slot = placement.slot; slot != kNoSlot; slot = slots.next(slot)) {
            if (view.canShow(slots.sphere(slot))) {
                return true;
            }
        }
        return false;
    };
    for (const Placement& placement : _placements) {
        if (placement.texture && !placement.texture->isUploaded()) {
            placement.texture->setInView(false);
        }
    }
    // Several nodes may show one image.
    for (const Placement& placement : _placements) {
        if (placement.texture && !placement.texture->isUploaded() && isInView(placement)) {
            placement.texture->setInView(true);
        }
    }
}

const std::vector<DrawRun>& DrawPlan::makeRuns(const FrameView& view) {
    _runs.clear();
    _stores.indices.start(std::max(_stores.images.slots().slotCount(), _stores.discs.slots().slotCount()));
    for (std::uint32_t i = 0; i < _placements.size(); ++i) {
        const Placement& placement = _placements[i];
        if (!placement.isDrawn) {
            continue;
        }
        if (placement.kind == DrawKind::image) {
            addImage(placement, view);
        } else if (placement.kind == DrawKind::disc) {
            addDisc(placement, view);
        } else if (placement.kind == DrawKind::fill) {
            addFill(placement, i);
        } else {
            // The shaders may move the vertices anywhere: no telling what is out of view.
            _runs.push_back({.kind = DrawRun::Kind::program, .placement = i});
        }
    }
    return _runs;
}

void DrawPlan::addImage(const Placement& placement, const FrameView& view) {
    const ImagePainter::Slots& slots = _stores.images.slots();
    std::size_t part = 0;
    for (std::uint32_t slot = placement.slot; slot != kNoSlot; slot = slots.next(slot), ++part) {
        if (!view.canShow(slots.sphere(slot)) ||
            (placement.texture && !placement.texture->isUploaded(part))) {
            continue;
        }
        const GLuint texture = placement.icon ? placement.icon->page->texture.name()
                                              : placement.texture->parts()[part].texture.name();
        const std::uint32_t chunk = _stores.indices.chunkOf(slot);
        const std::uint32_t quad = _stores.indices.add(slot);
        DrawRun* last = _runs.empty() ? nullptr : &_runs.back();
        if (last && last->kind == DrawRun::Kind::images && last->texture == texture && last->chunk == chunk) {
            ++last->count;
            last->isMultiplied |= placement.isMultiplied;
            last->isTranslucent |= placement.isTranslucent;
            continue;
        }
        _runs.push_back({DrawRun::Kind::images, placement.isTranslucent, placement.isMultiplied, texture,
                         chunk, quad, 1, 0});
    }
}

void DrawPlan::addDisc(const Placement& placement, const FrameView& view) {
    if (!view.canShow(_stores.discs.slots().sphere(placement.slot))) {
        return;
    }
    const std::uint32_t chunk = _stores.indices.chunkOf(placement.slot);
    const std::uint32_t quad = _stores.indices.add(placement.slot);
    DrawRun* last = _runs.empty() ? nullptr : &_runs.back();
    if (last && last->kind == DrawRun::Kind::discs && last->chunk == chunk) {
        ++last->count;
        return;
    }
    _runs.push_back({.kind = DrawRun::Kind::discs, .chunk = chunk, .first = quad, .count = 1});
}

void DrawPlan::addFill(const Placement& placement, std::uint32_t number) {
    if (placement.mesh) {
        _runs.push_back({.kind = DrawRun::Kind::largeFill, .placement = number});
        return;
    }
    DrawRun* last = _runs.empty() ? nullptr : &_runs.back();
    if (last && last->kind == DrawRun::Kind::sharedFills && last->chunk == placement.batch &&
        last->first + last->count + kBridgedIndices >= placement.firstIndex) {
        last->count = placement.firstIndex + placement.indexCount - last->first;
        return;
    }
    _runs.push_back({.kind = DrawRun::Kind::sharedFills,
                     .chunk = placement.batch,
                     .first = placement.firstIndex,
                     .count = placement.indexCount});
}

} // namespace trelmix
