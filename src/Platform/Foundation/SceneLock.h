#pragma once

#include "Platform/Foundation/CallerFault.h"

#include <utility>

namespace trelmix {

/// The one recursive lock that guards the nodes, the projection and the tile layers' lists of every engine.
///
/// Held by public entries, main-thread callbacks, the overlay update and the collection of the draw list.
/// Never held while OpenGL calls are made, something is decoded or waited for, or the application is called.
class SceneLock {
public:
    SceneLock();
    ~SceneLock();
    SceneLock(const SceneLock&) = delete;
    SceneLock& operator=(const SceneLock&) = delete;

    /// True when the calling thread holds the lock.
    static bool isHeldHere();

    /// Releases every level that this thread holds for as long as it lives.
    class Release {
    public:
        Release();
        ~Release();
        Release(const Release&) = delete;
        Release& operator=(const Release&) = delete;

    private:
        int _levels;
    };
};

/// Calls the application with every level of the lock released. What was read before must be looked at again
/// after. Guarded, as it may be on the thread that draws, where an exception would end the process.
template <class F>
std::invoke_result_t<F> callOut(F&& call) {
    const SceneLock::Release release;
    return guarded("the application threw an exception into a call of the engine's", std::forward<F>(call));
}

} // namespace trelmix
