#pragma once

#include <type_traits>
#include <utility>

namespace trelmix {

/// What is told of a caller's bug: a call from the wrong thread, for one. The call itself is then ignored.
using CallerFaultHandler = void (*)(const char* what);

/// Replaces the handler; null brings back the built-in one (prints in debug builds, silent in release). Any
/// thread.
void setCallerFaultHandler(CallerFaultHandler handler);
void reportCallerFault(const char* what);

/// True on the main thread; elsewhere reports `what` as a fault and answers false.
bool requireMainThread(const char* what);

/// Runs code that may be the application's. What it throws is reported as the fault `what`, goes no further,
/// and counts as a default answer.
template <class F>
std::invoke_result_t<F> guarded(const char* what, F&& call) {
    try {
        return std::forward<F>(call)();
    } catch (...) {
        reportCallerFault(what);
    }
    return std::invoke_result_t<F>();
}

} // namespace trelmix
