#include "common/scene/SceneFileReading.h"

#include <filesystem>

namespace trelmix::apps {

CLLocationCoordinate2D readCoordinate(const JsonCursor& at) {
    at.expectObject({"lat", "lon"});
    return {at.required("lat").number(-90, 90), at.required("lon").number(-180, 180)};
}

SceneBox readBox(const JsonCursor& southWest, const JsonCursor& northEast) {
    const SceneBox box{readCoordinate(southWest), readCoordinate(northEast)};
    if (!(box.southWest.latitude < box.northEast.latitude) ||
        !(box.southWest.longitude < box.northEast.longitude)) {
        northEast.fail("must lie north and east of southWest");
    }
    return box;
}

UIColor readColor(const JsonCursor& at) {
    const auto color = colorFromHex(at.text());
    if (!color) {
        at.fail("must be a colour like \"#rrggbb\" or \"#rrggbbaa\"");
    }
    return *color;
}

std::string readPath(const JsonCursor& at, const std::string& folder) {
    const std::string& text = at.text();
    if (text.empty() || text.find('\0') != std::string::npos) {
        at.fail("must name a file");
    }
    return (std::filesystem::path(folder) / text).string();
}

std::optional<UIColor> optionalColor(const JsonCursor& at) {
    const auto color = at.member("color");
    return color ? std::optional(readColor(*color)) : std::nullopt;
}

std::optional<double> optionalNumber(const JsonCursor& at, std::string_view key, double least, double most) {
    const auto number = at.member(key);
    return number ? std::optional(number->number(least, most)) : std::nullopt;
}

std::optional<double> optionalWidth(const JsonCursor& at) {
    return optionalNumber(at, "width", 0, kMaximumLineWidth);
}

bool isNatural(const JsonCursor& at) {
    if (at.text() != "classic" && at.text() != "natural") {
        at.fail("must be \"classic\" or \"natural\"");
    }
    return at.text() == "natural";
}

SceneOverlay readOverlay(const JsonCursor& at) {
    SceneOverlay overlay;
    if (const auto zIndex = at.member("zIndex")) {
        overlay.zIndex = zIndex->integer();
    }
    if (const auto visible = at.member("visible")) {
        overlay.visible = visible->boolean();
    }
    overlay.opacity = optionalNumber(at, "opacity", 0, 1);
    if (const auto tappable = at.member("tappable")) {
        overlay.tappable = tappable->boolean();
    }
    if (const auto id = at.member("id")) {
        overlay.id = id->text();
    }
    return overlay;
}

} // namespace trelmix::apps
