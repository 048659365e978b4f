#include "Platform/Foundation/FileData.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace trelmix {
namespace {

namespace fs = std::filesystem;

class FileDataTest : public testing::Test {
protected:
    void SetUp() override {
        folder = fs::path(testing::TempDir()) / ("trelmix-files-" + std::to_string(::getpid()));
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string at(const char* name) const { return (folder / name).string(); }
    static std::string write(const std::string& path, const std::string& text) {
        return writeFile(path, text.data(), text.size());
    }
    static std::string read(const std::string& path) {
        const auto data = readFile(path);
        return data ? std::string(reinterpret_cast<const char*>(data->data()), data->size())
                    : "?" + data.reason();
    }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

TEST_F(FileDataTest, whatWasWrittenIsReadAndReplacedWithoutLeftovers) {
    EXPECT_EQ(write(at("a"), std::string(3'000'000, 'x')), "");
    EXPECT_EQ(read(at("a")).size(), 3'000'000U);
    fs::create_symlink(at("a"), at("link"));
    EXPECT_EQ(write(at("link"), "new"), "");
    EXPECT_EQ(read(at("a")), "new");
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_EQ(write(at("empty"), ""), "");
    EXPECT_EQ(read(at("empty")), "");
    EXPECT_EQ(fileCount(), 3U);
}

TEST_F(FileDataTest, everyFailureHasItsReason) {
    EXPECT_TRUE(read(at("missing")).starts_with("?cannot open: "));
    EXPECT_EQ(read(folder.string()), "?is a folder");
    EXPECT_EQ(write(folder.string(), "x"), "is a folder");
    EXPECT_NE(write(at("no/such/folder"), "x"), "");
    EXPECT_EQ(write(at("five"), "12345"), "");
    EXPECT_FALSE(readFile(at("five"), 4));
    EXPECT_TRUE(readFile(at("five"), 5));
    // Claims to be empty and never ends.
    EXPECT_EQ(readFile("/dev/zero", 5000).reason(), "is larger than 5000 bytes");
}

TEST_F(FileDataTest, devicesAreWrittenToRatherThanReplacedAndAFullOneIsNoticed) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "needs /dev/full";
    }
    EXPECT_NE(write("/dev/full", "x"), "");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

} // namespace
} // namespace trelmix
