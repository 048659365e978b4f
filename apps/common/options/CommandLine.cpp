#include "common/options/CommandLine.h"

#include "common/Files.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <csignal>
#include <exception>
#include <iostream>
#include <locale>
#include <sstream>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace trelmix::apps {

namespace {

/// The whole text as a decimal number. `from_chars` reads doubles in some standard libraries only.
bool read(std::string_view text, double& number) {
    std::istringstream in{std::string(text)};
    in.imbue(std::locale::classic());
    return (in >> std::noskipws >> number) && in.peek() == std::istringstream::traits_type::eof();
}

/// Finite decimals with a separator between them, nothing else; empty when the text is not that.
std::vector<double> numbersIn(std::string_view text, char separator) {
    std::vector<double> numbers;
    while (true) {
        const std::size_t end = std::min(text.find(separator), text.size());
        double number = 0;
        if (!read(text.substr(0, end), number) || !std::isfinite(number)) {
            return {};
        }
        numbers.push_back(number);
        if (end == text.size()) {
            return numbers;
        }
        text.remove_prefix(end + 1);
    }
}

std::string applySize(const ViewOptions& options, SceneView& view) {
    if (!options.size.empty()) {
        const auto numbers = numbersIn(options.size, 'x');
        if (numbers.size() != 2) {
            return "--size " + options.size + ": must be a width and a height in points, like 800x600";
        }
        view.width = numbers[0];
        view.height = numbers[1];
    }
    view.scale = options.scale.value_or(view.scale);
    const std::string fault = faultOfViewSize(view.width, view.height, view.scale);
    return fault.empty() ? fault : "--size and --scale: " + fault;
}

std::string applyCamera(const ViewOptions& options, std::optional<SceneCamera>& camera) {
    if (options.camera.empty()) {
        return {};
    }
    const auto numbers = numbersIn(options.camera, ',');
    if (numbers.size() != 5) {
        return "--camera " + options.camera + ": must be LAT,LON,ZOOM,ROTATION,ANGLE";
    }
    camera = SceneCamera{{numbers[0], numbers[1]}, numbers[2], numbers[3], numbers[4]};
    const std::string fault = faultOfCamera(*camera);
    return fault.empty() ? fault : "--camera " + options.camera + ": " + fault;
}

/// A file that is opened while one of the standard streams is closed would get its number, and what is meant
/// for the stream. Occupied the wrong way round, reading and writing still fail.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1) {
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace

void addViewOptions(CLI::App& command, ViewOptions& options) {
    command.add_option("scene", options.sceneFile, "Scene file (JSON)")->required()->type_name("SCENE.json");
    command.add_option("--size", options.size, "Size in points")->type_name("WxH");
    command.add_option("--scale", options.scale, "Pixels per point")
        ->type_name("S")
        ->check(CLI::Range(0.1, 16.0));
    command.add_option("--camera", options.camera, "Camera instead of the scene's")
        ->type_name("LAT,LON,ZOOM,ROTATION,ANGLE");
}

void addNetworkOptions(CLI::App& command, NetworkOptions& options) {
    command
        .add_option("--cache", options.cache, "Where tiles from addresses are kept (the user's cache folder)")
        ->type_name("DIR|off");
    command.add_option("--user-agent", options.userAgent, "What tile servers are told about who asks")
        ->type_name("TEXT");
    command.add_option("--ca-file", options.caFile, "Certificates to trust instead of the system's (PEM)")
        ->type_name("FILE");
}

void addVersion(CLI::App& app) {
    app.set_version_flag("--version", "trelmix " TRELMIX_VERSION, "Print the version and end");
}

std::optional<int> parse(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            std::ostringstream text;
            app.exit(error, text, text);
            return print(text.str());
        }
        const auto commands = app.get_subcommands();
        const std::string command = commands.empty() ? "" : " " + commands.front()->get_name();
        return complain(error.what() + (" (see " + app.get_name() + command + " --help)"),
                        ExitCode::badInput);
    }
}

Result<SceneFile> readScene(const ViewOptions& options) {
    auto scene = readSceneFile(options.sceneFile);
    if (!scene) {
        return scene;
    }
    std::string fault = applySize(options, scene->view);
    if (fault.empty()) {
        fault = applyCamera(options, scene->camera);
    }
    return fault.empty() ? std::move(scene) : Result<SceneFile>::failure(fault);
}

ExitCode print(const std::string& text) {
    const std::string fault = writeStandardOutput(std::as_bytes(std::span(text)));
    return fault.empty() ? ExitCode::done : complain("standard output: " + fault, ExitCode::badInput);
}

ExitCode complain(const std::string& message, ExitCode code) {
    std::string line = "trelmix: " + message;
    for (char& c : line) {
        // File names and texts from files must not steer the terminal or break the line.
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            c = '?';
        }
    }
    std::cerr << line << std::endl;
    return code;
}

int runProgram(int (*run)(int argc, char** argv), int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    occupyStandardStreams();
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return complain("out of memory", ExitCode::badInput);
    } catch (const std::exception& error) {
        return complain(std::string("failed: ") + error.what(), ExitCode::badInput);
    }
}

} // namespace trelmix::apps
