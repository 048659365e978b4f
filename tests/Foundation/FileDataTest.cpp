#include "Platform/Foundation/FileData.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>
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
    void write(const char* name, const std::string& text) const {
        std::ofstream(at(name), std::ios::binary) << text;
    }
    static std::string read(const std::string& path) {
        const auto data = readFile(path);
        return data ? std::string(reinterpret_cast<const char*>(data->data()), data->size())
                    : "?" + data.reason();
    }
    fs::path folder;
};

TEST_F(FileDataTest, wholeFilesOrTheReasonWhyNot) {
    write("long", std::string(3'000'000, 'x'));
    EXPECT_EQ(read(at("long")), std::string(3'000'000, 'x'));
    write("empty", "");
    EXPECT_EQ(read(at("empty")), "");
    write("five", "12345");
    EXPECT_TRUE(readFile(at("five"), 5));
    EXPECT_EQ(readFile(at("five"), 4).reason(), "is larger than 4 bytes");
    EXPECT_TRUE(read(at("missing")).starts_with("?cannot open: "));
    EXPECT_EQ(read(folder.string()), "?is a folder");
    // What would not end, and what would wait for somebody to write.
    EXPECT_EQ(read("/dev/zero"), "?is no file");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(read(at("pipe")), "?is no file");
}

} // namespace
} // namespace trelmix
