#pragma once

#include "common/JsonCursor.h"
#include "common/scene/SceneFile.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace trelmix::apps {

// What the readers of the sections share; all throw `JsonError`.

/// The largest radius of a circle.
inline constexpr double kMaximumMetres = 2e7;
/// The largest width of a line, in points.
inline constexpr double kMaximumLineWidth = 1000;

CLLocationCoordinate2D readCoordinate(const JsonCursor& at);
SceneBox readBox(const JsonCursor& southWest, const JsonCursor& northEast);
UIColor readColor(const JsonCursor& at);
std::optional<UIColor> optionalColor(const JsonCursor& at);
/// Empty when there is no such key.
std::optional<double> optionalNumber(const JsonCursor& at, std::string_view key, double least, double most);
/// The key "width" of lines, in points.
std::optional<double> optionalWidth(const JsonCursor& at);
/// Of a key "behaviour": "natural", or "classic" and nothing else.
bool isNatural(const JsonCursor& at);
/// Joined with the folder of the scene file.
std::string readPath(const JsonCursor& at, const std::string& folder);

/// The keys that every overlay takes; `expectObject` gets the same list.
SceneOverlay readOverlay(const JsonCursor& at);
inline constexpr std::array<std::string_view, 5> kOverlayKeys = {"zIndex", "visible", "opacity", "tappable",
                                                                 "id"};

/// One item after the other of an array that may be missing.
template <class Read>
void forEachItem(const JsonCursor& root, std::string_view key, Read read) {
    if (const auto list = root.member(key)) {
        const std::size_t count = list->size();
        for (std::size_t i = 0; i < count; ++i) {
            const JsonCursor item = list->item(i);
            read(item);
        }
    }
}

} // namespace trelmix::apps
