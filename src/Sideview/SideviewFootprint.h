#pragma once

#include "Sideview/SideviewProjection.h"

#include <Trelmix/Platform/UIView.h>
#include <Trelmix/TrelmixMapProjection.h>

#include <memory>

namespace trelmix {

/// What the map's camera sees, on the side view's bitmap: a rectangle on the displayed level, and a strip of
/// the same width near the top.
///
/// A part of its side view. Needs the scene lock.
class SideviewFootprint {
public:
    /// Adds both to the view of a new bitmap.
    void addTo(UIView& imageView);
    void clear();
    /// Moves both to what the map shows now; where that has no finite place, nothing moves. Answers whether
    /// something has moved.
    bool follow(const TrelmixMapProjection& map, const SideviewProjection& projection,
                std::int64_t levelNumber);

    /// Empty before the first bitmap.
    const std::shared_ptr<UIView>& cameraRectangle() const { return _cameraRectangle; }
    const std::shared_ptr<UIView>& positionRectangle() const { return _positionRectangle; }

private:
    bool showsLevel() const;

    std::shared_ptr<UIView> _cameraRectangle;
    std::shared_ptr<UIView> _positionRectangle;
};

} // namespace trelmix
