#include "common/scene/SceneFile.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

TEST(SceneFile, everyFaultIsNamedWithItsPlace) {
    const struct {
        std::string text;
        /// What the reason must contain: the place and what is wrong there.
        const char* place;
        const char* fault;
    } cases[] = {
        {"{\n \"view\": }", "line 2, column 10", "unexpected"},
        {"{\"view\": \"\xff\"}", "line 1", "UTF-8"},
        {"{\"tiles\": " + std::string(1'000'000, '['), "", "nested deeper"},
        {R"({"view": {"width": 1e999}})", "line 1", "overflow"},
        {"[]", "", "must be an object"},
        {R"({"veiw": {}})", "", "unknown key \"veiw\""},
        {R"({"view": {"width": 5, "width": 6}})", "", "\"width\" comes twice"},
        {R"({"view": {"width": 0}})", "view.width", "number from 1 to"},
        {R"({"view": {"width": 9000, "scale": 2}})", "view:", "more than 16384 pixels"},
        {R"({"view": {"width": "800"}})", "view.width", "must be a number"},
        {R"({"view": {"background": "blue"}})", "view.background", "colour"},
        {R"({"camera": {"zoom": 17}})", "camera:", "needs the key \"target\""},
        {R"({"camera": {"target": {"lat": 90.5, "lon": 0}, "zoom": 17}})", "camera.target.lat",
         "from -90 to 90"},
        {R"({"camera": {"target": {"lat": 0, "lon": 0, "alt": 0}, "zoom": 17}})", "camera.target", "\"alt\""},
        {R"({"limits": {"minZoom": 19, "maxZoom": 18}})", "limits:", "minZoom"},
        {R"({"limits": {"southWest": {"lat": 1, "lon": 1}}})", "limits:", "\"northEast\""},
        {R"({"tiles": {}})", "tiles:", "must be an array"},
        {R"({"tiles": [{"mbtiles": "a", "directory": "{z}/{x}/{y}"}]})", "tiles[0]:", "exactly one"},
        {R"({"tiles": [{"mbtiles": "a"}, {"directory": "t/{z}/{x}.png"}]})", "tiles[1].directory", "{y}"},
        {R"({"tiles": [{"url": "https://{s}.a/{z}/{x}/{y}.png"}]})", "tiles[0].url", "\"{s}\""},
        {R"({"tiles": [{"url": "https://a:99999/{z}/{x}/{y}.png"}]})", "tiles[0].url", "address like"},
        {R"({"tiles": [{"mbtiles": "a\u0000b"}]})", "tiles[0].mbtiles", "name a file"},
        {R"({"levelPlans": [{"image": "p.png", "southWest": {"lat": 2, "lon": 0},
             "northEast": {"lat": 1, "lon": 1}}]})",
         "levelPlans[0].northEast", "north and east"},
        {R"({"markers": [{"coordinate": {"lat": 0, "lon": 0}, "groundAnchor": [0.5]}]})",
         "markers[0].groundAnchor", "two numbers"},
        {R"({"markers": [{"coordinate": {"lat": 0, "lon": 0}, "flat": 1}]})", "markers[0].flat",
         "true or false"},
        {R"({"markers": [{"coordinate": {"lat": 0, "lon": 0}, "zIndex": 1.5}]})", "markers[0].zIndex",
         "whole number"},
        {R"({"circles": [{"coordinate": {"lat": 0, "lon": 0}, "radius": 1, "opacity": 2}]})",
         "circles[0].opacity", "from 0 to 1"},
        {R"({"polygons": [{"corners": [{"lat": 0, "lon": 0}]}]})", "polygons[0].corners", "at least 3"},
        {R"({"polylines": [{"vertices": [{"lat": 0, "lon": 0}, {"lat": 0, "lon": 181}]}]})",
         "polylines[0].vertices[1].lon", "-180 to 180"},
        {R"({"sideView": {"image": "s.png", "levels": "l.json", "markers": [{"lat": 0, "lon": 0, "level": 1}]}})",
         "sideView.markers[0]:", "needs the key \"identifier\""},
        {R"({"geojson": [{"file": "a", "id": "one"}, {"file": "b", "id": "one"}]})", "",
         "\"one\" is given to two"},
    };
    for (const auto& c : cases) {
        const auto scene = parseSceneFile(c.text, "");
        ASSERT_FALSE(scene) << c.fault;
        EXPECT_TRUE(scene.reason().starts_with(c.place)) << c.fault << " -> " << scene.reason();
        EXPECT_NE(scene.reason().find(c.fault), std::string::npos) << c.fault << " -> " << scene.reason();
        EXPECT_EQ(scene.reason().find('\n'), std::string::npos) << scene.reason();
    }
}

TEST(SceneFile, pathsAreJoinedWithTheFolderUnlessTheyAreAbsolute) {
    const auto scene = parseSceneFile(R"({
        "tiles": [{"mbtiles": "a.mbtiles"}, {"directory": "/t/{z}/{x}/{y}.png", "attribution": ""}],
        "markers": [{"coordinate": {"lat": 1, "lon": 2}, "icon": "icons/i@2x.png", "zIndex": -9223372036854775808}]})",
                                      "/scenes");
    ASSERT_TRUE(scene) << scene.reason();
    EXPECT_EQ(scene->tiles[0].mbtiles, "/scenes/a.mbtiles");
    EXPECT_FALSE(scene->tiles[0].attribution.has_value());
    EXPECT_EQ(scene->tiles[1].directory, "/t/{z}/{x}/{y}.png");
    EXPECT_EQ(scene->tiles[1].attribution, "");
    EXPECT_EQ(scene->markers[0].icon, "/scenes/icons/i@2x.png");
    EXPECT_EQ(scene->markers[0].overlay.zIndex, INT64_MIN);
}
