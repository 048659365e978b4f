#include "common/picture/AttributionText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace trelmix::apps {

namespace {

constexpr std::size_t kMaximumLength = 400;

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kEntities = {{{"&copy;", "\xC2\xA9"},
                                                                                     {"&#169;", "\xC2\xA9"},
                                                                                     {"&quot;", "\""},
                                                                                     {"&nbsp;", " "},
                                                                                     {"&lt;", "<"},
                                                                                     {"&gt;", ">"},
                                                                                     {"&amp;", "&"}}};

std::string withoutTags(std::string_view html) {
    std::string text;
    for (std::size_t i = 0; i < html.size(); ++i) {
        const std::size_t end = html[i] == '<' ? html.find('>', i) : std::string_view::npos;
        if (end != std::string_view::npos) {
            i = end;
        } else {
            text += html[i];
        }
    }
    return text;
}

std::string withoutEntities(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size();) {
        const auto entity = std::find_if(kEntities.begin(), kEntities.end(), [&](const auto& entry) {
            return text.substr(i).starts_with(entry.first);
        });
        if (entity != kEntities.end()) {
            plain += entity->second;
            i += entity->first.size();
        } else {
            plain += text[i++];
        }
    }
    return plain;
}

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// Bytes that are no UTF-8 would put the whole text out, so they are left out one by one.
std::string onlyUtf8(std::string_view text) {
    std::string clean;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80          ? 1
                                   : (lead >> 5U) == 6  ? 2
                                   : (lead >> 4U) == 14 ? 3
                                   : (lead >> 3U) == 30 ? 4
                                                        : 0;
        const std::string_view piece = text.substr(i, std::max<std::size_t>(length, 1));
        const bool isWhole = length > 0 && piece.size() == length &&
                             std::all_of(piece.begin() + 1, piece.end(), isContinuation);
        // Overlong forms, surrogates and what lies beyond the last character.
        const auto second = isWhole && length > 1 ? static_cast<unsigned char>(piece[1]) : 0U;
        const bool isForbidden = lead == 0xC0 || lead == 0xC1 || (lead == 0xE0 && second < 0xA0) ||
                                 (lead == 0xED && second >= 0xA0) || (lead == 0xF0 && second < 0x90) ||
                                 (lead == 0xF4 && second >= 0x90) || lead > 0xF4;
        if (isWhole && !isForbidden) {
            clean += piece;
        }
        i += isWhole ? length : 1;
    }
    return clean;
}

std::string withSingleBlanks(std::string_view text) {
    std::string tidy;
    for (const char c : text) {
        const bool isBlank = static_cast<unsigned char>(c) <= ' ' || c == 0x7f;
        if (!isBlank) {
            tidy += c;
        } else if (!tidy.empty() && tidy.back() != ' ') {
            tidy += ' ';
        }
    }
    if (!tidy.empty() && tidy.back() == ' ') {
        tidy.pop_back();
    }
    return tidy;
}

} // namespace

std::string plainLine(std::string_view text) {
    return withSingleBlanks(onlyUtf8(text));
}

std::string joinedAttributions(const std::vector<std::string>& texts) {
    std::vector<std::string> plain;
    for (const auto& text : texts) {
        std::string line = plainLine(withoutEntities(withoutTags(text)));
        if (line.size() > kMaximumLength) {
            line = onlyUtf8(line.substr(0, kMaximumLength)) + "\xE2\x80\xA6";
        }
        if (!line.empty() && std::find(plain.begin(), plain.end(), line) == plain.end()) {
            plain.push_back(std::move(line));
        }
    }
    std::string joined;
    for (const auto& line : plain) {
        joined += (joined.empty() ? "" : " | ") + line;
    }
    return joined;
}

} // namespace trelmix::apps
