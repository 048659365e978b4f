#pragma once

#include "view/Hud.h"
#include "view/InputTarget.h"
#include "view/ScreenLayout.h"
#include "view/Stage.h"

#include <cstdint>
#include <map>

namespace trelmix::apps {

/// What hands do on a stage. Each touch belongs to what it began on: the map, the side view or the north
/// arrow. Main thread.
class StageInput {
public:
    /// Both must outlive it.
    StageInput(const Hud& hud, const ScreenLayout& layout) : _hud(hud), _layout(layout) {}

    /// The stage that is in the window from now on, null for none; touches end on the one before.
    void setStage(Stage* stage);

    // As in InputTarget.
    void touch(InputTarget::Phase phase, std::int64_t identifier, CGPoint point, double time);
    void cancelTouches();
    void wheel(CGPoint point, double notches);
    void turn(CGPoint start, CGPoint distance);

private:
    enum class Owner { map, side, northArrow };
    Owner ownerAt(CGPoint point) const;
    void touchMap(InputTarget::Phase phase, std::int64_t identifier, CGPoint point, double time);

    const Hud& _hud;
    const ScreenLayout& _layout;
    Stage* _stage = nullptr;
    std::map<std::int64_t, Owner> _touches;
};

} // namespace trelmix::apps
