#include "Platform/Graphics/Utf8.h"

#include <cstdint>

namespace trelmix {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// How many bytes the character at the start takes; 0 when it is not valid.
std::size_t characterLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) {
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Longer than needed, half of a surrogate pair, or beyond the last code point.
    const bool isWrong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                         (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F);
    return isWrong ? 0 : length;
}

} // namespace

std::string printableLine(std::string_view text, std::size_t maximumCharacters) {
    std::string line;
    for (std::size_t count = 0; !text.empty() && count < maximumCharacters; ++count) {
        const std::size_t length = characterLength(text);
        const auto lead = static_cast<std::uint8_t>(text.front());
        if (length == 0) {
            line += kReplacement;
        } else if (lead < 0x20 || lead == 0x7F) {
            line += ' ';
        } else {
            line += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return line;
}

} // namespace trelmix
