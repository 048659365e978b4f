/// @file
/// How a map behaves: as first described, or as people expect of a map today.
#pragma once

namespace trelmix {

/// What a map does, one idea a member. `MapBehaviour{}` is classic, the behaviour of a map that nobody asks
/// for another; `natural()` is all ideas together. A plain record: copy it, compare it, set single members.
struct MapBehaviour {
    /// False: fingers pan by a formula for the view's middle; pinch, rotation and double tap are about the
    /// middle; one gesture at a time.
    /// True: the ground grabbed stays under the finger at every tilt. Two fingers move, turn and zoom at
    /// once, each with its own ground; moved up or down together they tilt. A gesture begins once a finger
    /// has moved 10 points, and catches up. A finger on far ground of a tilted view moves the map at most
    /// four times as fast as it would at the target. A double tap zooms in by one about the point in 0.3
    /// seconds, a second one goes on from there; two fingers that tap zoom out about their middle; a finger
    /// that moves down or up after a tap zooms in or out about the place, by one in 100 points. Where a limit
    /// or a gesture that is switched off takes zoom or rotation away, the middle of the fingers stays exact.
    bool groundFollowsFingers = false;

    /// False: the map stands when the fingers lift.
    /// True: thrown at more than 60 points a second it runs on, moving, zooming and turning as it did in the
    /// last 50 milliseconds, and slows down with a time constant of 0.325 seconds. A touch, a camera that is
    /// set, or a limit ends it, bounds gently; the rest is reported once it stands.
    bool glide = false;

    /// False: the first target's latitude fixes the scale for life, and a higher view shows the same ground
    /// larger.
    /// True: at zoom z, 256 points of a tile of zoom z are 256 points on screen at the target, at every
    /// latitude and in every view. Radii and widths follow the latitude of a circle's centre and a line's
    /// first vertex; markers are as large everywhere.
    bool zoomIsScale = false;

    /// False: 15 to 23, with limits that all engines of the process share, from their next change on.
    /// True: 0 to 23, with limits of this engine, at once.
    bool zooms = false;

    /// What people expect of a map today: everything above.
    static constexpr MapBehaviour natural() {
        MapBehaviour behaviour;
        behaviour.groundFollowsFingers = true;
        behaviour.glide = true;
        behaviour.zoomIsScale = true;
        behaviour.zooms = true;
        return behaviour;
    }

    /// Member by member.
    friend bool operator==(const MapBehaviour&, const MapBehaviour&) = default;
};

} // namespace trelmix
