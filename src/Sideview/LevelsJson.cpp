#include "Sideview/LevelsJson.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace trelmix {
namespace {

using Json = nlohmann::json;
using Bytes = std::span<const std::byte>;

// A levels file is five deep; what else it carries may be somewhat deeper.
constexpr std::size_t kMaximumDepth = 64;
// "[[],[],[], ..." costs ten times its size once parsed.
constexpr std::size_t kMaximumValues = 1'000'000;

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
                path += (path.empty() ? "" : ".") + shownKey(container.key);
            }
        }
        return path.empty() ? "the file" : path;
    }

    Bytes _text;
    std::vector<Container> _open;
    std::size_t _values = 0;
    std::string _fault;
};

} // namespace

std::string shownKey(const std::string& key) {
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

Result<nlohmann::json> parseLevelsJson(Bytes text) {
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

} // namespace trelmix
