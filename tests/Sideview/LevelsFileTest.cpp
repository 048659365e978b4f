#include "Sideview/LevelsText.h"
#include "support/ScratchFolder.h"

#include <filesystem>
#include <limits>

namespace trelmix::levels_file_test {

const std::string kBearing = R"("bearing": 30,)";

std::string withLevels(const std::string& levels) {
    return levelsText(kBearing + R"("levels": )" + levels + ",");
}

std::string manyValues() {
    std::string many = R"({"a": [[])";
    for (int i = 0; i < 1'000'000; ++i) {
        many += ",[]";
    }
    return many + "]}";
}

TEST(LevelsFile, anUnusableTextIsRefusedInOneLineThatNamesThePlace) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "empty"},
        {"{\n\"bearing\": 1,,}", "line 2, column 14"},
        {"[]", "must be an object"},
        {levelsText(""), "bearing: is missing"},
        {levelsText(R"("bearing": "30",)"), "bearing: must be a number, is string"},
        {levelsText(R"("bearing": 1e400,)"), "larger than a double"},
        {levelsText("\"a\": \"\xed\xa0\x80\"," + kBearing), "UTF-8"},
        {withLevels("{}"), "levels: must be an array"},
        {withLevels("[{}, 3]"), "levels[1]: must be an object"},
        {withLevels(R"([{"levelNumber": 1, "levelNumber": 2}])"), "levels[0].levelNumber: stands twice"},
        {withLevels(R"([{"levelbounds": 3}])"), "levels[0].levelbounds: must be an array"},
        {withLevels(R"([{}, {"levelbounds": [[]]}])"), "levels[1].levelbounds[0]: must be an object"},
        {withLevels(R"([{"levelbounds": [{"relativeheight": 1}]}])"),
         "levels[0].levelbounds[0].ceilingheight: is missing"},
        {withLevels(R"([{"levelbounds": [{"relativeheight": 1, "ceilingheight": 1, "a\nb": true}]}])"),
         "levels[0].levelbounds[0].a?b: must be a number"},
        {std::string(1'000'000, '['), "nested more than 64 deep"},
        {manyValues(), "a[999998]: more than 1000000 values"},
    };
    for (const auto& [text, place] : cases) {
        const Result<LevelsFile> file = parseText(text);
        ASSERT_FALSE(file) << text.substr(0, 300);
        EXPECT_NE(file.reason().find(place), std::string::npos) << file.reason();
        EXPECT_EQ(file.reason().find('\n'), std::string::npos) << file.reason();
        EXPECT_LT(file.reason().size(), 300U) << file.reason();
    }
}

TEST(LevelsFile, whatMayBeMissingOrOfAnotherTypeFallsBack) {
    for (const char* bow : {R"("LEFT")", "1", R"(["left"])", R"("right")"}) {
        const auto file = parseText(levelsText(kBearing + R"("bowPosition": )" + bow + ","));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->bowPosition, SideviewBowPosition::right) << bow;
        EXPECT_FALSE(file->levels);
    }
    const auto offsets =
        parseText("\xef\xbb\xbf" + // a byte-order mark
                  levelsText(kBearing + R"("bowPosition": "left", "bottomOffset": "20", "leftOffset": 7,)"));
    ASSERT_TRUE(offsets) << offsets.reason();
    EXPECT_EQ(offsets->bowPosition, SideviewBowPosition::left);
    EXPECT_EQ(offsets->bottomOffset, 0);
    EXPECT_EQ(offsets->leftOffset, 7);
    EXPECT_EQ(offsets->rightOffset, 0);
}

TEST(LevelsFile, aLevelNumberIsAnyWholeNumberOf64BitsAndExact) {
    const std::pair<std::string, std::optional<std::int64_t>> cases[] = {
        {"2.0", 2},
        {"-0", 0},
        {"9007199254740993", 9007199254740993},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"1.5", std::nullopt},
        {R"("2")", std::nullopt},
    };
    for (const auto& [text, number] : cases) {
        const auto file = parseText(withLevels(R"([{"levelNumber": )" + text + "}]"));
        ASSERT_TRUE(file) << text << ": " << file.reason();
        EXPECT_EQ(file->levels->at(0).levelNumber, number) << text;
    }
}

TEST(LevelsFile, levelsWithoutBoundsAndWithNoneAreTwoThings) {
    const auto file = parseText(withLevels(R"([{"levelNumber": 1, "name": "deck"}, {"levelbounds": []},
        {"levelNumber": 1, "levelbounds": [{"relativeheight": -1, "ceilingheight": 2.5, "width": 3}]}])"));
    ASSERT_TRUE(file) << file.reason();
    const SideviewLevels expected = {{1, std::nullopt}, {std::nullopt, {{}}}, {1, {{{-1, 2.5}}}}};
    EXPECT_EQ(file->levels, expected);
    EXPECT_EQ(findLevel(file->levels, 1), file->levels->data());
}

TEST(LevelsFile, readingNamesThePathOfWhatCannotBeUsed) {
    const apps::ScratchFolder folder;
    const std::string path = folder.write("levels.json", R"({"levels": [{"levelNumber": 4}]})");
    EXPECT_EQ(readLevelsFile(path).reason(), path + ": bearing: is missing");
    const auto level = SideviewProjection::levelInfo(4, path);
    ASSERT_TRUE(level) << "levels can be looked up in a file that describes no box";
    EXPECT_EQ((*level)->levelNumber, 4);
    EXPECT_FALSE(SideviewProjection::levelInfo(5, path)->has_value());

    std::filesystem::resize_file(path, 100'000'000);
    EXPECT_NE(readLevelsFile(path).reason().find("larger than"), std::string::npos);
    std::filesystem::remove(path);
    EXPECT_EQ(SideviewProjection::make(path, 100, 100).reason().rfind(path + ": cannot open", 0), 0U);
    EXPECT_EQ(SideviewProjection::levelInfo(4, path).reason().rfind(path, 0), 0U);
}

} // namespace trelmix::levels_file_test
