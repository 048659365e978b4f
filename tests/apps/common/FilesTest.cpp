#include "common/Files.h"

#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>

namespace trelmix::apps::files_test {

namespace fs = std::filesystem;

std::string save(const std::string& path, const std::string& text) {
    return saveFile(path, std::as_bytes(std::span(text)));
}

TEST(Files, savingReplacesWholeFilesAndFollowsLinks) {
    const ScratchFolder folder;
    const auto text = [](const std::string& path) {
        const auto data = loadFile(path, 1000);
        return data ? std::string(reinterpret_cast<const char*>(data->data()), data->size()) : data.reason();
    };
    EXPECT_EQ(save(folder.path("a"), std::string(3'000'000, 'x')), "");
    EXPECT_EQ(text(folder.path("a")), "is larger than 1000 bytes");
    fs::create_symlink(folder.path("a"), folder.path("link"));
    fs::permissions(folder.path("a"), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(save(folder.path("link"), "new"), "");
    EXPECT_EQ(text(folder.path("a")), "new");
    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_EQ(fs::status(folder.path("a")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 2);
    EXPECT_EQ(save(folder.path(""), "x"), "is a folder, not a file");
    EXPECT_TRUE(save(folder.path("no/such/folder"), "x").starts_with("cannot be written: "));
}

TEST(Files, aWriteThatFailsLeavesTheOldFileAndNothingElse) {
    const ScratchFolder folder;
    ASSERT_EQ(save(folder.path("a"), "good"), "");
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {100'000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string reason = save(folder.path("a"), std::string(3'000'000, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(reason.starts_with("cannot be written: ")) << reason;
    EXPECT_EQ(fs::file_size(folder.path("a")), 4U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 1);
}

TEST(Files, aPipeThatNobodyWritesToIsRefused) {
    const ScratchFolder folder;
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(loadFile(folder.path("pipe"), 1000).reason(), "is a pipe, not a file");
}

TEST(Files, devicesAreWrittenToRatherThanReplacedAndAFullOneIsNoticed) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "needs /dev/full";
    }
    EXPECT_NE(save("/dev/full", "x"), "");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

} // namespace trelmix::apps::files_test
