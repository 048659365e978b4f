#pragma once

#include <Trelmix/Platform/CGGeometry.h>

namespace trelmix {

/// The screen that views without a size of their own are made for. Main thread only.
class UIScreen {
public:
    /// Points.
    static CGRect mainScreenBounds() { return bounds(); }
    static void setMainScreenBounds(CGRect screen) { bounds() = screen; }

private:
    static CGRect& bounds() {
        static CGRect screen{{0, 0}, {1280, 800}};
        return screen;
    }
};

} // namespace trelmix
