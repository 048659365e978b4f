#pragma once

namespace trelmix::apps {

/// Has SIGHUP, SIGINT and SIGTERM ask the window to close, and end the program themselves when that takes
/// longer than a moment: a frame, or the reading of a file, may be under way. A signal that was ignored at
/// the start (nohup) stays so. Call it first in the program: threads that are there already would die of a
/// signal.
void closeOnSignals();

/// What the program ends with: what a shell expects after a signal, if there was one, else `code`.
int exitCodeAfterSignals(int code);

} // namespace trelmix::apps
