/// @file
/// How a side view behaves: as first described, or as people expect of one today.
#pragma once

namespace trelmix {

/// What a side view does, one idea a member. `SideviewBehaviour{}` is classic, the behaviour of a side view
/// that nobody asks for another; `natural()` is all ideas together. A plain record: copy it, compare it, set
/// single members.
struct SideviewBehaviour {
    /// False: a touch moves the camera along the levels file's bearing, by the metres that the way in the
    /// picture stands for by its vertical scale.
    /// True: a touch moves the camera straight along the picture's axis to the place that is drawn there,
    /// whatever bearing, bow, margins and scale; and `TMXSideviewProjection::coordinate` is the inverse of
    /// `point`.
    bool touchesLeadToPlaces = false;

    /// False: a picture whose axis runs against the bearing is turned round over its full width, which moves
    /// the structure's ends out of the margins that the levels file gives.
    /// True: it is turned round between its margins.
    bool flipsBetweenMargins = false;

    /// False: a long press without a drag leaves the side view waiting for one; until then taps do nothing
    /// and the picture does not scroll. True: a long press without a drag ends with the finger.
    bool pressEndsWithFinger = false;

    /// False: the footprint moves when the map's camera comes to rest.
    /// True: it moves along with the map, as its engine's projection does.
    bool footprintIsLive = false;

    /// False: what lies on a level that the levels file does not have stands at the picture's upper edge, the
    /// footprint above it.
    /// True: it does not show; a path has a gap there, and the strip alone follows the camera.
    bool hidesUnknownLevels = false;

    /// False: the footprint is as high as the first level in the file that reaches over its level's middle.
    /// True: it is as high as its own level.
    bool footprintHasOwnHeight = false;

    /// As first described; the same as `SideviewBehaviour{}`.
    static constexpr SideviewBehaviour classic() { return {}; }

    /// What people expect of a side view today: everything above.
    static constexpr SideviewBehaviour natural() {
        SideviewBehaviour behaviour;
        behaviour.touchesLeadToPlaces = true;
        behaviour.flipsBetweenMargins = true;
        behaviour.pressEndsWithFinger = true;
        behaviour.footprintIsLive = true;
        behaviour.hidesUnknownLevels = true;
        behaviour.footprintHasOwnHeight = true;
        return behaviour;
    }

    /// Member by member.
    friend bool operator==(const SideviewBehaviour&, const SideviewBehaviour&) = default;
};

} // namespace trelmix
