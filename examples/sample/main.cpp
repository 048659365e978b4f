#include "DeckPainter.h"
#include "ElevationPainter.h"
#include "Icons.h"
#include "SceneWriter.h"
#include "TileArchive.h"

#include <cstdio>
#include <filesystem>

namespace {

using namespace trelmix::sample;

/// More would only wait for each other on the machines this runs on.
constexpr int kThreads = 2;

std::string writePicture(const Canvas& canvas, const std::string& path) {
    return canvas.writePng(path) ? "" : path + ": cannot be written";
}

std::string writeShip(const std::string& folder) {
    std::string problem = writePicture(paintElevation(), folder + "/side/ship.png");
    for (const Deck& deck : kDecks) {
        if (problem.empty()) {
            problem =
                writePicture(paintDeck(deck), folder + "/decks/deck" + std::to_string(deck.level) + ".png");
        }
    }
    return problem;
}

std::string writeTown(const std::string& folder) {
    std::error_code error;
    for (const char* name : {"/icons", "/decks", "/side"}) {
        std::filesystem::create_directories(folder + name, error);
    }
    const TownModel model = TownModel::build();
    std::string problem =
        writeArchive(folder + "/harbour.mbtiles", "Trelhaven", townRanges(), paintTown(model, kThreads));
    if (problem.empty()) {
        problem = writeIcons(folder + "/icons");
    }
    if (problem.empty()) {
        problem = writeShip(folder);
    }
    if (problem.empty()) {
        problem = writeScenes(folder, model);
    }
    return problem;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || argv[1][0] == '-' || argv[1][0] == '\0') {
        std::fprintf(stderr, "usage: trelmix-sample FOLDER\n");
        return 2;
    }
    const std::string folder = argv[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        std::fprintf(stderr, "trelmix-sample: %s: %s\n", folder.c_str(), error.message().c_str());
        return 2;
    }
    const std::string problem = writeTown(folder);
    if (!problem.empty()) {
        std::fprintf(stderr, "trelmix-sample: %s\n", problem.c_str());
        return 2;
    }
    std::printf("%s\n", folder.c_str());
    return 0;
}
