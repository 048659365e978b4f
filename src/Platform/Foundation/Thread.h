#pragma once

namespace trelmix {

class Thread {
public:
    /// The main thread is the one that loaded the library, unless another has called `becomeMainThread`.
    static bool isMainThread();
    static void becomeMainThread();
};

} // namespace trelmix
