#include "Platform/Foundation/FileData.h"

#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>

namespace trelmix::file_data_test {

std::string read(const std::string& path) {
    const auto data = readFile(path);
    return data ? std::string(reinterpret_cast<const char*>(data->data()), data->size())
                : "?" + data.reason();
}

TEST(FileData, wholeFilesOrTheReasonWhyNot) {
    const apps::ScratchFolder folder;
    for (const std::string& text : {std::string(3'000'000, 'x'), std::string()}) {
        EXPECT_EQ(read(folder.write("file", text)), text);
    }
    const std::string five = folder.write("five", "12345");
    EXPECT_TRUE(readFile(five, 5));
    EXPECT_EQ(readFile(five, 4).reason(), "is larger than 4 bytes");
    EXPECT_TRUE(read(folder.path("missing")).starts_with("?cannot open: "));
    EXPECT_EQ(read(folder.path("")), "?is a folder");
    // What would not end, and what would wait for somebody to write.
    EXPECT_EQ(read("/dev/zero"), "?is no file");
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(read(folder.path("pipe")), "?is no file");
}

} // namespace trelmix::file_data_test
