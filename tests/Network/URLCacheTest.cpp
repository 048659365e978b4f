#include "Platform/Network/URLCache.h"

#include "support/AnswerSamples.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sys/resource.h>

namespace trelmix::url_cache_test {

constexpr std::uint64_t kPlenty = 64 << 20;

class DiskCacheTest : public ::testing::Test {
protected:
    std::string file() const { return folder.path("cache/" + std::string(DiskCache::kFileName)); }
    std::unique_ptr<DiskCache> open(std::uint64_t limit = kPlenty) const {
        return std::make_unique<DiskCache>(folder.path("cache"), limit);
    }
    /// How many of the samples up to `end` are there; fails when one is not what was stored.
    static int wholeCount(DiskCache& cache, int end) {
        int count = 0;
        for (int i = 0; i < end; ++i) {
            const auto found = cache.find(sampleAddress(i));
            count += found ? 1 : 0;
            EXPECT_TRUE(!found || *found == sampleBody(i)) << "entry " << i << " is not what was stored";
        }
        return count;
    }
    void fill(int end) const {
        const auto cache = open();
        for (int i = 0; i < end; ++i) {
            ASSERT_TRUE(cache->store(sampleAddress(i), sampleBody(i)));
        }
    }
    apps::ScratchFolder folder;
};

TEST_F(DiskCacheTest, anotherProcessFindsWhatWasStoredAndTheLatestOfEachAddress) {
    const auto cache = open();
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(cache->store(sampleAddress(i), sampleBody(0)));
        ASSERT_TRUE(cache->store(sampleAddress(i), sampleBody(i)));
    }
    EXPECT_EQ(wholeCount(*open(), 30), 20);
    EXPECT_EQ(wholeCount(*cache, 30), 20);
    const auto others = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    EXPECT_EQ(std::filesystem::status(folder.path("cache")).permissions() & others,
              std::filesystem::perms::none)
        << "others could read where the user has been";
    std::filesystem::remove_all(folder.path("cache"));
    EXPECT_TRUE(cache->store(sampleAddress(2), sampleBody(2))) << "cleared while it is open";
    EXPECT_TRUE(open()->find(sampleAddress(2)));
}

TEST_F(DiskCacheTest, keepsItsLimitAndLetsTheLeastRecentlyUsedGo) {
    const std::vector<std::byte> body(40 << 10);
    const auto cache = open(1 << 20);
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(cache->store(sampleAddress(i), body));
        EXPECT_TRUE(cache->find(sampleAddress(0))) << "used all the time, gone after " << i;
    }
    EXPECT_TRUE(cache->find(sampleAddress(99)));
    int count = 0;
    for (int i = 0; i < 100; ++i) {
        count += cache->find(sampleAddress(i)) ? 1 : 0;
    }
    EXPECT_TRUE(count > 20 && count <= 26) << count;
    EXPECT_FALSE(cache->store(sampleAddress(1), std::vector<std::byte>(2 << 20))) << "larger than all";
    EXPECT_LT(std::filesystem::file_size(file()), 2U << 20);
}

TEST_F(DiskCacheTest, aDamagedFileIsSetAsideAndMadeAnew) {
    const std::vector<std::pair<const char*, std::function<void(std::string&)>>> damages = {
        {"text", [](std::string& bytes) { bytes = std::string(100000, 'x'); }},
        {"cut short", [](std::string& bytes) { bytes.resize(bytes.size() / 2); }},
        {"zeroed", [](std::string& bytes) { std::fill(bytes.begin() + 4096, bytes.end(), '\0'); }},
        {"other version", [](std::string& bytes) { bytes[63] = 77; }},
    };
    for (const auto& [name, damage] : damages) {
        fill(40);
        std::string bytes = folder.text(file());
        damage(bytes);
        std::ofstream(file(), std::ios::binary) << bytes;
        const auto cache = open();
        wholeCount(*cache, 40);
        EXPECT_TRUE(cache->store(sampleAddress(99), sampleBody(99))) << name;
        EXPECT_EQ(wholeCount(*open(), 100) > 0, true) << name;
        EXPECT_EQ(::access((file() + ".damaged").c_str(), F_OK), 0) << name;
        std::filesystem::remove_all(folder.path("cache"));
    }
}

