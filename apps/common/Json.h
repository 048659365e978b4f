#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <optional>
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

} // namespace trelmix::apps
