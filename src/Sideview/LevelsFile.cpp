#include "Sideview/LevelsFile.h"

#include "Platform/Foundation/FileData.h"
#include "Sideview/LevelsJson.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trelmix {
namespace {

using Json = nlohmann::json;
using Bytes = std::span<const std::byte>;

constexpr std::uint64_t kMaximumBytes = std::uint64_t{16} << 20;

std::string wrongType(const std::string& place, const char* expected, const Json& value) {
    return place + ": must be " + expected + ", is " + value.type_name();
}

/// Reads one object after the other; the first thing that is wrong stays, with its place.
class Reader {
public:
    const std::string& fault() const { return _fault; }

    LevelsFile file(const Json& top) {
        LevelsFile file;
        file.bearing = requiredNumber(top, kItemBearing);
        file.southLatitude = requiredNumber(top, kItemSouthLatitude);
        file.northLatitude = requiredNumber(top, kItemNorthLatitude);
        file.westLongitude = requiredNumber(top, kItemWestLongitude);
        file.eastLongitude = requiredNumber(top, kItemEastLongitude);
        file.bottomOffset = offset(top, kItemBottomOffset);
        file.topOffset = offset(top, kItemTopOffset);
        file.leftOffset = offset(top, kItemLeftOffset);
        file.rightOffset = offset(top, kItemRightOffset);
        const auto bow = top.find(kItemBowPosition);
        file.bowPosition =
            bow != top.end() && *bow == "left" ? SideviewBowPosition::left : SideviewBowPosition::right;
        file.levels = levels(top);
        return file;
    }

    std::optional<SideviewLevels> levels(const Json& top) {
        const auto found = top.find(kItemLevels);
        if (found == top.end()) {
            return std::nullopt;
        }
        return list<SideviewLevel>(*found, kItemLevels, [this](const Json& json, const std::string& place) {
            return level(json, place);
        });
    }

private:
    template <class Element, class Read>
    std::vector<Element> list(const Json& json, const std::string& place, Read read) {
        std::vector<Element> elements;
        if (!json.is_array()) {
            fail(wrongType(place, "an array of objects", json));
            return elements;
        }
        elements.reserve(json.size());
        for (const Json& element : json) {
            const std::string elementPlace = place + "[" + std::to_string(elements.size()) + "]";
            if (!element.is_object()) {
                fail(wrongType(elementPlace, "an object", element));
                return elements;
            }
            elements.push_back(read(element, elementPlace));
            if (!_fault.empty()) {
                return elements;
            }
        }
        return elements;
    }

    SideviewLevel level(const Json& json, const std::string& place) {
        SideviewLevel level;
        if (const auto number = json.find(kItemLevelNumber); number != json.end()) {
            level.levelNumber = wholeNumber(*number);
        }
        if (const auto bounds = json.find(kItemLevelBounds); bounds != json.end()) {
            level.levelBounds =
                list<SideviewLevelBounds>(*bounds, place + "." + kItemLevelBounds,
                                          [this](const Json& entry, const std::string& entryPlace) {
                                              return boundsEntry(entry, entryPlace);
                                          });
        }
        return level;
    }

    SideviewLevelBounds boundsEntry(const Json& json, const std::string& place) {
        for (const auto& [key, value] : json.items()) {
            if (!value.is_number()) {
                fail(wrongType(place + "." + shownKey(key), "a number", value));
                return {};
            }
        }
        return {requiredNumber(json, kItemRelativeHeight, place + "."),
                requiredNumber(json, kItemCeilingHeight, place + ".")};
    }

    double requiredNumber(const Json& object, const char* key, const std::string& place = {}) {
        const auto found = object.find(key);
        if (found == object.end()) {
            fail(place + key + ": is missing");
            return 0;
        }
        if (!found->is_number()) {
            fail(wrongType(place + key, "a number", *found));
            return 0;
        }
        return found->get<double>();
    }

    static double offset(const Json& object, const char* key) {
        const auto found = object.find(key);
        return found != object.end() && found->is_number() ? found->get<double>() : 0;
    }

    // 2, 2.0 and 2e0 are the same number.
    static std::optional<std::int64_t> wholeNumber(const Json& json) {
        constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        if (json.is_number_unsigned()) {
            const auto number = json.get<std::uint64_t>();
            return number <= kLargest ? std::optional(static_cast<std::int64_t>(number)) : std::nullopt;
        }
        if (json.is_number_integer()) {
            return json.get<std::int64_t>();
        }
        // Both ends are open: whole numbers just below -2^63 arrive as the double -2^63.
        constexpr double kEnd = 0x1p63;
        const double number = json.is_number_float() ? json.get<double>() : kEnd;
        if (!(number > -kEnd && number < kEnd) || std::trunc(number) != number) {
            return std::nullopt;
        }
        return static_cast<std::int64_t>(number);
    }

    void fail(std::string what) {
        if (_fault.empty()) {
            _fault = std::move(what);
        }
    }

    std::string _fault;
};

template <class T, class Take>
Result<T> parse(Bytes text, Take take) {
    const Result<Json> top = parseLevelsJson(text);
    if (!top) {
        return Result<T>::failure(top.reason());
    }
    Reader reader;
    T taken = take(reader, *top);
    if (!reader.fault().empty()) {
        return Result<T>::failure(reader.fault());
    }
    return taken;
}

template <class T, class Parse>
Result<T> read(const std::string& path, Parse parseText) {
    const auto bytes = readFile(path, kMaximumBytes);
    if (!bytes) {
        return Result<T>::failure(path + ": " + bytes.reason());
    }
    Result<T> parsed = parseText(Bytes(*bytes));
    return parsed ? std::move(parsed) : Result<T>::failure(path + ": " + parsed.reason());
}

} // namespace

Result<LevelsFile> parseLevelsFile(std::span<const std::byte> text) {
    return parse<LevelsFile>(text, [](Reader& reader, const Json& top) { return reader.file(top); });
}

Result<LevelsFile> readLevelsFile(const std::string& path) {
    return read<LevelsFile>(path, parseLevelsFile);
}

Result<std::optional<SideviewLevels>> readLevels(const std::string& path) {
    using Levels = std::optional<SideviewLevels>;
    return read<Levels>(path, [](Bytes text) {
        return parse<Levels>(text, [](Reader& reader, const Json& top) { return reader.levels(top); });
    });
}

const SideviewLevel* findLevel(const std::optional<SideviewLevels>& levels, std::int64_t levelNumber) {
    if (!levels) {
        return nullptr;
    }
    const auto found =
        std::find_if(levels->begin(), levels->end(),
                     [levelNumber](const SideviewLevel& level) { return level.levelNumber == levelNumber; });
    return found == levels->end() ? nullptr : &*found;
}

} // namespace trelmix
