#include "Json.h"

#include <cstdio>
#include <fstream>

namespace trelmix::sample {

namespace {

/// Short values stay on one line, so that the files read like written by hand.
constexpr std::size_t kLineLength = 100;

std::string joined(char open, const std::vector<std::string>& parts, char close) {
    std::size_t total = 0;
    bool isOneLine = true;
    for (const std::string& part : parts) {
        total += part.size() + 2;
        isOneLine = isOneLine && part.find('\n') == std::string::npos;
    }
    isOneLine = isOneLine && total < kLineLength;
    std::string text(1, open);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!isOneLine) {
            text += "\n  ";
        }
        for (const char c : parts[i]) {
            text += c;
            if (c == '\n') {
                text += "  ";
            }
        }
        if (i + 1 < parts.size()) {
            text += isOneLine ? ", " : ",";
        }
    }
    if (!isOneLine) {
        text += '\n';
    }
    return text + close;
}

} // namespace

std::string jsonNumber(double value) {
    char digits[48];
    std::snprintf(digits, sizeof digits, "%.10f", value);
    std::string text = digits;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

std::string jsonText(const std::string& text) {
    return '"' + text + '"';
}

std::string jsonCoordinate(LatLon place) {
    return jsonObject({{"lat", jsonNumber(place.lat)}, {"lon", jsonNumber(place.lon)}});
}

std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members) {
    std::vector<std::string> parts;
    for (const auto& [key, value] : members) {
        parts.push_back(jsonText(key) + ": " + value);
    }
    return joined('{', parts, '}');
}

std::string jsonArray(const std::vector<std::string>& items) {
    return joined('[', items, ']');
}

std::string writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text << '\n';
    file.close();
    return file ? "" : path + ": cannot be written";
}

} // namespace trelmix::sample