TEST_F(DiskCacheTest, aFileThatAsksForEndlessWorkIsSetAside) {
    std::filesystem::create_directories(folder.path("cache"));
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(file().c_str(), &raw), SQLITE_OK);
    sqlite3_exec(raw,
                 "CREATE VIEW state AS WITH RECURSIVE n(bytes) AS (SELECT 1 UNION ALL SELECT bytes FROM n)"
                 " SELECT bytes FROM n; CREATE VIEW entry AS SELECT 1 AS cost; PRAGMA user_version = 1;",
                 nullptr, nullptr, nullptr);
    sqlite3_close(raw);
    EXPECT_TRUE(open()->store(sampleAddress(1), sampleBody(1)));
}

TEST_F(DiskCacheTest, anEntryWhoseBytesHaveChangedIsNotReturned) {
    fill(10);
    std::string bytes = folder.text(file());
    const auto sample = sampleBody(7);
    const std::string known(reinterpret_cast<const char*>(sample.data()), 64);
    const std::size_t at = bytes.find(known);
    ASSERT_NE(at, std::string::npos);
    bytes[at + 32] = static_cast<char>(bytes[at + 32] + 1);
    std::ofstream(file(), std::ios::binary) << bytes;
    EXPECT_FALSE(open()->find(sampleAddress(7)));
    EXPECT_EQ(wholeCount(*open(), 10), 9);
}

TEST_F(DiskCacheTest, withoutAUsableDiskItIsEmptyAndSilent) {
    folder.write("a file", "text");
    for (const std::string& place :
         {std::string(), folder.path("a file/below"), std::string("/proc/none/x"), folder.path("a file")}) {
        DiskCache cache(place, kPlenty);
        EXPECT_FALSE(cache.store(sampleAddress(1), sampleBody(1))) << place;
        EXPECT_FALSE(cache.find(sampleAddress(1))) << place;
    }
}

TEST_F(DiskCacheTest, onAFullDiskWhatIsThereIsStillFound) {
    fill(20);
    const auto cache = open();
    EXPECT_EQ(wholeCount(*cache, 20), 20);
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{static_cast<rlim_t>(8192), before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_FALSE(cache->store(sampleAddress(50), std::vector<std::byte>(1 << 20)));
    EXPECT_EQ(wholeCount(*cache, 50), 20);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(wholeCount(*open(), 50), 20);
}

TEST(URLCache, remembersInMemoryWithinItsLimitWhenThereIsNoDisk) {
    URLCache cache({"", 100 << 10, 0});
    const auto body = std::make_shared<const std::vector<std::byte>>(30 << 10);
    const auto url = [](int i) { return URL::fromString(sampleAddress(i)).value(); };
    for (int i = 0; i < 10; ++i) {
        cache.store(url(i), body);
        EXPECT_EQ(cache.cachedBody(url(0)), body) << "used all the time, gone after " << i;
    }
    EXPECT_TRUE(cache.cachedBody(url(9)));
    EXPECT_FALSE(cache.cachedBody(url(1)));
    // 256 bytes are counted for what an entry costs besides.
    URLCache full({"", sampleAddress(0).size() + body->size() + 256, 0});
    full.store(url(0), body);
    EXPECT_TRUE(full.cachedBody(url(0))) << "the limit itself is within it";
    URLCache off({"", 0, 0});
    off.store(url(0), body);
    EXPECT_FALSE(off.cachedBody(url(0)));
}

TEST(URLCache, liesWhereTheDesktopKeepsCaches) {
    const auto folderWith = [](const char* caches, const char* home) {
        ::setenv("XDG_CACHE_HOME", caches, 1);
        ::setenv("HOME", home, 1);
        return defaultCacheFolder();
    };
    EXPECT_EQ(folderWith("/c", "/h"), "/c/trelmix");
    EXPECT_EQ(folderWith("relative", "/h"), "/h/.cache/trelmix");
    EXPECT_EQ(folderWith("", "/h"), "/h/.cache/trelmix");
    EXPECT_EQ(folderWith("", ""), "");
}

} // namespace trelmix::url_cache_test
