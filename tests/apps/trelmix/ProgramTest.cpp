// What the program does with files.
#include "apps/trelmix/ProgramFixture.h"
#include "support/ArchiveWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <unistd.h>

namespace trelmix::apps::program_test {

constexpr const char* kTown = R"({"view": {"width": 300, "height": 200, "background": "#00ff00"},
    "camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17}, "tiles": [{"mbtiles": "town.mbtiles"}]})";
constexpr std::array kGround{200, 100, 50};

class LocalProgramTest : public ProgramTest {
protected:
    /// Every tile of zoom 16 around (0, 0), but for the one to the south-east of it.
    void writeArchive(const std::vector<std::byte>& tile) const {
        ArchiveWriter writer(folder.path("town.mbtiles"));
        writer.metadata("attribution", "somebody");
        constexpr std::int64_t kMiddle = 1 << 15;
        for (std::int64_t x = kMiddle - 4; x < kMiddle + 4; ++x) {
            for (std::int64_t y = kMiddle - 4; y < kMiddle + 4; ++y) {
                if (x != kMiddle || y != kMiddle) {
                    writer.tile(16, x, y, tile);
                }
            }
        }
        folder.write("town.json", kTown);
    }
};

TEST_F(LocalProgramTest, badInputGivesOneLineAndExitCodeTwo) {
    folder.write("ok.json", kTown);
    folder.write("key.json", R"({"cammera": {}})");
    folder.write("empty.json", "{}");
    folder.write("text.mbtiles", std::string(2000, 'x'));
    folder.write("icon.json",
                 R"({"markers": [{"coordinate": {"lat": 0, "lon": 0}, "icon": "text.mbtiles"}]})");
    folder.write("bad.geojson", R"({"type": "Point", "coordinates": [0, 100]})");
    folder.write("geojson.json", R"({"geojson": [{"file": "bad.geojson"}]})");
    folder.write("side.png", plainImage(8, 8, kGround)->pngData());
    folder.write("lost.json", R"({"camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17},
        "sideView": {"image": "side.png", "levels": "none.json"}})");
    folder.write("wide.json", R"({"camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17}})");
    std::filesystem::create_symlink("ok.json", folder.path("link.png"));
    const std::pair<const char*, const char*> cases[] = {
        {"", "subcommand"},
        {"rendr a.json", "\"rendr\" is no command; did you mean render?"},
        {"render ok.json", "--output"},
        {"sideview ok.json -o a.png", "ok.json: sideView: is missing"},
        {"sideview lost.json -o a.png", "lost.json: sideView.levels: none.json: cannot open"},
        {"render ok.json -o a.png --frobnicate", "--frobnicate (see trelmix render --help)"},
        {"render ok.json -o a.tiff", "a.tiff: must end in .png, .jpg, .jpeg or .webp"},
        {"render ok.json -o link.png", "link.png: is the scene itself"},
        {"sideview ok.json -o ./ok.json", "./ok.json: is the scene itself"},
        {"render wide.json -o wide.webp --size 16384x10 --no-attribution", "wide.webp: cannot hold 16384"},
        {"render text.mbtiles -o a.png", "trelmix: text.mbtiles: is no tile archive"},
        {"render bad.geojson -o a.png", "trelmix: bad.geojson: coordinates[1]: must"},
        {"render ok.json -o a.png --timeout soon", "--timeout"},
        {"render missing.json -o a.png", "missing.json: cannot be opened"},
        {"render key.json -o a.png",
         "key.json: has the unknown key \"cammera\"; the keys here are view, camera, limits"},
        {"render empty.json -o a.png", "empty.json: needs the key \"camera\""},
        {"render ok.json -o a.png", "ok.json: tiles[0].mbtiles: town.mbtiles: does not exist"},
        {"render icon.json -o a.png", "icon.json: markers[0].icon: text.mbtiles: "},
        {"render geojson.json -o a.png", "geojson.json: geojson[0].file: bad.geojson: coordinates[1]: must"},
        {"render ok.json -o a.png --size 8193x8192", "more than 67108864 pixels in all"},
        {"render ok.json -o a.png --size 800x600abc", "--size 800x600abc: must be"},
        {"render ok.json -o a.png --size ' 800x600'", "must be a width"},
        {"render ok.json -o a.png --camera 1,2,17,0,0,0", "must be LAT"},
        {"render ok.json -o a.png --camera 1,2,17,0,-1", "viewing angle must be"},
        {"render ok.json -o a.png --camera 1,2,nan,0,0", "--camera"},
        {"locate key.json", "key.json: has the unknown key"},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_EQ(outcome.output, "") << arguments;
        EXPECT_NE(outcome.errors.find(message), std::string::npos) << arguments << " -> " << outcome.errors;
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    }
    EXPECT_FALSE(picture("a.png"));
}

