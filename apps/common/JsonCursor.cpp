#include "common/JsonCursor.h"

#include <algorithm>
#include <utility>

namespace trelmix::apps {

namespace {

/// The keys and then `rest`, with commas between them.
std::string joinedKeys(std::span<const std::string_view> keys, std::string rest) {
    for (std::size_t i = keys.size(); i-- > 0;) {
        rest = std::string(keys[i]) + (rest.empty() ? "" : ", ") + rest;
    }
    return rest;
}

} // namespace

std::string JsonCursor::place() const {
    if (_parent == nullptr) {
        return {};
    }
    const std::string before = _parent->place();
    if (_key.empty()) {
        return before + "[" + std::to_string(_index) + "]";
    }
    return before.empty() ? std::string(_key) : before + "." + std::string(_key);
}

void JsonCursor::fail(const std::string& what) const {
    const std::string where = place();
    throw JsonError(where.empty() ? what : where + ": " + what);
}

void JsonCursor::expectObject(std::initializer_list<std::string_view> keys,
                              std::span<const std::string_view> moreKeys) const {
    const auto* members = _value->object();
    if (members == nullptr) {
        fail("must be an object");
    }
    for (const auto& member : *members) {
        const auto isIn = [&](auto& list) {
            return std::find(list.begin(), list.end(), member.key) != list.end();
        };
        if (!isIn(keys) && !isIn(moreKeys)) {
            fail("has the unknown key " + quotedJson(member.key) + "; the keys here are " +
                 joinedKeys(keys, joinedKeys(moreKeys, {})));
        }
    }
}

std::optional<JsonCursor> JsonCursor::member(std::string_view key) const& {
    const auto* members = _value->object();
    if (members == nullptr) {
        fail("must be an object");
    }
    for (const auto& candidate : *members) {
        if (candidate.key == key) {
            return JsonCursor(candidate.value, this, candidate.key, 0);
        }
    }
    return std::nullopt;
}

JsonCursor JsonCursor::required(std::string_view key) const& {
    const auto found = member(key);
    if (!found) {
        fail("needs the key \"" + std::string(key) + "\"");
    }
    return *found;
}

std::size_t JsonCursor::size() const {
    const auto* items = _value->array();
    if (items == nullptr) {
        fail("must be an array");
    }
    return items->size();
}

JsonCursor JsonCursor::item(std::size_t index) const& {
    if (index >= size()) {
        fail("is too short");
    }
    return JsonCursor((*_value->array())[index], this, {}, index);
}

bool JsonCursor::boolean() const {
    const auto* flag = std::get_if<bool>(&_value->value);
    if (flag == nullptr) {
        fail("must be true or false");
    }
    return *flag;
}

std::int64_t JsonCursor::integer() const {
    const auto* whole = std::get_if<std::int64_t>(&_value->value);
    if (whole == nullptr) {
        fail("must be a whole number");
    }
    return *whole;
}

double JsonCursor::number(double least, double most) const {
    const auto number = _value->number();
    if (!number || !(*number >= least) || !(*number <= most)) {
        fail("must be a number from " + jsonNumber(least) + " to " + jsonNumber(most));
    }
    return *number;
}

const std::string& JsonCursor::text() const {
    const std::string* text = _value->text();
    if (text == nullptr) {
        fail("must be a text");
    }
    return *text;
}

} // namespace trelmix::apps
