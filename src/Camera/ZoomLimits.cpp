#include "Camera/ZoomLimits.h"

#include <atomic>
#include <cmath>

namespace trelmix {

namespace {

// Atomic: an application may set a limit while the renderer's thread reads it.
std::atomic<float> kZOOM_USER_MIN{ZoomLimits::kSupportedMin};
std::atomic<float> kZOOM_USER_MAX{ZoomLimits::kSupportedMax};

bool isSupported(float zoom) {
    return zoom >= ZoomLimits::kSupportedMin && zoom <= ZoomLimits::kSupportedMax;
}

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

float ZoomLimits::sanitised(float zoom) {
    const float highest = isSupported(userMax()) ? userMax() : kSupportedMax;
    const float lowest = isSupported(userMin()) ? userMin() : kSupportedMin;
    const float lowered = zoom > highest ? highest : zoom;
    // Negated, so that NaN takes the lowest too.
    return !(lowered > lowest) ? lowest : lowered;
}

} // namespace trelmix
