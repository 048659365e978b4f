// A process that is killed while it fills the cache loses nothing that it had finished.
#include "Platform/Network/DiskCache.h"

#include "support/AnswerSamples.h"
#include "support/CaseCount.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace trelmix::cache_kill_test {

constexpr std::uint64_t kPlenty = std::uint64_t{1} << 30;

/// Stores entries without end and writes the number of each that is finished.
[[noreturn]] void fillForEver(const std::string& folder, int first, int report) {
    DiskCache cache(folder, kPlenty);
    for (int number = first;; ++number) {
        if (cache.store(sampleAddress(number), sampleBody(number)) &&
            ::write(report, &number, sizeof number) != sizeof number) {
            ::_exit(1);
        }
        cache.find(sampleAddress(number / 2));
    }
}

/// Another process at that.
class Filler {
public:
    Filler(const std::string& folder, int first) {
        int ends[2] = {};
        EXPECT_EQ(::pipe(ends), 0);
        _child = ::fork();
        if (_child == 0) {
            ::close(ends[0]);
            fillForEver(folder, first, ends[1]);
        }
        ::close(ends[1]);
        _report = ends[0];
    }
    ~Filler() { ::close(_report); }
    Filler(const Filler&) = delete;
    Filler& operator=(const Filler&) = delete;

    bool takeReport() {
        int number = 0;
        const bool isThere = ::read(_report, &number, sizeof number) == sizeof number;
        if (isThere) {
            finished.push_back(number);
        }
        return isThere;
    }
    void kill() {
        ::kill(_child, SIGKILL);
        ::waitpid(_child, nullptr, 0);
        while (takeReport()) {
        }
    }

    std::vector<int> finished;

private:
    pid_t _child = -1;
    int _report = -1;
};

TEST(CacheKill, everyFinishedEntryIsWholeAfterEachKill) {
    const apps::ScratchFolder folder;
    const std::string place = folder.path("cache");
    std::minstd_rand random(std::random_device{}());
    for (int round = 0; round < countFromEnvironment("TRELMIX_KILL_COUNT", 20); ++round) {
        // Two at once, one of which is killed at some moment; the other goes on a little.
        Filler killed(place, 0);
        Filler other(place, 1'000'000);
        const auto some = random() % 40;
        for (unsigned i = 0; i < some; ++i) {
            EXPECT_TRUE(killed.takeReport());
        }
        // Anywhere within the work of one entry.
        for (auto turns = random() % 200'000; turns > 0; --turns) {
            std::atomic_signal_fence(std::memory_order_seq_cst);
        }
        killed.kill();
        EXPECT_TRUE(other.takeReport());
        other.kill();
        DiskCache cache(place, kPlenty);
        for (const Filler* filler : {&killed, &other}) {
            for (const int number : filler->finished) {
                const auto found = cache.find(sampleAddress(number));
                ASSERT_TRUE(found && *found == sampleBody(number)) << "round " << round << " lost " << number;
            }
        }
        ASSERT_NE(::access((place + "/" + DiskCache::kFileName + ".damaged").c_str(), F_OK), 0);
    }
}

} // namespace trelmix::cache_kill_test
