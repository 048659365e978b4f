// Whatever a server answers, a session hands on a body within its limit or a reason; whatever stands in the
// cache's file, what was stored last is found again or was never said to be stored; addresses are taken apart
// without a fault.
#include "Platform/Network/DiskCache.h"
#include "Platform/Network/URLSession.h"

#include "support/TileServer.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <unistd.h>

namespace {

using namespace trelmix;

constexpr std::size_t kLargestBody = 4096;

void expect(bool isTrue) {
    if (!isTrue) {
        std::abort();
    }
}

void takeApart(const std::string& text) {
    if (const auto url = URL::fromString(text)) {
        const std::string path = url->filePath();
        expect(url->scheme() == "file" ? !path.empty() : !url->authority().empty());
        expect(URL::fromString(url->string()) == url);
    }
}

void answerWith(const std::string& bytes) {
    static std::string reply;
    static TileServer server([](const TileRequest&) { return TileReply{reply, TileReply::End::close}; });
    // One try, and no time to be led to another host.
    static URLSession session({"Fuzz", "", kLargestBody, {60, 60}});
    static const URL url = URL::fromString(server.address() + "/a").value();
    // A redirect would leave this machine.
    reply =
        bytes.find("ocation") == std::string::npos && bytes.find("OCATION") == std::string::npos ? bytes : "";
    std::promise<void> done;
    session.load({url, 0.5}, [&done](const URLSession::Answer& answer) {
        expect(answer ? answer->size() <= kLargestBody : !answer.reason().empty());
        done.set_value();
    });
    done.get_future().wait();
}

void openCacheFile(const std::string& bytes) {
    static const std::string folder =
        (std::filesystem::temp_directory_path() / ("trelmix-fuzz-" + std::to_string(::getpid()))).string();
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/" + DiskCache::kFileName, std::ios::binary) << bytes;
    const std::vector<std::byte> body(100, std::byte{7});
    DiskCache cache(folder, 1 << 20);
    cache.find("http://a/1");
    if (cache.store("http://a/1", body)) {
        expect(cache.find("http://a/1") == body);
    }
    cache.find("http://a/2");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
    case 0:
        takeApart(rest);
        break;
    case 1:
        answerWith(rest);
        break;
    default:
        openCacheFile(rest);
    }
    return 0;
}
