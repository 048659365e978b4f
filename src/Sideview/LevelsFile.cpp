#include "Sideview/LevelsFile.h"

#include "Platform/Foundation/FileData.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace trelmix {
namespace {

using Json = nlohmann::json;
using Bytes = std::span<const std::byte>;

constexpr std::uint64_t kMaximumBytes = std::uint64_t{16} << 20;
// A levels file is five deep; what else it carries may be somewhat deeper.
constexpr std::size_t kMaximumDepth = 64;
// "[[],[],[], ..." costs ten times its size once parsed.
constexpr std::size_t kMaximumValues = 1'000'000;

// Keys that come from the file may be of any length and hold line ends.
std::string shown(const std::string& key) {
    constexpr std::size_t kLongest = 40;
    std::string text = key.substr(0, kLongest);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, '?');
    if (key.size() > kLongest) {
        // Not in the middle of a character.
        while (!text.empty() && (static_cast<unsigned char>(key[text.size()]) & 0xC0U) == 0x80U) {
            text.pop_back();
        }
        text += "...";
    }
    return text;
}

std::string lineAndColumn(Bytes text, std::size_t byte) {
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text.size());
    std::size_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < end; ++i) {
        if (text[i] == std::byte{'\n'}) {
            ++line;
            lineStart = i + 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(end - lineStart + 1);
}

/// Walks a text without keeping it: finds what is no JSON, and what the tree of values should not be built
/// for.
class Checker final : public nlohmann::json_sax<Json> {
public:
    explicit Checker(Bytes text) : _text(text) {}

    /// Empty when the text can be parsed.
    const std::string& fault() const { return _fault; }

    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t&) override { return value(); }
    bool string(string_t&) override { return value(); }
    bool binary(binary_t&) override { return value(); }
    bool start_array(std::size_t) override { return value() && open(false); }
    bool end_array() override { return close(); }
    bool start_object(std::size_t) override { return value() && open(true); }
    bool end_object() override { return close(); }

    bool key(string_t& name) override {
        Container& object = _open.back();
        object.key = name;
        // One of two values would be silently ignored; in a file written by hand that is a slip.
        return object.keys.insert(name).second || fail(place() + ": stands twice in its object");
    }

    bool parse_error(std::size_t byte, const std::string&,
                     const nlohmann::detail::exception& error) override {
        constexpr int kNumberOverflow = 406;
        if (error.id == kNumberOverflow) {
            return fail(lineAndColumn(_text, byte) + ": a number is larger than a double can hold");
        }
        // The library's line without its own name and place, and without the last token, which may be
        // anything.
        std::string_view what = error.what();
        if (const std::size_t start = what.find(": "); start != std::string_view::npos) {
            what.remove_prefix(start + 2);
        }
        what = what.substr(0, what.find("; last read"));
        return fail(lineAndColumn(_text, byte) + ": " + std::string(what));
    }

private:
    struct Container {
        bool isObject = false;
        std::size_t index = 0;
        std::string key;
        std::unordered_set<std::string> keys;
    };

    bool value() {
        if (!_open.empty() && !_open.back().isObject) {
            ++_open.back().index;
        }
        return ++_values <= kMaximumValues ||
               fail(place() + ": more than " + std::to_string(kMaximumValues) + " values in the file");
    }

    bool open(bool isObject) {
        if (_open.size() == kMaximumDepth) {
            return fail(place() + ": nested more than " + std::to_string(kMaximumDepth) + " deep");
        }
        _open.push_back({isObject, 0, {}, {}});
        return true;
    }

    bool close() {
        _open.pop_back();
        return true;
    }

    bool fail(std::string what) {
        _fault = std::move(what);
        return false;
    }

    std::string place() const {
        std::string path;
        for (const Container& container : _open) {
            if (!container.isObject) {
                path += "[" + std::to_string(std::max<std::size_t>(container.index, 1) - 1) + "]";
            } else if (!container.key.empty()) {
                path += (path.empty() ? "" : ".") + shown(container.key);
            }
        }
        return path.empty() ? "the file" : path;
    }

    Bytes _text;
    std::vector<Container> _open;
    std::size_t _values = 0;
    std::string _fault;
};

Result<Json> parseObject(Bytes text) {
    if (text.empty()) {
        return Result<Json>::failure("the file is empty");
    }
    const auto* const begin = reinterpret_cast<const char*>(text.data());
    const auto* const end = begin + text.size();
    Checker checker(text);
    if (!Json::sax_parse(begin, end, &checker)) {
        return Result<Json>::failure(checker.fault());
    }
    Json json = Json::parse(begin, end, nullptr, false);
    if (!json.is_object()) {
        return Result<Json>::failure(std::string("the file: must be an object, is ") + json.type_name());
    }
    return json;
}

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
                fail(wrongType(place + "." + shown(key), "a number", value));
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
    const Result<Json> top = parseObject(text);
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
