#include "Camera/ZoomLimits.h"

#include <atomic>
#include <cmath>

namespace trelmix {

namespace {

// Atomic: an application may set a limit while the renderer's thread reads it.
std::atomic<float> kZOOM_USER_MIN{ZoomLimits::kSupportedMin};
std::atomic<float> kZOOM_USER_MAX{ZoomLimits::kSupportedMax};

void store(std::atomic<float>& limit, float zoom) {
    if (!std::isnan(zoom)) {
        limit = zoom;
    }
}

} // namespace

float ZoomLimits::userMin() {
    return kZOOM_USER_MIN;
}

float ZoomLimits::userMax() {
    return kZOOM_USER_MAX;
}

void ZoomLimits::setUserMin(float zoom) {
    store(kZOOM_USER_MIN, zoom);
}

void ZoomLimits::setUserMax(float zoom) {
    store(kZOOM_USER_MAX, zoom);
}

void ZoomLimits::reset() {
    kZOOM_USER_MIN = kSupportedMin;
    kZOOM_USER_MAX = kSupportedMax;
}

float ZoomLimits::limited(float zoom, ZoomRange user, ZoomRange supported) {
    const float highest = supported.contains(user.highest) ? user.highest : supported.highest;
    const float lowest = supported.contains(user.lowest) ? user.lowest : supported.lowest;
    const float lowered = zoom > highest ? highest : zoom;
    // Negated, so that NaN takes the lowest too.
    return !(lowered > lowest) ? lowest : lowered;
}

float ZoomLimits::sanitised(float zoom) {
    return limited(zoom, {userMin(), userMax()}, {kSupportedMin, kSupportedMax});
}

} // namespace trelmix
