#include <Trelmix/Platform/URL.h>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace trelmix {
namespace {

constexpr std::string_view kSchemes[] = {"http", "https", "file"};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool isPrintable(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte > 0x20 && byte != 0x7f;
}

int hexDigit(char c) {
    const char digit = lower(c);
    return digit >= '0' && digit <= '9' ? digit - '0' : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEncoded =
            text[i] == '%' && text.size() - i > 2 && hexDigit(text[i + 1]) >= 0 && hexDigit(text[i + 2]) >= 0;
        if (isEncoded) {
            result += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// What stands between "//" and the path, as it was written.
std::string_view writtenAuthority(std::string_view url) {
    const std::string_view rest = url.substr(url.find("://") + 3);
    return rest.substr(0, rest.find_first_of("/?#"));
}

/// A host, and behind it nothing or a port that exists.
bool isHostAndPort(std::string_view authority) {
    // An address of the sixth version has colons of its own, in brackets.
    const std::size_t bracket = authority.rfind(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    const std::string_view host = authority.substr(0, colon);
    if (host.empty() || colon == std::string_view::npos) {
        return !host.empty();
    }
    const std::string_view digits = authority.substr(colon + 1);
    unsigned port = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    return digits.empty() ||
           (error == std::errc() && stop == digits.data() + digits.size() && port >= 1 && port <= 65535);
}

} // namespace

std::optional<URL> URL::fromString(std::string_view text) {
    const std::size_t colon = text.find("://");
    if (text.size() > kMaximumLength || colon == std::string_view::npos ||
        !std::all_of(text.begin(), text.end(), isPrintable)) {
        return std::nullopt;
    }
    const std::string scheme = lowered(text.substr(0, colon));
    if (std::find(std::begin(kSchemes), std::end(kSchemes), scheme) == std::end(kSchemes)) {
        return std::nullopt;
    }
    URL url(scheme + std::string(text.substr(colon)));
    const std::string authority = url.authority();
    const bool isLocal = authority.empty() || authority == "localhost";
    const bool isFile = scheme == "file";
    if (isFile ? !isLocal || url.filePath().empty() : !isHostAndPort(authority)) {
        return std::nullopt;
    }
    return url;
}

std::string_view URL::scheme() const {
    return std::string_view(_string).substr(0, _string.find(':'));
}

std::string URL::authority() const {
    const std::string_view written = writtenAuthority(_string);
    // A user's name before the host is nobody that could be asked.
    return lowered(written.substr(written.rfind('@') + 1));
}

std::string URL::filePath() const {
    if (scheme() != "file") {
        return {};
    }
    std::string_view path = std::string_view(_string).substr(std::string_view("file://").size());
    path.remove_prefix(writtenAuthority(_string).size());
    std::string decoded = percentDecoded(path.substr(0, path.find_first_of("?#")));
    return decoded.find('\0') == std::string::npos ? decoded : std::string();
}

} // namespace trelmix
