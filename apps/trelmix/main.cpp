#include "trelmix/Commands.h"
#include "trelmix/SideviewCommand.h"

#include <CLI/CLI.hpp>
#include <string_view>

namespace {

using namespace trelmix::apps;

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

    SideviewOptions sideviewOptions;
    auto* sideviewCommand = app.add_subcommand("sideview", "Write one picture of a scene's side view");
    addViewOptions(*sideviewCommand, sideviewOptions.view);
    sideviewCommand->add_option("-o,--output", sideviewOptions.output, "Picture to write")
        ->required()
        ->type_name("SIDE.png");

    app.add_subcommand("view", "Open a scene in a window (runs trelmix-view)");

    if (const auto ended = parse(app, argc, argv)) {
        return *ended;
    }
    if (*sideviewCommand) {
        return renderSideview(sideviewOptions);
    }
    return *renderCommand ? render(renderOptions) : locate(locateOptions);
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(run, argc, argv);
}
