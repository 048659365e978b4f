#pragma once

#include "common/Json.h"

#include <Trelmix/Platform/UIColor.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace trelmix::apps {

/// A property of a feature that is neither a list nor an object.
using GeoJsonScalar = std::variant<std::nullptr_t, bool, double, std::string>;
/// Empty for lists and objects.
std::optional<GeoJsonScalar> scalarOf(const JsonValue& value);

/// How a feature is drawn; absent values are left to what lies below in the order of styles. Colours are
/// opaque, their opacities apart.
struct GeoJsonStyle {
    std::optional<UIColor> stroke;
    std::optional<double> strokeOpacity;
    /// Points.
    std::optional<double> strokeWidth;
    std::optional<UIColor> fill;
    std::optional<double> fillOpacity;
    std::optional<UIColor> markerColor;
    std::optional<double> markerOpacity;
    /// Metres; points then are circles.
    std::optional<double> radius;
    /// The path of a picture for points.
    std::optional<std::string> icon;
    std::optional<bool> visible;
    std::optional<std::int64_t> zIndex;

    UIColor strokeColor() const { return shown(stroke, strokeOpacity); }
    UIColor fillColor() const { return shown(fill, fillOpacity); }
    UIColor pinColor() const { return shown(markerColor, markerOpacity); }

private:
    static UIColor shown(const std::optional<UIColor>& color, std::optional<double> opacity) {
        return color.value_or(UIColor::blackColor()).colorWithAlphaComponent(opacity.value_or(1));
    }
};

/// A style for the features that have certain properties.
struct GeoJsonRule {
    /// Every key's property has to be one of its values; null stands for none as well.
    std::vector<std::pair<std::string, std::vector<GeoJsonScalar>>> where;
    GeoJsonStyle style;

    bool appliesTo(const JsonValue* properties) const;
};

/// What the simple style prescribes for features that say nothing.
const GeoJsonStyle& simpleStyle();

/// `over`, and where it is silent `under`.
GeoJsonStyle layered(GeoJsonStyle over, const GeoJsonStyle& under);

/// A feature's own style, and below it those of the rules that apply to it, later ones over earlier ones.
/// @param properties may be empty.
GeoJsonStyle styleByRules(const GeoJsonStyle& own, const JsonValue* properties,
                          const std::vector<GeoJsonRule>& rules);

} // namespace trelmix::apps
