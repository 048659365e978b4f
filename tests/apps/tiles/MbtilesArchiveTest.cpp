#include "common/tiles/MbtilesArchive.h"

#include "support/ArchiveWriter.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

std::vector<std::byte> bytesOf(const std::string& text) {
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

std::string fileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(MbtilesArchive, rowsCountFromTheSouthAndBoundsFollowFromTheTiles) {
    const ScratchFolder folder;
    {
        ArchiveWriter writer(folder.path("a.mbtiles"));
        writer.metadata("attribution", "somebody");
        writer.tile(1, 1, 0, bytesOf("north east"));
        writer.tile(0, 0, 0, bytesOf("world"));
    }
    const auto archive = MbtilesArchive::open(folder.path("a.mbtiles"));
    ASSERT_TRUE(archive) << archive.reason();
    EXPECT_EQ((*archive)->attribution(), "somebody");
    EXPECT_EQ((*archive)->highestZoom(), 1);
    EXPECT_EQ(*(*archive)->tile({1, 0, 1}), bytesOf("north east"));
    for (const TileIndex missing :
         {TileIndex{1, 1, 1}, {0, 0, 2}, {-1, 0, 1}, {0, INT64_MIN, 1}, {0, 0, -1}}) {
        const auto answer = (*archive)->tile(missing);
        ASSERT_TRUE(answer);
        EXPECT_FALSE(answer->has_value());
    }
    const auto bounds = (*archive)->bounds();
    ASSERT_TRUE(bounds);
    EXPECT_NEAR(bounds->southWest.latitude, 0, 1e-9);
    EXPECT_NEAR(bounds->southWest.longitude, 0, 1e-9);
    EXPECT_NEAR(bounds->northEast.latitude, 85.0511287798, 1e-9);
    EXPECT_NEAR(bounds->northEast.longitude, 180, 1e-9);
}

TEST(MbtilesArchive, whatIsNoArchiveIsRefusedWithAReasonThatNamesTheFile) {
    const ScratchFolder folder;
    {
        ArchiveWriter writer(folder.path("whole"));
        for (int i = 0; i < 500; ++i) {
            writer.tile(10, i, 0, bytesOf(std::string(200, 'x')));
        }
    }
    const std::string whole = fileText(folder.path("whole"));
    folder.write("truncated", whole.substr(0, whole.size() / 2));
    folder.write("head", whole.substr(0, 100));
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
    const std::pair<const char*, const char*> cases[] = {
        {"missing", "does not exist"},  {".", "is a folder"},       {"truncated", "malformed"},
        {"head", "is no tile archive"}, {"text", "not a database"}, {"empty", "no such table"},
        {"noTiles", "holds no tiles"},  {"vector", "vector tiles"}, {"otherTable", "no such column"},
    };
    for (const auto& [name, reason] : cases) {
        const auto archive = MbtilesArchive::open(folder.path(name));
        ASSERT_FALSE(archive) << name;
        EXPECT_TRUE(archive.reason().starts_with(folder.path(name) + ": ")) << archive.reason();
        EXPECT_NE(archive.reason().find(reason), std::string::npos) << archive.reason();
    }
}

TEST(MbtilesArchive, aViewThatNeverEndsIsStopped) {
    const ScratchFolder folder;
    {
        ArchiveWriter writer(folder.path("endless"));
        writer.run("DROP TABLE tiles");
        writer.run("CREATE VIEW tiles AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                   "SELECT i AS zoom_level, i AS tile_column, i AS tile_row, i AS tile_data FROM n");
    }
    const auto archive = MbtilesArchive::open(folder.path("endless"));
    ASSERT_FALSE(archive);
    EXPECT_NE(archive.reason().find("interrupted"), std::string::npos) << archive.reason();
}
