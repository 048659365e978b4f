#include "SceneWriter.h"
#include "TilePyramid.h"

#include <cstdio>
#include <filesystem>
#include <string_view>

namespace {

using namespace trelmix::sample;

/// More would only wait for each other on the machines this runs on.
constexpr int kThreads = 2;

std::string writeTown(const std::string& folder) {
    const TownModel model = TownModel::build();
    std::string problem =
        writeArchive(folder + "/harbour.mbtiles", "Trelhaven", townRanges(), paintTown(model, kThreads));
    if (problem.empty())
        problem = writeScenes(folder, model);
    return problem;
}

std::string writeCoded(const std::string& folder) {
    return writeArchive(folder + "/coded.mbtiles", "Coded pixels", codedRanges(), paintCoded(kThreads));
}

} // namespace

int main(int argc, char** argv) {
    const bool isCoded = argc == 3 && std::string_view(argv[1]) == "--coded";
    if (!isCoded && (argc != 2 || argv[1][0] == '-')) {
        std::fprintf(stderr, "usage: trelmix-sample [--coded] FOLDER\n");
        return 2;
    }
    const std::string folder = argv[argc - 1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        std::fprintf(stderr, "trelmix-sample: %s: %s\n", folder.c_str(), error.message().c_str());
        return 2;
    }
    const std::string problem = isCoded ? writeCoded(folder) : writeTown(folder);
    if (!problem.empty()) {
        std::fprintf(stderr, "trelmix-sample: %s\n", problem.c_str());
        return 2;
    }
    std::printf("%s\n", folder.c_str());
    return 0;
}
