#include "Platform/Scene/SCNAction.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Negative and NaN mean at once; an endless action would never report its end.
double sanitisedDuration(double duration) {
    constexpr double kLongest = 1e9;
    return duration > 0 ? std::min(duration, kLongest) : 0.0;
}

} // namespace

std::shared_ptr<const SCNAction> SCNAction::moveTo(Vector3d position, double duration) {
    return std::shared_ptr<const SCNAction>(new SCNAction(Kind::move, sanitisedDuration(duration), position));
}

std::shared_ptr<const SCNAction> SCNAction::rotateTo(double x, double y, double z, double duration) {
    return std::shared_ptr<const SCNAction>(
        new SCNAction(Kind::rotate, sanitisedDuration(duration), {x, y, z}));
}

std::shared_ptr<const SCNAction> SCNAction::scaleTo(double scale, double duration) {
    return std::shared_ptr<const SCNAction>(
        new SCNAction(Kind::scale, sanitisedDuration(duration), {scale, scale, scale}));
}

std::shared_ptr<const SCNAction> SCNAction::customAction(double duration, Block block) {
    auto* action = new SCNAction(Kind::custom, sanitisedDuration(duration), {});
    action->_block = std::move(block);
    return std::shared_ptr<const SCNAction>(action);
}

std::shared_ptr<const SCNAction> SCNAction::group(std::vector<std::shared_ptr<const SCNAction>> actions) {
    std::erase(actions, nullptr);
    double longest = 0;
    for (const auto& action : actions) {
        longest = std::max(longest, action->duration());
    }
    auto* action = new SCNAction(Kind::group, longest, {});
    action->_members = std::move(actions);
    return std::shared_ptr<const SCNAction>(action);
}

} // namespace trelmix
