#include "common/tiles/MbtilesArchive.h"

#include "support/ArchiveWriter.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

std::vector<std::byte> bytesOf(const std::string& text) {
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

} // namespace

TEST(MbtilesArchive, rowsCountFromTheSouthAndBoundsFollowFromTheTiles) {
    const ScratchFolder folder;
    {
        ArchiveWriter writer(folder.path("a.mbtiles"));
        writer.metadata("attribution", "somebody");
        writer.tile(3, 5, 0, bytesOf("north west"));
        writer.tile(3, 6, 2, bytesOf("south east"));
        writer.tile(0, 0, 0, bytesOf("world"));
    }
    const auto archive = MbtilesArchive::open(folder.path("a.mbtiles"));
    ASSERT_TRUE(archive) << archive.reason();
    EXPECT_EQ((*archive)->attribution(), "somebody");
    EXPECT_EQ((*archive)->highestZoom(), 3);
    EXPECT_EQ(*(*archive)->tile({5, 0, 3}), bytesOf("north west"));
    EXPECT_EQ(*(*archive)->tile({6, 2, 3}), bytesOf("south east"));
    for (const TileIndex missing :
         {TileIndex{5, 7, 3}, {0, 0, 4}, {-1, 0, 1}, {0, INT64_MIN, 1}, {0, 0, -1}}) {
        const auto answer = (*archive)->tile(missing);
        ASSERT_TRUE(answer);
        EXPECT_FALSE(answer->has_value());
    }
    const auto bounds = (*archive)->bounds();
    ASSERT_TRUE(bounds);
    EXPECT_NEAR(bounds->southWest.latitude, 40.979898069620, 1e-9);
    EXPECT_NEAR(bounds->southWest.longitude, 45, 1e-9);
    EXPECT_NEAR(bounds->northEast.latitude, 85.0511287798, 1e-9);
    EXPECT_NEAR(bounds->northEast.longitude, 135, 1e-9);
}

TEST(MbtilesArchive, boundsAreThoseItTellsWhereTheyMakeSense) {
    const ScratchFolder folder;
    for (const auto& [text, south] : {std::pair{"10,20,30,40", 20.0}, {"10,40,30,20", 0.0}, {"10,20", 0.0}}) {
        const std::string path = folder.path(text);
        {
            ArchiveWriter writer(path);
            writer.metadata("bounds", text);
            writer.tile(1, 1, 0, bytesOf("north east"));
        }
        EXPECT_NEAR((*MbtilesArchive::open(path))->bounds()->southWest.latitude, south, 1e-9) << text;
    }
}

TEST(MbtilesArchive, whatIsNoArchiveIsRefusedWithAReasonThatNamesTheFile) {
    const ScratchFolder folder;
    {
        ArchiveWriter writer(folder.path("whole"));
        for (int i = 0; i < 500; ++i) {
            writer.tile(10, i, 0, bytesOf(std::string(200, 'x')));
        }
    }
    const std::string whole = folder.text("whole");
    folder.write("truncated", whole.substr(0, whole.size() / 2));
    folder.write("text", std::string(5000, 'z'));
    folder.write("empty", "");
    { ArchiveWriter writer(folder.path("noTiles")); }
    {
        ArchiveWriter writer(folder.path("vector"));
        writer.metadata("format", "pbf");
        writer.tile(0, 0, 0, bytesOf("x"));
    }
    {
        ArchiveWriter writer(folder.path("otherTable"));
        writer.run("DROP TABLE tiles");
        writer.run("CREATE TABLE tiles (a, b)");
    }
    {
        ArchiveWriter writer(folder.path("endless"));
        writer.run("DROP TABLE tiles");
        writer.run("CREATE VIEW tiles AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                   "SELECT i AS zoom_level, i AS tile_column, i AS tile_row, i AS tile_data FROM n");
    }
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    const std::pair<const char*, const char*> cases[] = {
        {"missing", "does not exist"}, {".", "is a folder"},       {"truncated", "malformed"},
        {"text", "not a database"},    {"empty", "no such table"}, {"noTiles", "holds no tiles"},
        {"pipe", "is no file"},        {"vector", "vector tiles"}, {"otherTable", "no such column"},
        {"endless", "interrupted"},
    };
    for (const auto& [name, reason] : cases) {
        const auto archive = MbtilesArchive::open(folder.path(name));
        ASSERT_FALSE(archive) << name;
        EXPECT_TRUE(archive.reason().starts_with(folder.path(name) + ": ")) << archive.reason();
        EXPECT_NE(archive.reason().find(reason), std::string::npos) << archive.reason();
    }
}

TEST(MbtilesArchive, inWriteAheadModeItOpensWhereNothingCanBeWrittenBesideIt) {
    const ScratchFolder folder;
    const std::string path = folder.path("50% #1?.mbtiles");
    {
        ArchiveWriter writer(path);
        writer.run("PRAGMA journal_mode = WAL");
        writer.tile(0, 0, 0, bytesOf("world"));
    }
    // In the way of the file that readers share; a folder's permissions would not stop everybody.
    std::filesystem::create_directory(path + "-shm");
    const auto archive = MbtilesArchive::open(path);
    ASSERT_TRUE(archive) << archive.reason();
    EXPECT_EQ(*(*archive)->tile({0, 0, 0}), bytesOf("world"));
}
