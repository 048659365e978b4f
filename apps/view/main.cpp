#include "common/picture/PictureFile.h"
#include "view/EndSignals.h"
#include "view/ViewApp.h"

#include <CLI/CLI.hpp>

namespace {

using namespace trelmix::apps;

int run(int argc, char** argv) {
    CLI::App app{"Shows a scene in a window: drag, pinch and turn the map; H shows what the keys do."};
    app.name("trelmix view");
    app.footer(Hud::helpText());
    addVersion(app);
    WindowOptions options;
    addViewOptions(app, options.view);
    NetworkOptions network;
    addNetworkOptions(app, network);
    app.add_option("--frames", options.frames, "End after so many frames, once every tile is there")
        ->type_name("N");
    app.add_option("--screenshot", options.screenshot, "Picture of the window to write at that end")
        ->needs("--frames")
        ->type_name("FILE.png");
    app.add_option("--timeout", options.timeoutSeconds, "How long that end waits for tiles (60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86400.0));
    if (const auto ended = parse(app, argc, argv)) {
        return *ended;
    }
    if (const std::string fault = faultOfPictureName(options.screenshot, options.view.sceneFile);
        !options.screenshot.empty() && !fault.empty()) {
        return complain(fault, ExitCode::badInput);
    }
    if (const std::string fault = applyNetworkOptions(network); !fault.empty()) {
        return complain(fault, ExitCode::badInput);
    }
    ViewApp::Failure failure;
    const auto view = ViewApp::open(std::move(options), failure);
    return view ? view->run() : complain(failure.reason, failure.code);
}

} // namespace

int main(int argc, char** argv) {
    closeOnSignals();
    return exitCodeAfterSignals(runProgram(run, argc, argv));
}
