/// @file
/// Which thread is the main one, and what is told of calls from another.
#pragma once

#include <Trelmix/Export.h>

namespace trelmix {

/// Makes the calling thread the main one: the one on which engines, overlays and hosts are used, and on which
/// their callbacks come. Without this call that is the thread that loaded the library. A worker of a server
/// and a plug-in choose theirs here, once for the process and before the first engine.
/// @return whether the calling thread is the main one now: false when another one was chosen or an engine was
/// made before.
TRELMIX_API bool chooseMainThread();

/// Whether the calling thread is the main one. Any thread.
TRELMIX_API bool isMainThread();

/// Is told of an application's mistakes: a call from the wrong thread, which is ignored, and an exception
/// that comes out of a callback, which goes no further. Called on the thread of the mistake; `what` is valid
/// during the call. What the handler itself throws is dropped.
using CallerFaultHandler = void (*)(const char* what);

/// Replaces the handler, in release builds too. Null brings back the built-in one, which prints to the
/// standard error in debug builds and is silent in release builds. Any thread.
TRELMIX_API void setCallerFaultHandler(CallerFaultHandler handler);

} // namespace trelmix
