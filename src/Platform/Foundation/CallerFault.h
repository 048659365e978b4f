#pragma once

namespace trelmix {

/// What is told of a caller's bug: a call from the wrong thread, for one. The call itself is then ignored.
using CallerFaultHandler = void (*)(const char* what);

/// Replaces the handler; null brings back the built-in one (prints in debug builds, silent in release). Any
/// thread.
void setCallerFaultHandler(CallerFaultHandler handler);
void reportCallerFault(const char* what);

/// True on the main thread; elsewhere reports `what` as a fault and answers false.
bool requireMainThread(const char* what);

} // namespace trelmix
