// The program draws a scene whose tiles come from a server.
#include "support/AnswerSamples.h"
#include "support/ScratchFolder.h"
#include "support/TileServer.h"

#include <Trelmix/Platform/UIImage.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <optional>

namespace trelmix {
namespace {

class UrlRender : public ::testing::Test {
protected:
    int render(const std::string& options) const {
        folder.write("scene.json",
                     R"({"view": {"width": 300, "height": 200, "background": "#00ff00"},
                         "camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17},
                         "tiles": [{"url": ")" +
                         server.address() + R"(/{z}/{x}/{y}@2x.png?key=secret"}]})");
        const std::string command = "cd '" + folder.path("") +
                                    "' && '" TRELMIX_PROGRAM "' render scene.json -o a.png " + options +
                                    " 2>err";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Red in the middle of the picture; 0 when there is none.
    int red() const {
        const std::string bytes = bytesOf(folder.path("a.png"));
        const auto image = UIImage::withData(std::as_bytes(std::span(bytes)));
        return image ? image->pixels()[(50U * 300 + 50) * 4] : 0;
    }
    static TileReply tile() {
        static const auto png = UIImage::withPixels(8, 8, std::vector<std::uint8_t>(256, 255))->pngData();
        return TileReply::ok(std::string(reinterpret_cast<const char*>(png.data()), png.size()));
    }

    apps::ScratchFolder folder;
    std::atomic<bool> isHeld = false;
    std::function<std::optional<TileReply>(const TileRequest&)> refusal;
    TileServer server{[this](const TileRequest& request) {
        const bool knowsWhoAsks = request.text.find("User-Agent: Somebody/1\r\n") != std::string::npos;
        const auto refused = refusal ? refusal(request) : std::nullopt;
        return refused         ? *refused
               : !knowsWhoAsks ? TileReply::of("403 Forbidden", "who are you?")
               : isHeld        ? tile().ending(TileReply::End::hold)
                               : tile();
    }};
};

TEST_F(UrlRender, waitsForTheTilesAndTakesThemFromTheCacheTheNextTime) {
    EXPECT_EQ(render("--cache kept --user-agent Somebody/1"), 0);
    EXPECT_EQ(red(), 255);
    const std::size_t asked = server.paths().size();
    server.stop();
    EXPECT_EQ(render("--cache kept --user-agent Somebody/1"), 0);
    EXPECT_EQ(red(), 255);
    EXPECT_EQ(server.paths().size(), asked);
}

TEST_F(UrlRender, tellsOfALayerThatFailsOrGivesNothingButNotOfSingleGaps) {
    const struct {
        const char* option;
        const char* status;
        bool isEverywhere;
        int code;
    } cases[] = {
        {"", "401 Who are you", true, 4},
        {"", "404 Not Found", true, 4},
        {" --allow-missing-tiles", "404 Not Found", true, 0},
        {"", "403 Forbidden", false, 4},
        {"", "404 Not Found", false, 0},
    };
    for (const auto& [option, status, isEverywhere, code] : cases) {
        refusal = [&, isEverywhere = isEverywhere, status = status](const TileRequest& request) {
            return isEverywhere || request.path[request.path.find('@') - 1] % 2 == 0
                       ? std::optional(TileReply::of(status, ""))
                       : std::nullopt;
        };
        EXPECT_EQ(render(std::string("--cache off --user-agent Somebody/1") + option), code) << status;
        const std::string said = bytesOf(folder.path("err"));
        const std::string line = " tiles of " + server.address() + "/{z}/{x}/{y}@2x.png failed: status " +
                                 std::string(status).substr(0, 3) + "\n";
        const bool isToldOf = isEverywhere || code != 0;
        EXPECT_EQ(said.find(line) != std::string::npos, isToldOf) << status << ": " << said;
        EXPECT_EQ(said.empty(), !isToldOf) << said;
    }
}

TEST_F(UrlRender, tilesThatDoNotComeInTimeAreReported) {
    isHeld = true;
    EXPECT_EQ(render("--cache off --user-agent Somebody/1 --timeout 0.5"), 4);
    EXPECT_EQ(red(), 0);
    EXPECT_EQ(render("--ca-file missing.pem"), 2);
    EXPECT_NE(bytesOf(folder.path("err")).find("--ca-file missing.pem: "), std::string::npos);
}

} // namespace
} // namespace trelmix
