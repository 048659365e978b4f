#pragma once

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/SceneLock.h"

#include <optional>

namespace trelmix {

/// Stands at the head of every public call: takes the scene lock on the main thread; elsewhere reports the
/// caller's bug and is false, and the call is ignored.
class MainEntry {
public:
    explicit MainEntry(const char* what) {
        if (requireMainThread(what)) {
            _lock.emplace();
        }
    }
    explicit operator bool() const { return _lock.has_value(); }

private:
    std::optional<SceneLock> _lock;
};

} // namespace trelmix
