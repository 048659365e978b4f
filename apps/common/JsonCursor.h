#pragma once

#include "common/Json.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace trelmix::apps {

/// Something is wrong at one place of a JSON text. Stays inside the readers, which turn it into a `Result`.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A value together with its place in the text, for readers that check everything. All the checking
/// operations throw a `JsonError` that says where and what. Borrows the value and the cursor it came from.
class JsonCursor {
public:
    explicit JsonCursor(const JsonValue& root) : _value(&root) {}

    const JsonValue& value() const { return *_value; }
    /// "markers[3].coordinate.lat"; empty at the top.
    std::string place() const;
    [[noreturn]] void fail(const std::string& what) const;

    /// An object that has no other keys than these.
    void expectObject(std::initializer_list<std::string_view> keys,
                      std::span<const std::string_view> moreKeys = {}) const;
    /// Empty when the object has no such member.
    std::optional<JsonCursor> member(std::string_view key) const&;
    JsonCursor required(std::string_view key) const&;

    /// How many items the array has.
    std::size_t size() const;
    JsonCursor item(std::size_t index) const&;
    // A cursor refers to the one it came from, so that one must have a name.
    std::optional<JsonCursor> member(std::string_view key) const&& = delete;
    JsonCursor required(std::string_view key) const&& = delete;
    JsonCursor item(std::size_t index) const&& = delete;

    bool boolean() const;
    std::int64_t integer() const;
    double number(double least, double most) const;
    const std::string& text() const;

private:
    JsonCursor(const JsonValue& value, const JsonCursor* parent, std::string_view key, std::size_t index)
        : _value(&value), _parent(parent), _key(key), _index(index) {}

    const JsonValue* _value;
    const JsonCursor* _parent = nullptr;
    std::string_view _key;
    std::size_t _index = 0;
};

} // namespace trelmix::apps
