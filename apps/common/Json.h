#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace trelmix::apps {

/// A JSON value as it stands in the text: integers and decimals apart, members in their order, no key twice.
struct JsonValue {
    struct Member;
    using Array = std::vector<JsonValue>;
    using Object = std::vector<Member>;

    std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object> value;

    const Array* array() const { return std::get_if<Array>(&value); }
    const Object* object() const { return std::get_if<Object>(&value); }
    const std::string* text() const { return std::get_if<std::string>(&value); }
    bool isNull() const { return std::holds_alternative<std::nullptr_t>(value); }
    std::optional<double> number() const;
    /// The member of that key; empty when there is none and when this is no object.
    const JsonValue* find(std::string_view key) const;
};

struct JsonValue::Member {
    std::string key;
    JsonValue value;
};

/// Texts that are nested deeper than this are refused.
inline constexpr std::size_t kMaximumJsonDepth = 64;
/// The largest file that the programs read as JSON, in bytes.
inline constexpr std::uint64_t kMaximumJsonBytes = 64ULL << 20U;

/// The reason names line and column. Bytes that are no UTF-8, keys that come twice and numbers beyond the
/// range of a double are refused.
Result<JsonValue> parseJson(std::string_view text);

/// The text between quotation marks, escaped; bytes that are no UTF-8 are replaced.
std::string quotedJson(std::string_view text);

/// The value in one line; what `parseJson` reads back as the same.
std::string jsonText(const JsonValue& value);

/// The shortest decimal that reads back as the same number.
std::string jsonNumber(double number);

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
