#pragma once

namespace trelmix {

/// Public zooms.
struct ZoomRange {
    float lowest = 0;
    float highest = 0;
    bool contains(float zoom) const { return zoom >= lowest && zoom <= highest; }
};

/// The user's zoom limits (kZOOM_USER_MIN and kZOOM_USER_MAX), public zoom, shared by every engine of the
/// process and outliving them. Any thread.
class ZoomLimits {
public:
    static constexpr float kSupportedMin = 15.0F;
    static constexpr float kSupportedMax = 23.0F;

    static float userMin();
    static float userMax();
    /// Stored as given; one outside the supported range limits nothing; NaN is ignored. A minimum above the
    /// maximum wins.
    static void setUserMin(float zoom);
    static void setUserMax(float zoom);
    /// Back to the supported range: tests share one process.
    static void reset();

    /// The zoom brought within two limits, of which those outside the supported range limit nothing; a lowest
    /// above the highest wins; NaN gives the lowest.
    static float limited(float zoom, ZoomRange user, ZoomRange supported);
    /// The zoom brought within the user's and the supported limits; NaN gives the lowest.
    static float sanitised(float zoom);
};

} // namespace trelmix
