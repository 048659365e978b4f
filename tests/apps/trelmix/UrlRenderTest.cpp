// The program draws a scene whose tiles come from a server.
#include "apps/trelmix/ProgramFixture.h"
#include "support/TileServer.h"

#include <atomic>
#include <functional>
#include <optional>

namespace trelmix::apps::url_render_test {

class UrlRender : public ProgramTest {
protected:
    Outcome render(const std::string& options) const {
        folder.write("scene.json",
                     R"({"view": {"width": 300, "height": 200, "background": "#00ff00"},
                         "camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17},
                         "tiles": [{"url": ")" +
                         server.address() + R"(/{z}/{x}/{y}@2x.png?key=secret"}]})");
        return run("render scene.json -o a.png " + options);
    }
    /// Red in the middle of the picture; -1 when there is none.
    int red() const {
        const auto image = picture("a.png");
        return image ? colorAt(*image, 50, 50)[0] : -1;
    }
    static TileReply tile() {
        static const auto png = plainImage(8, 8)->pngData();
        return TileReply::ok(std::string(reinterpret_cast<const char*>(png.data()), png.size()));
    }

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
    EXPECT_EQ(render("--cache kept --user-agent Somebody/1").exitCode, 0);
    EXPECT_EQ(red(), 255);
    const std::size_t asked = server.paths().size();
    server.stop();
    EXPECT_EQ(render("--cache kept --user-agent Somebody/1").exitCode, 0);
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
        const auto [exitCode, output, said] =
            render(std::string("--cache off --user-agent Somebody/1") + option);
        EXPECT_EQ(exitCode, code) << status;
        const std::string line = " tiles of " + server.address() + "/{z}/{x}/{y}@2x.png failed: status " +
                                 std::string(status).substr(0, 3) + "\n";
        const bool isToldOf = isEverywhere || code != 0;
        EXPECT_EQ(said.find(line) != std::string::npos, isToldOf) << status << ": " << said;
        EXPECT_EQ(said.empty(), !isToldOf) << said;
    }
}

TEST_F(UrlRender, tilesThatDoNotComeInTimeAreReportedAndThePictureIsWrittenAllTheSame) {
    isHeld = true;
    for (const auto& [option, code] : {std::pair{"", 4}, {" --allow-missing-tiles", 0}}) {
        std::filesystem::remove(folder.path("a.png"));
        const Outcome late =
            render(std::string("--cache off --user-agent Somebody/1 --timeout 0.5") + option);
        EXPECT_EQ(late.exitCode, code) << late.errors;
        EXPECT_NE(late.errors.find("tiles were not answered in time"), std::string::npos) << late.errors;
        EXPECT_EQ(red(), 0);
    }
    const Outcome lost = render("--ca-file missing.pem");
    EXPECT_EQ(lost.exitCode, 2);
    EXPECT_NE(lost.errors.find("--ca-file missing.pem: "), std::string::npos);
}

} // namespace trelmix::apps::url_render_test
