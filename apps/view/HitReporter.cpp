#include "view/HitReporter.h"

#include "common/scene/SceneOverlays.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>

#include <any>
#include <cmath>

namespace trelmix::apps {

namespace {

std::string kindOf(const TrelmixMapOverlay& overlay) {
    if (dynamic_cast<const TrelmixMapMarker*>(&overlay) != nullptr) {
        return "marker";
    }
    if (dynamic_cast<const TrelmixMapCircle*>(&overlay) != nullptr) {
        return "circle";
    }
    if (dynamic_cast<const TrelmixMapPolygon*>(&overlay) != nullptr) {
        return "polygon";
    }
    if (dynamic_cast<const TrelmixMapPolyline*>(&overlay) != nullptr) {
        return "polyline";
    }
    return dynamic_cast<const TrelmixLevelPlanNode*>(&overlay) != nullptr ? "level plan" : "overlay";
}

/// The kind, then the feature's name or else the scene's, then what else the feature tells.
std::string nameOf(const TrelmixMapOverlay& overlay) {
    const std::any info = overlay.userInfo();
    const auto* tag = std::any_cast<SceneTag>(&info);
    if (tag == nullptr) {
        return kindOf(overlay);
    }
    const JsonValue* name = tag->properties ? tag->properties->find("name") : nullptr;
    const std::string& shown = name != nullptr && name->text() != nullptr ? *name->text() : tag->id;
    return kindOf(overlay) + (shown.empty() ? "" : " " + quotedJson(shown)) +
           (tag->properties ? " " + jsonText(*tag->properties) : "");
}

// A hundred-millionth of a degree is a millimetre.
std::string placeText(CLLocationCoordinate2D place) {
    const auto rounded = [](double degrees) { return jsonNumber(std::round(degrees * 1e8) / 1e8); };
    return rounded(place.latitude) + "," + rounded(place.longitude);
}

} // namespace

void HitReporter::mapViewDidTapAt(CLLocationCoordinate2D coordinate) {
    _report("tap map " + placeText(coordinate));
}

void HitReporter::mapViewDidLongPressAt(CLLocationCoordinate2D coordinate) {
    _report("long press map " + placeText(coordinate));
}

bool HitReporter::mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) {
    _report("tap " + nameOf(*marker) + " " + placeText(marker->presentedCoordinate()));
    return true;
}

void HitReporter::mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>& overlay) {
    _report("tap " + nameOf(*overlay));
}

void HitReporter::mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) {
    _report("drag " + nameOf(*marker) + " from " + placeText(marker->presentedCoordinate()));
}

void HitReporter::mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) {
    _report("drag " + nameOf(*marker) + " to " + placeText(marker->presentedCoordinate()));
}

} // namespace trelmix::apps
