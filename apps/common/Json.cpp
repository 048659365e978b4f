#include "common/Json.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

namespace trelmix::apps {

namespace {

std::string lineAndColumn(std::string_view text, std::size_t position) {
    position = std::min(position, text.size());
    const auto head = text.substr(0, position);
    const auto line = 1 + std::count(head.begin(), head.end(), '\n');
    const auto lineStart = head.rfind('\n');
    const std::size_t column = position - (lineStart == std::string_view::npos ? 0 : lineStart + 1);
    return "line " + std::to_string(line) + ", column " + std::to_string(std::max<std::size_t>(column, 1));
}

// What the parser says, without its own prefix and without bytes that would spoil a terminal.
std::string plainReason(std::string what) {
    if (const auto start = what.find(": "); start != std::string::npos) {
        what.erase(0, start + 2);
    } else if (const auto bracket = what.find("] "); bracket != std::string::npos) {
        what.erase(0, bracket + 2);
    }
    for (char& c : what) {
        if (c < 0x20 || c > 0x7e) {
            c = '?';
        }
    }
    return what;
}

/// Builds the tree while the parser reads, so that depth and doubled keys are known before memory is spent on
/// them.
class TreeBuilder {
public:
    using json = nlohmann::json;

    explicit TreeBuilder(std::string_view whole) : _text(whole) {}

    JsonValue root;
    std::string reason;

    bool null() { return place(JsonValue{}); }
    bool boolean(bool value) { return place(JsonValue{value}); }
    bool number_integer(json::number_integer_t value) { return place(JsonValue{std::int64_t{value}}); }
    bool number_unsigned(json::number_unsigned_t value) {
        return value <= static_cast<std::uint64_t>(INT64_MAX)
                   ? place(JsonValue{static_cast<std::int64_t>(value)})
                   : place(JsonValue{static_cast<double>(value)});
    }
    bool number_float(json::number_float_t value, const json::string_t&) { return place(JsonValue{value}); }
    bool string(json::string_t& value) { return place(JsonValue{std::move(value)}); }
    bool binary(json::binary_t&) { return false; }
    bool start_object(std::size_t) { return open(JsonValue{JsonValue::Object{}}); }
    bool start_array(std::size_t) { return open(JsonValue{JsonValue::Array{}}); }
    bool end_array() {
        _stack.pop_back();
        return true;
    }
    bool key(json::string_t& name) {
        std::get<JsonValue::Object>(_stack.back()->value).push_back({std::move(name), {}});
        return true;
    }
    bool end_object() {
        const auto& members = std::get<JsonValue::Object>(_stack.back()->value);
        std::vector<std::string_view> keys;
        keys.reserve(members.size());
        for (const auto& member : members) {
            keys.push_back(member.key);
        }
        std::sort(keys.begin(), keys.end());
        const auto twice = std::adjacent_find(keys.begin(), keys.end());
        if (twice != keys.end()) {
            reason = "the key " + quotedJson(*twice) + " comes twice in one object";
            return false;
        }
        _stack.pop_back();
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) {
        reason = lineAndColumn(_text, position) + ": " + plainReason(error.what());
        return false;
    }

private:
    JsonValue* slot() {
        if (_stack.empty()) {
            return &root;
        }
        if (auto* array = std::get_if<JsonValue::Array>(&_stack.back()->value)) {
            return &array->emplace_back();
        }
        return &std::get<JsonValue::Object>(_stack.back()->value).back().value;
    }
    bool place(JsonValue value) {
        *slot() = std::move(value);
        return true;
    }
    bool open(JsonValue value) {
        if (_stack.size() >= kMaximumJsonDepth) {
            reason = "is nested deeper than " + std::to_string(kMaximumJsonDepth) + " levels";
            return false;
        }
        JsonValue* target = slot();
        *target = std::move(value);
        // Only the innermost container grows, so pointers to the outer ones stay good.
        _stack.push_back(target);
        return true;
    }

    std::string_view _text;
    std::vector<JsonValue*> _stack;
};

} // namespace

std::optional<double> JsonValue::number() const {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* decimal = std::get_if<double>(&value)) {
        return *decimal;
    }
    return std::nullopt;
}

const JsonValue* JsonValue::find(std::string_view key) const {
    if (const Object* members = object()) {
        for (const Member& member : *members) {
            if (member.key == key) {
                return &member.value;
            }
        }
    }
    return nullptr;
}

Result<JsonValue> parseJson(std::string_view text) {
    TreeBuilder builder(text);
    const bool whole = nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
    if (!whole) {
        return Result<JsonValue>::failure(builder.reason.empty() ? "is not JSON" : builder.reason);
    }
    return std::move(builder.root);
}

std::string quotedJson(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string jsonText(const JsonValue& value) {
    if (const auto* items = value.array()) {
        std::string text;
        for (const JsonValue& item : *items) {
            text += (text.empty() ? "" : ",") + jsonText(item);
        }
        return "[" + text + "]";
    }
    if (const auto* members = value.object()) {
        std::string text;
        for (const auto& member : *members) {
            text += (text.empty() ? "" : ",") + quotedJson(member.key) + ":" + jsonText(member.value);
        }
        return "{" + text + "}";
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value.value)) {
        return std::to_string(*whole);
    }
    if (const auto* flag = std::get_if<bool>(&value.value)) {
        return *flag ? "true" : "false";
    }
    const auto number = value.number();
    return value.text() != nullptr ? quotedJson(*value.text()) : number ? jsonNumber(*number) : "null";
}

std::string jsonNumber(double number) {
    char digits[40];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number);
    return {std::begin(digits), end.ptr};
}

} // namespace trelmix::apps
