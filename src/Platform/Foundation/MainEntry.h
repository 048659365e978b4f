#pragma once

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/SceneLock.h"

#include <optional>
#include <utility>

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

/// What a public question answers: the value, read under the lock; on another thread, where the question is
/// the caller's bug, `otherwise`.
template <class T>
T readOnMain(const char* what, const T& value, T otherwise = T()) {
    const MainEntry entry(what);
    return entry ? value : otherwise;
}

/// What a public setter does that only stores a value.
template <class T>
void writeOnMain(const char* what, T& place, T value) {
    if (const MainEntry entry{what}) {
        place = std::move(value);
    }
}

} // namespace trelmix
