#pragma once

#include <Trelmix/Platform/MainThread.h>

namespace trelmix {

/// The choice behind `chooseMainThread`.
class Thread {
public:
    static bool isMainThread();
    /// From now on nobody chooses any more: an engine has been made.
    static void fixMainThread();
    /// Makes the calling thread the main one and leaves the choice open. For test fixtures.
    static void resetMainThread();
};

} // namespace trelmix
