#pragma once

#include <Trelmix/Platform/MainThread.h>

#include <type_traits>
#include <utility>

namespace trelmix {

/// Tells the handler of a caller's mistake.
void reportCallerFault(const char* what);

/// True on the main thread; elsewhere reports the call `what` as a fault and answers false.
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