TEST_F(LocalProgramTest, rendersTilesInTheirPlacesWithGapsAndAttribution) {
    writeArchive(plainImage(64, 64, kGround)->pngData());
    ASSERT_EQ(run("render town.json -o a.png --no-attribution").exitCode, 0);
    const auto plain = picture("a.png");
    ASSERT_TRUE(plain);
    ASSERT_EQ(plain->pixelWidth(), 300);
    ASSERT_EQ(plain->pixelHeight(), 200);
    EXPECT_EQ(colorAt(*plain, 100, 60), kGround);
    EXPECT_EQ(colorAt(*plain, 100, 140), kGround);
    EXPECT_EQ(colorAt(*plain, 200, 140), (std::array{0, 255, 0})) << "the tile that is not there";
    const Outcome deep =
        run("render town.json -o b.png --no-attribution --scale 2 --camera 0.001,-0.001,22,30,40");
    ASSERT_EQ(deep.exitCode, 0) << deep.errors;
    const auto stretched = picture("b.png");
    ASSERT_EQ(stretched->pixelWidth(), 600);
    EXPECT_EQ(colorAt(*stretched, 300, 200), kGround) << "cut out of the tile far above";
    ASSERT_EQ(run("render town.json -o c.png").exitCode, 0);
    EXPECT_NE(colorAt(*picture("c.png"), 290, 190), colorAt(*plain, 290, 190));
    EXPECT_EQ(run("render town.json -o missing/folder.png").exitCode, 2);
}

TEST_F(LocalProgramTest, aDamagedTileIsAGapWithAWarning) {
    writeArchive(std::vector<std::byte>(100, std::byte{1}));
    const Outcome outcome = run("render town.json -o a.png");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("town.mbtiles: tile 16/327"), std::string::npos) << outcome.errors;
    EXPECT_EQ(colorAt(*picture("a.png"), 100, 60), (std::array{0, 255, 0}));
}

TEST_F(LocalProgramTest, locateAnswersLineByLineAndGoesOnAfterABadOne) {
    folder.write("scene.json", R"({"view": {"width": 400, "height": 300},
        "camera": {"target": {"lat": 43.7357, "lon": 7.4265}, "zoom": 17, "rotation": 90, "viewingAngle": 50}})");
    const Outcome outcome = run("locate scene.json", R"({"x":200,"y":150}

{"x":200}
{"x":200,"y":-200}
{"lat":43.7357,"lon":7.41}
{"lat":99,"lon":0}
nonsense
{"lat":43.7357,"lon":7.4265})");
    EXPECT_EQ(outcome.exitCode, 2);
    const char* const format = "{\"lat\":%lf,\"lon\":%lf}\n{\"error\":\"above the horizon\"}\n"
                               "{\"error\":\"behind the camera\"}\n{\"x\":%lf,\"y\":%lf}";
    double lat = 0, lon = 0;
    CGPoint point;
    ASSERT_EQ(std::sscanf(outcome.output.c_str(), format, &lat, &lon, &point.x, &point.y), 4)
        << outcome.output;
    EXPECT_NEAR(lat, 43.7357, 1e-7);
    EXPECT_NEAR(lon, 7.4265, 1e-7);
    EXPECT_NEAR(point.x, 200, 1e-3);
    EXPECT_NEAR(point.y, 150, 1e-3);
    for (const char* line : {"line 3: needs the key \"y\"", "line 6: lat: must be", "line 7: "}) {
        EXPECT_NE(outcome.errors.find(line), std::string::npos) << outcome.errors;
    }
    const Outcome corners = run("locate scene.json --corners --camera -33.8,151.2,18,0,0 --size 200x200");
    EXPECT_TRUE(corners.output.starts_with("{\"topLeft\":{\"lat\":-33.7")) << corners.output;
}

TEST_F(LocalProgramTest, theNameSaysWhereAPictureGoesAndInWhichFormat) {
    folder.write("scene.json", R"({"view": {"width": 64, "height": 48, "background": "#0000ff"},
        "camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17}})");
    const std::string longName = std::string(246, 'n') + ".png";
    const std::pair<std::string, std::string> magics[] = {{"a.PNG", "\x89PNG"},
                                                          {"a.jpg", "\xff\xd8\xff"},
                                                          {"b.jpeg", "\xff\xd8\xff"},
                                                          {"a.webp", "RIFF"},
                                                          {longName, "\x89PNG"}};
    for (const auto& [name, magic] : magics) {
        const Outcome outcome = run("render scene.json -o " + name);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_TRUE(folder.text(name).starts_with(magic)) << name;
        ASSERT_TRUE(picture(name)) << name;
        EXPECT_GT(colorAt(*picture(name), 32, 24)[2], 245) << name;
    }
    const Outcome piped = run("render scene.json -o -");
    EXPECT_EQ(piped.exitCode, 0) << piped.errors;
    EXPECT_EQ(piped.output, folder.text("a.PNG"));
}

