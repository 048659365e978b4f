#include "trelmix/CommandLine.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <string_view>

namespace {

using namespace trelmix::apps;

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

int run(int argc, char** argv) {
    // Everything behind `view` belongs to the program with the window.
    if (argc >= 2 && std::string_view(argv[1]) == "view") {
        return view(argv[0], {argv + 2, argv + argc});
    }
    CLI::App app{"Draws scenes on tiled maps under a tilted camera."};
    app.name("trelmix");
    app.require_subcommand(1);

    RenderOptions renderOptions;
    auto* renderCommand = app.add_subcommand("render", "Write one picture of a scene, without a window");
    addViewOptions(*renderCommand, renderOptions.view);
    renderCommand->add_option("-o,--output", renderOptions.output, "Picture to write")
        ->required()
        ->type_name("MAP.png");
    renderCommand->add_option("--timeout", renderOptions.timeoutSeconds, "How long to wait for tiles (60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86400.0));
    renderCommand->add_flag("--allow-missing-tiles", renderOptions.allowMissingTiles,
                            "Succeed although tiles were not answered in time");
    renderCommand->add_flag("--no-attribution", renderOptions.noAttribution, "Leave the sources' names out");

    addNetworkOptions(*renderCommand, renderOptions.network);

    LocateOptions locateOptions;
    auto* locateCommand = app.add_subcommand(
        "locate", R"(Answer lines of JSON, {"lat":..,"lon":..} or {"x":..,"y":..}, with the other kind)");
    addViewOptions(*locateCommand, locateOptions.view);
    locateCommand->add_flag("--corners", locateOptions.corners,
                            "Print the ground in the view's corners instead");

    app.add_subcommand("view", "Open a scene in a window (runs trelmix-view)");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        return complain(error.what() + std::string(" (see trelmix --help)"), ExitCode::badInput);
    }
    return *renderCommand ? render(renderOptions) : locate(locateOptions);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        return complain(std::string("failed: ") + error.what(), ExitCode::badInput);
    }
}
