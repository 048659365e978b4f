#pragma once

#include "common/NetworkOptions.h"
#include "common/SceneFile.h"

#include <optional>
#include <string>
#include <vector>

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

struct RenderOptions {
    ViewOptions view;
    std::string output;
    double timeoutSeconds = 60;
    bool allowMissingTiles = false;
    bool noAttribution = false;
    NetworkOptions network;
};

struct LocateOptions {
    ViewOptions view;
    bool corners = false;
};

/// Writes the picture of a scene into a file.
ExitCode render(const RenderOptions& options);
/// Answers the places on standard input, line by line.
ExitCode locate(const LocateOptions& options);
/// Hands over to the program with the window; comes back only when that fails. Takes what stands behind
/// `view`.
ExitCode view(const char* ownPath, const std::vector<std::string>& arguments);

/// The scene's name and the options that fill these records.
void addViewOptions(CLI::App& command, ViewOptions& options);
void addNetworkOptions(CLI::App& command, NetworkOptions& options);

/// Reads the scene file and applies the options. The reason names the file or the option.
Result<SceneFile> readScene(const ViewOptions& options);

/// One line on standard error.
ExitCode complain(const std::string& message, ExitCode code);

} // namespace trelmix::apps