TEST_F(LocalProgramTest, anOutputThatTakesNothingIsAFailure) {
    folder.write("scene.json", R"({"camera": {"target": {"lat": 0, "lon": 0}, "zoom": 17}})");
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    const std::string intoBrokenPipe = ">&" + std::to_string(ends[1]);
    for (const std::string arguments : {"locate scene.json ", "locate scene.json --corners ", "--help ",
                                        "--version ", "locate --help ", "render scene.json -o - "}) {
        for (const std::string& output : {std::string(">/dev/full"), std::string(">&-"), intoBrokenPipe}) {
            const Outcome outcome = run(arguments + output, "{\"x\":1,\"y\":1}\n");
            EXPECT_EQ(outcome.exitCode, 2) << arguments << output;
            EXPECT_TRUE(outcome.errors.starts_with("trelmix: standard output: cannot be written: "))
                << arguments << output << outcome.errors;
        }
    }
    ::close(ends[1]);
}

TEST_F(LocalProgramTest, whatASceneOrADataFileHoldsIsFramedWithoutACamera) {
    folder.write("scene.json", R"({"view": {"width": 400, "height": 300}, "circles": [
        {"coordinate": {"lat": 10, "lon": 20}, "radius": 100, "color": "#ff0000"}]})");
    ASSERT_EQ(run("render scene.json -o circle.png").exitCode, 0);
    for (const auto& [y, green] : {std::pair{150, 0}, {20, 0}, {5, 255}}) {
        EXPECT_EQ(colorAt(*picture("circle.png"), 200, y), (std::array{255, green, green}));
    }
    writeArchive(plainImage(64, 64, kGround)->pngData());
    folder.write("spread.geojson", R"({"type": "MultiPoint", "attribution": "others",
        "coordinates": [[0, 0], [40, 0], [0, 50], [21, 26]]})");
    EXPECT_EQ(run("render town.mbtiles -o a.png").exitCode, 0);
    EXPECT_EQ(colorAt(*picture("a.png"), 300, 200), kGround);
    ASSERT_EQ(run("render spread.geojson -o b.png --size 300x200").exitCode, 0);
    const auto spread = picture("b.png");
    // Too large for one view: the point nearest to the middle is shown, by the rim of its pin.
    EXPECT_EQ(colorAt(*spread, 150 - 8, 100 - 20), (std::array{126, 126, 126}));
    EXPECT_NE(colorAt(*spread, 290, 190), (std::array{255, 255, 255})) << "the file's attribution";
}

TEST_F(LocalProgramTest, viewSaysWhatIsMissingWhenThereIsNoWindowProgram) {
    // A copy of the program stands alone, without the other one beside it.
    std::filesystem::copy_file(TRELMIX_PROGRAM, folder.path("alone"));
    const Outcome outcome = run("view a.json", "", "PATH=/nowhere ./alone");
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_NE(outcome.errors.find("trelmix-view: is neither beside"), std::string::npos) << outcome.errors;
}

TEST_F(LocalProgramTest, aSideViewIsWrittenAsHighAsItsPictureOrAsAsked) {
    folder.write("side.png", plainImage(400, 100, std::array{200, 200, 200})->pngData());
    folder.write("levels.json", R"({"bearing": 90, "southLatitude": -0.001, "northLatitude": 0.001,
        "westLongitude": -0.002, "eastLongitude": 0.002,
        "levels": [{"levelNumber": 3, "levelbounds": [{"relativeheight": 0, "ceilingheight": 5}]}]})");
    folder.write("ship.json", R"({"view": {"width": 200, "height": 150},
        "camera": {"target": {"lat": 0, "lon": 0}, "zoom": 20},
        "sideView": {"image": "side.png", "levels": "levels.json", "path": {"color": "#0000ff", "points": [
            {"lat": 0, "lon": -0.0016, "level": 3}, {"lat": 0, "lon": -0.0012, "level": 3}]}}})");

    const Outcome written = run("sideview ship.json -o a.png");
    ASSERT_EQ(written.exitCode, 0) << written.errors;
    const auto fitted = picture("a.png");
    ASSERT_TRUE(fitted);
    EXPECT_EQ(fitted->size(), (CGSize{200, 50}));
    EXPECT_EQ(colorAt(*fitted, 30, 25), (std::array{0, 0, 255}));
    EXPECT_EQ(colorAt(*fitted, 150, 40), (std::array{200, 200, 200}));
    for (const int x : {80, 120}) {
        EXPECT_GT(colorAt(*fitted, x, 40)[0], colorAt(*fitted, x, 40)[1] + 50) << "the camera's footprint";
    }

    EXPECT_EQ(run("sideview ship.json -o b.png --size 100x80 --scale 2").exitCode, 0);
    EXPECT_EQ(picture("b.png")->size(), (CGSize{200, 160}));
}

} // namespace trelmix::apps::program_test
