/// What the programs have in common on their command lines.
#pragma once

#include "common/options/NetworkOptions.h"
#include "common/scene/SceneFile.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace trelmix::apps {

/// What the program's shell hears.
enum ExitCode : int { done = 0, badInput = 2, noDriver = 3, tilesUnanswered = 4 };

/// Options that say what a scene is seen with; those that were not given leave the scene file's values.
struct ViewOptions {
    std::string sceneFile;
    /// "WxH" in points.
    std::string size;
    std::optional<double> scale;
    /// "LAT,LON,ZOOM,ROTATION,ANGLE".
    std::string camera;
};

/// The scene's name and the options that fill these records.
void addViewOptions(CLI::App& command, ViewOptions& options);
void addNetworkOptions(CLI::App& command, NetworkOptions& options);

/// Has the program tell its version.
void addVersion(CLI::App& app);

/// Reads the arguments; what the program has to end with when it is not to go on: they were wrong, which has
/// been said, or they asked for help, which has been given.
std::optional<int> parse(CLI::App& app, int argc, char** argv);

/// Reads the scene file and applies the options. The reason names the file or the option.
Result<SceneFile> readScene(const ViewOptions& options);

/// Writes to standard output at once; when that fails, so much is said and the code is not `done`.
ExitCode print(const std::string& text);

/// One line on standard error.
ExitCode complain(const std::string& message, ExitCode code);

/// A program's `main`: what escapes from `run` is told on standard error, and an output that nobody reads any
/// more is a failure like others, not the end by a signal.
int runProgram(int (*run)(int argc, char** argv), int argc, char** argv);

} // namespace trelmix::apps
