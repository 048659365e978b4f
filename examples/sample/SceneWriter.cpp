#include "SceneWriter.h"

#include "GroundFrame.h"

#include <cstdio>
#include <fstream>

namespace trelmix::sample {

namespace {

std::string number(double value, int digits = 9) {
    char text[48];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string coordinate(Pt ground) {
    const LatLon place = latLonOf(ground);
    return R"({"lat": )" + number(place.lat) + R"(, "lon": )" + number(place.lon) + "}";
}

std::string camera(Pt target, double zoom, double rotation, double tilt) {
    return R"(  "camera": {"target": )" + coordinate(target) + R"(, "zoom": )" + number(zoom, 2) +
           R"(, "rotation": )" + number(rotation, 1) + R"(, "viewingAngle": )" + number(tilt, 1) + "}";
}

std::string head(int width, int height) {
    return R"(  "view": {"width": )" + std::to_string(width) + R"(, "height": )" + std::to_string(height) +
           R"(, "scale": 1, "background": "#f6f3ec"})";
}

const char* const kTiles = R"(  "tiles": [{"mbtiles": "harbour.mbtiles"}])";

std::string write(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    return file ? "" : path + ": cannot be written";
}

} // namespace

std::string writeScenes(const std::string& folder, const TownModel&) {
    const std::string plain =
        "{\n" + head(1280, 800) + ",\n" + camera({0, 0}, 17, 0, 0) + ",\n" + kTiles + "\n}\n";
    return write(folder + "/harbour.json", plain);
}

} // namespace trelmix::sample
