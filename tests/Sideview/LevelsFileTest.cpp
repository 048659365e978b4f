#include "Sideview/LevelsText.h"
#include "support/ScratchFolder.h"

#include <filesystem>
#include <limits>

namespace trelmix {
namespace {

const std::string kBearing = R"("bearing": 30,)";

std::string withLevels(const std::string& levels) {
    return levelsText(kBearing + R"("levels": )" + levels + ",");
}

std::optional<std::int64_t> numberRead(const std::string& number) {
    const Result<LevelsFile> file = parseText(withLevels(R"([{"levelNumber": )" + number + "}]"));
    EXPECT_TRUE(file) << number << ": " << file.reason();
    return file ? file->levels->at(0).levelNumber : std::nullopt;
}

TEST(LevelsFile, anUnusableTextIsRefusedInOneLineThatNamesThePlace) {
    const struct {
        std::string text;
        std::string place;
    } cases[] = {
        {"", "empty"},
        {"   ", "line 1"},
        {"{\n\"bearing\": 1,,}", "line 2, column 14"},
        {"[]", "must be an object"},
        {"12", "must be an object"},
        {levelsText(""), "bearing: is missing"},
        {levelsText(R"("bearing": "30",)"), "bearing: must be a number, is string"},
        {levelsText(R"("bearing": true,)"), "bearing: must be a number, is boolean"},
        {levelsText(R"("bearing": null,)"), "bearing: must be a number, is null"},
        {levelsText(R"("bearing": NaN,)"), "line 1"},
        {levelsText(R"("bearing": Infinity,)"), "line 1"},
        {levelsText(R"("bearing": 1e400,)"), "larger than a double"},
        {levelsText(R"("bearing": 1, "bearing": 2,)"), "bearing: stands twice"},
        {R"({"bearing": 1, "southLatitude": 2})", "northLatitude: is missing"},
        {levelsText(kBearing) + "x", "line 1"},
        {levelsText(kBearing).substr(0, 60), "line 1"},
        {levelsText("\"a\": \"\xff\"," + kBearing), "UTF-8"},
        {levelsText("\"a\": \"\xed\xa0\x80\"," + kBearing), "UTF-8"},
        {std::string("\xff\xfe{\0}\0", 6), "line 1"},
        {withLevels("{}"), "levels: must be an array"},
        {withLevels("null"), "levels: must be an array"},
        {withLevels("[{}, 3]"), "levels[1]: must be an object"},
        {withLevels(R"([{"levelNumber": 1, "levelNumber": 2}])"), "levels[0].levelNumber: stands twice"},
        {withLevels(R"([{"levelbounds": 3}])"), "levels[0].levelbounds: must be an array"},
        {withLevels(R"([{}, {"levelbounds": [[]]}])"), "levels[1].levelbounds[0]: must be an object"},
        {withLevels(R"([{"levelbounds": [{"relativeheight": 1}]}])"),
         "levels[0].levelbounds[0].ceilingheight: is missing"},
        {withLevels(R"([{"levelbounds": [{"ceilingheight": 1}]}])"),
         "levels[0].levelbounds[0].relativeheight: is missing"},
        {withLevels(R"([{"levelbounds": [{"relativeheight": 1, "ceilingheight": 1, "a\nb": true}]}])"),
         "levels[0].levelbounds[0].a?b: must be a number"},
        {std::string(1'000'000, '['), "nested more than 64 deep"},
        {levelsText(kBearing + R"("a": )" + std::string(100'000, '[') + std::string(100'000, ']') + ","),
         "nested more than 64 deep"},
    };
    for (const auto& c : cases) {
        const Result<LevelsFile> file = parseText(c.text);
        ASSERT_FALSE(file) << c.text.substr(0, 300);
        EXPECT_NE(file.reason().find(c.place), std::string::npos) << file.reason();
        EXPECT_EQ(file.reason().find('\n'), std::string::npos) << file.reason();
        EXPECT_LT(file.reason().size(), 300U) << file.reason();
    }
}

TEST(LevelsFile, moreValuesThanAnyStructureHasAreRefusedBeforeTheyFillTheMemory) {
    std::string many = R"({"a": [[])";
    for (int i = 0; i < 1'000'000; ++i) {
        many += ",[]";
    }
    const Result<LevelsFile> file = parseText(many + "]}");
    ASSERT_FALSE(file);
    EXPECT_NE(file.reason().find("a[999998]: more than 1000000 values"), std::string::npos) << file.reason();
}

TEST(LevelsFile, whatMayBeMissingOrOfAnotherTypeFallsBack) {
    const auto plain = parseText(levelsText(kBearing));
    ASSERT_TRUE(plain);
    EXPECT_FALSE(plain->levels);
    EXPECT_EQ(plain->bowPosition, SideviewBowPosition::right);
    for (const char* bow : {R"("LEFT")", "1", "null", R"(["left"])", R"("right")"}) {
        const auto file = parseText(levelsText(kBearing + R"("bowPosition": )" + bow + ","));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->bowPosition, SideviewBowPosition::right) << bow;
    }
    const auto offsets = parseText(levelsText(
        kBearing +
        R"("bowPosition": "left", "bottomOffset": "20", "topOffset": true, "leftOffset": 7, "rightOffset": -2.5,)"));
    ASSERT_TRUE(offsets);
    EXPECT_EQ(offsets->bowPosition, SideviewBowPosition::left);
    EXPECT_EQ(offsets->bottomOffset, 0);
    EXPECT_EQ(offsets->topOffset, 0);
    EXPECT_EQ(offsets->leftOffset, 7);
    EXPECT_EQ(offsets->rightOffset, -2.5);
    EXPECT_TRUE(parseText("\xef\xbb\xbf" + levelsText(kBearing))) << "a byte-order mark is skipped";
}

TEST(LevelsFile, aLevelNumberIsAnyWholeNumberOf64BitsAndExact) {
    const struct {
        const char* text;
        std::optional<std::int64_t> number;
    } cases[] = {
        {"2", 2},
        {"2.0", 2},
        {"2e0", 2},
        {"-0", 0},
        {"-0.0", 0},
        {"-1337", -1337},
        {"9007199254740993", 9007199254740993},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"1e30", std::nullopt},
        {"1.5", std::nullopt},
        {R"("2")", std::nullopt},
        {"true", std::nullopt},
        {"null", std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(numberRead(c.text), c.number) << c.text;
    }
}

TEST(LevelsFile, levelsWithoutBoundsAndWithNoneAreTwoThings) {
    const auto file = parseText(withLevels(R"([{"levelNumber": 1, "name": "deck"}, {"levelbounds": []},
        {"levelNumber": 1, "levelbounds": [{"relativeheight": -1, "ceilingheight": 2.5, "width": 3}]}])"));
    ASSERT_TRUE(file) << file.reason();
    const SideviewLevels expected = {{1, std::nullopt}, {std::nullopt, {{}}}, {1, {{{-1, 2.5}}}}};
    EXPECT_EQ(file->levels, expected);
    EXPECT_EQ(findLevel(file->levels, 1), file->levels->data());
    EXPECT_EQ(findLevel(file->levels, 2), nullptr);
    EXPECT_EQ(findLevel(std::nullopt, 1), nullptr);
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
    EXPECT_NE(readLevelsFile(folder.path("")).reason().find("folder"), std::string::npos);
    std::filesystem::remove(path);
    EXPECT_EQ(SideviewProjection::make(path, 100, 100).reason().rfind(path + ": cannot open", 0), 0U);
    EXPECT_EQ(SideviewProjection::levelInfo(4, path).reason().rfind(path, 0), 0U);
}

} // namespace
} // namespace trelmix
