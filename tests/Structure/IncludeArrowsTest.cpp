// Holds the arrows of the house: which room may include which, and which outside library is used where.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const fs::path kRoot = TRELMIX_SOURCE_FOLDER;

/// The rooms that a room may include, besides itself and the public headers.
const std::map<std::string, Names> kArrows{
    {"Platform/Math", {}},
    {"Platform/Foundation", {}},
    {"Platform/Location", {}},
    {"Platform/Graphics", {"Platform/Foundation"}},
    {"Platform/Network", {"Platform/Foundation", "Platform/Graphics"}},
    {"Platform/View", {"Platform/Foundation", "Platform/Graphics"}},
    {"Platform/Scene", {"Platform/Foundation", "Platform/Graphics", "Platform/View"}},
    {"Platform/Render", {"Platform/Foundation", "Platform/Graphics", "Platform/Scene"}},
    {"Geo", {"Platform/Foundation", "Platform/Math"}},
    {"Camera", {"Geo", "Platform/Foundation", "Platform/Math", "Platform/Scene"}},
    {"Engine",
     {"SceneKit", "Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/Scene",
      "Platform/View"}},
    {"SceneKit",
     {"Engine", "Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/Network",
      "Platform/Scene", "Platform/View"}},
    {"Utils", {"Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/View"}},
    {"Host",
     {"Engine", "Utils", "Platform/Foundation", "Platform/Graphics", "Platform/Render", "Platform/Scene",
      "Platform/View"}},
};

/// The one room of each outside library.
const std::vector<std::pair<std::regex, std::string>> kLibraryRooms{
    {std::regex("(spng|turbojpeg|webp/.*|cairo.*)\\.h"), "Platform/Graphics"},
    {std::regex("GL/glu\\.h"), "Platform/Scene"},
    {std::regex("(EGL|GLES[23]|KHR)/.*"), "Platform/Render"},
    {std::regex("(curl/.*|sqlite3\\.h)"), "Platform/Network"},
    {std::regex("nlohmann/.*"), "Utils"},
    {std::regex("SDL.*"), "apps/view"},
};

struct Include {
    fs::path file;
    std::string room;
    std::string target;
    bool isAngled;
};

std::string roomOf(const fs::path& file) {
    const std::string folder = fs::relative(file.parent_path(), kRoot / "src").generic_string();
    const std::regex platform("Platform/[A-Za-z]+");
    std::smatch match;
    if (std::regex_search(folder, match, platform)) {
        return match.str();
    }
    return folder.substr(0, folder.find('/'));
}

std::vector<Include> includesBelow(const std::string& folder) {
    static const std::regex line(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    std::vector<Include> found;
    for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
        const std::string kind = entry.path().extension().string();
        if (kind != ".h" && kind != ".cpp") {
            continue;
        }
        std::ifstream file(entry.path());
        std::smatch match;
        for (std::string text; std::getline(file, text);) {
            if (std::regex_search(text, match, line)) {
                found.push_back({entry.path(), roomOf(entry.path()), match[2].str(), match[1].str() == "<"});
            }
        }
    }
    return found;
}

std::string roomOfInclude(const std::string& target) {
    return roomOf(kRoot / "src" / target);
}

TEST(Structure, everyIncludeOfTheLibraryFollowsAnAllowedArrow) {
    const auto includes = includesBelow("src");
    ASSERT_GT(includes.size(), 300U);
    for (const Include& include : includes) {
        ASSERT_TRUE(kArrows.contains(include.room)) << include.file << ": an unknown room";
        if (include.isAngled) {
            continue;
        }
        const std::string to = roomOfInclude(include.target);
        EXPECT_TRUE(to == include.room || kArrows.at(include.room).contains(to))
            << include.file << " includes " << include.target;
    }
}

TEST(Structure, everyOutsideLibraryOfTheLibraryIsUsedInOneRoom) {
    for (const Include& include : includesBelow("src")) {
        for (const auto& [library, room] : kLibraryRooms) {
            if (include.isAngled && std::regex_match(include.target, library)) {
                EXPECT_EQ(include.room, room) << include.file << " includes " << include.target;
            }
        }
    }
}

TEST(Structure, thePublicHeadersKnowNothingButThemselvesAndTheStandardLibrary) {
    for (const Include& include : includesBelow("include")) {
        const bool isOwn = include.target.starts_with("Trelmix/");
        const bool isStandard = include.target.find_first_of("./") == std::string::npos;
        EXPECT_TRUE(include.isAngled && (isOwn || isStandard))
            << include.file << " includes " << include.target;
    }
}

TEST(Structure, programsAndExamplesUseThePublicHeadersOnlyAndTheWindowAloneUsesItsLibrary) {
    for (const std::string folder : {"apps", "examples"}) {
        for (const Include& include : includesBelow(folder)) {
            EXPECT_FALSE(fs::exists(kRoot / "src" / include.target))
                << include.file << " includes " << include.target;
            if (include.target.starts_with("SDL")) {
                EXPECT_NE(include.file.generic_string().find("apps/view/"), std::string::npos)
                    << include.file;
            }
        }
    }
}

} // namespace
