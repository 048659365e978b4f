// Holds the arrows of the house: which room may include which, and which outside library is used where.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
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
    {"Render", {"Platform/Foundation", "Platform/Graphics", "Platform/Scene"}},
    {"Geo", {"Platform/Foundation", "Platform/Math"}},
    {"Camera", {"Geo", "Platform/Foundation", "Platform/Math", "Platform/Scene"}},
    {"Engine",
     {"Overlays", "Tiles", "Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/Scene",
      "Platform/View"}},
    {"Overlays",
     {"Engine", "Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/Scene",
      "Platform/View"}},
    {"Tiles",
     {"Engine", "Camera", "Geo", "Platform/Foundation", "Platform/Graphics", "Platform/Network",
      "Platform/Scene"}},
    {"Sideview", {"Geo", "Platform/Foundation", "Platform/Graphics", "Platform/View"}},
    {"Host",
     {"Engine", "Sideview", "Platform/Foundation", "Platform/Graphics", "Platform/Scene", "Platform/View",
      "Render"}},
};

/// The one room of each outside library, by the beginning of its headers' names.
const std::vector<std::pair<std::string, std::string>> kLibraryRooms{
    {"spng", "Platform/Graphics"},
    {"libdeflate", "Platform/Graphics"},
    {"turbojpeg", "Platform/Graphics"},
    {"webp/", "Platform/Graphics"},
    {"cairo", "Platform/Graphics"},
    {"GL/glu", "Platform/Scene"},
    {"EGL/", "Render"},
    {"GLES", "Render"},
    {"KHR/", "Render"},
    {"curl/", "Platform/Network"},
    {"sqlite3", "Platform/Network"},
    {"nlohmann/", "Sideview"},
    {"SDL", "apps/view"},
};

struct Include {
    fs::path file;
    /// The folder below src.
    std::string room, target;
    bool isAngled;
};

/// The room of a folder below src: a room may have folders inside, Platform's rooms lie one deeper.
std::string roomOf(const fs::path& folder) {
    auto part = folder.begin();
    const fs::path storey = part == folder.end() ? fs::path() : *part++;
    return (storey == "Platform" && part != folder.end() ? storey / *part : storey).generic_string();
}

std::vector<Include> includesBelow(const std::string& folder) {
    static const std::regex line("[ \t]*#[ \t]*include[ \t]*([<\"])([^>\"]*).*");
    std::vector<Include> found;
    for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
        const std::string kind = entry.path().extension().string();
        if (kind != ".h" && kind != ".cpp") {
            continue;
        }
        const std::string room = roomOf(fs::relative(entry.path().parent_path(), kRoot / "src"));
        std::ifstream file(entry.path());
        std::smatch parts;
        for (std::string text; std::getline(file, text);) {
            if (text.find('#') != std::string::npos && std::regex_match(text, parts, line)) {
                found.push_back({entry.path(), room, parts[2], parts[1] == "<"});
            }
        }
    }
    return found;
}

TEST(Structure, everyIncludeOfTheLibraryFollowsAnAllowedArrowAndOutsideLibrariesHaveOneRoomEach) {
    const auto includes = includesBelow("src");
    ASSERT_GT(includes.size(), 300U);
    for (const Include& include : includes) {
        ASSERT_TRUE(kArrows.contains(include.room)) << include.file << ": an unknown room";
        if (include.isAngled) {
            for (const auto& [library, room] : kLibraryRooms) {
                EXPECT_TRUE(include.room == room || !include.target.starts_with(library))
                    << include.file << " includes " << include.target;
            }
            continue;
        }
        const std::string to = roomOf(fs::path(include.target).parent_path());
        EXPECT_TRUE(to == include.room || kArrows.at(include.room).contains(to))
            << include.file << " includes " << include.target;
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

TEST(Structure, programsAndExamplesUseThePublicHeadersOnlyAndTheWindowsAloneUseTheirLibrary) {
    for (const std::string folder : {"apps", "examples"}) {
        for (const Include& include : includesBelow(folder)) {
            EXPECT_FALSE(fs::exists(kRoot / "src" / include.target))
                << include.file << " includes " << include.target;
            if (include.target.starts_with("SDL")) {
                const std::string file = include.file.generic_string();
                EXPECT_TRUE(file.find("apps/view/") != std::string::npos || file.ends_with("/window.cpp"))
                    << file;
            }
        }
    }
}

/// The names of the folders right below one.
Names foldersIn(const std::string& folder) {
    Names names;
    for (const auto& entry : fs::directory_iterator(kRoot / folder)) {
        if (entry.is_directory()) {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

TEST(Structure, theDrawingOfTheHouseShowsEveryRoomAndNoOther) {
    std::ifstream file(kRoot / "docs/architecture.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const std::size_t begin = page.find("```") + 3;
    const std::string drawing = page.substr(begin, page.find("```", begin) - begin);
    const std::regex place("(src|apps)/([A-Za-z]+)|\n {7}([A-Z][a-z]+) ");
    Names drawn;
    for (std::sregex_iterator match(drawing.begin(), drawing.end(), place), end; match != end; ++match) {
        drawn.insert((*match)[3].matched ? "src/Platform/" + match->str(3)
                                         : match->str(1) + "/" + match->str(2));
    }
    Names there;
    for (const std::string parent : {"src", "src/Platform", "apps"}) {
        for (const std::string& folder : foldersIn(parent)) {
            there.insert(parent + "/" + folder);
        }
    }
    EXPECT_EQ(drawn, there);
    for (const std::string& part : foldersIn("apps/common")) {
        EXPECT_NE(drawing.find(part), std::string::npos) << "apps/common/" << part;
    }
}

TEST(Structure, everyRoomHasATestFolderOfItsName) {
    // Math is tested by the numbers of Geo, and programs and hosts share what lies in support.
    const Names untested{"Math", "Platform"};
    for (const std::string parent : {"src", "src/Platform"}) {
        for (const std::string& folder : foldersIn(parent)) {
            EXPECT_TRUE(untested.contains(folder) || fs::exists(kRoot / "tests" / folder)) << folder;
        }
    }
}

} // namespace
