#include "common/scene/GeoJsonStyle.h"

#include <algorithm>

namespace trelmix::apps {

namespace {

template <class Value>
void fill(std::optional<Value>& over, const std::optional<Value>& under) {
    if (!over) {
        over = under;
    }
}

} // namespace

std::optional<GeoJsonScalar> scalarOf(const JsonValue& value) {
    if (const auto number = value.number()) {
        return *number;
    }
    if (const std::string* text = value.text()) {
        return *text;
    }
    if (const bool* flag = std::get_if<bool>(&value.value)) {
        return *flag;
    }
    return value.isNull() ? std::optional<GeoJsonScalar>(nullptr) : std::nullopt;
}

bool GeoJsonRule::appliesTo(const JsonValue* properties) const {
    return std::all_of(where.begin(), where.end(), [&](const auto& condition) {
        const auto& [key, values] = condition;
        const JsonValue* property = properties != nullptr ? properties->find(key) : nullptr;
        const auto value = property != nullptr ? scalarOf(*property) : GeoJsonScalar(nullptr);
        return value && std::find(values.begin(), values.end(), *value) != values.end();
    });
}

const GeoJsonStyle& simpleStyle() {
    static const GeoJsonStyle style = [] {
        const UIColor dark{1.0 / 3, 1.0 / 3, 1.0 / 3};
        GeoJsonStyle made;
        made.stroke = dark;
        made.strokeWidth = 2;
        made.fill = dark;
        made.fillOpacity = 0.6;
        made.markerColor = UIColor{0x7e / 255.0, 0x7e / 255.0, 0x7e / 255.0};
        return made;
    }();
    return style;
}

GeoJsonStyle layered(GeoJsonStyle over, const GeoJsonStyle& under) {
    fill(over.stroke, under.stroke);
    fill(over.strokeOpacity, under.strokeOpacity);
    fill(over.strokeWidth, under.strokeWidth);
    fill(over.fill, under.fill);
    fill(over.fillOpacity, under.fillOpacity);
    fill(over.markerColor, under.markerColor);
    fill(over.markerOpacity, under.markerOpacity);
    fill(over.radius, under.radius);
    fill(over.icon, under.icon);
    fill(over.visible, under.visible);
    fill(over.zIndex, under.zIndex);
    return over;
}

GeoJsonStyle styleByRules(const GeoJsonStyle& own, const JsonValue* properties,
                          const std::vector<GeoJsonRule>& rules) {
    GeoJsonStyle style = own;
    for (auto rule = rules.rbegin(); rule != rules.rend(); ++rule) {
        if (rule->appliesTo(properties)) {
            style = layered(std::move(style), rule->style);
        }
    }
    return style;
}

} // namespace trelmix::apps
