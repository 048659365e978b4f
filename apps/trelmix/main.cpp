#include "common/Json.h"
#include "trelmix/Locate.h"
#include "trelmix/Render.h"
#include "trelmix/SideviewCommand.h"
#include "trelmix/View.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

using namespace trelmix::apps;

/// How many letters have to be put in, taken out or replaced to make one word of the other.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

/// What is wrong with the first word when it should be a command; empty when it is one.
std::string faultOfCommand(std::string_view word, CLI::App& app) {
    const auto commands = app.get_subcommands([](CLI::App*) { return true; });
    const auto nearest = std::min_element(commands.begin(), commands.end(), [&](auto* a, auto* b) {
        return distanceBetween(word, a->get_name()) < distanceBetween(word, b->get_name());
    });
    return (*nearest)->get_name() == word ? ""
                                          : quotedJson(word) + " is no command; did you mean " +
                                                (*nearest)->get_name() + "? (see trelmix --help)";
}

int run(int argc, char** argv) {
    // Everything behind `view` belongs to the program with the window.
    if (argc >= 2 && std::string_view(argv[1]) == "view") {
        return view(argv[0], {argv + 2, argv + argc});
    }
    CLI::App app{"Draws scenes on tiled maps under a tilted camera."};
    app.name("trelmix");
    app.require_subcommand(1);
    addVersion(app);

    RenderOptions renderOptions;
    auto* renderCommand = app.add_subcommand("render", "Write one picture of a scene, without a window");
    addViewOptions(*renderCommand, renderOptions.view);
    renderCommand->add_option("-o,--output", renderOptions.output, "Picture to write")
        ->required()
        ->type_name("MAP.png|.jpg|.webp|-");
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
        ->type_name("SIDE.png|.jpg|.webp|-");

    app.add_subcommand("view", "Open a scene in a window (runs trelmix-view)");

    if (argc >= 2 && argv[1][0] != '-') {
        if (const std::string fault = faultOfCommand(argv[1], app); !fault.empty()) {
            return complain(fault, ExitCode::badInput);
        }
    }
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
