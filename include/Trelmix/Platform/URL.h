/// @file
/// Addresses of tile images.
#pragma once

#include <Trelmix/Export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace trelmix {

/// An http, https or file address. Any thread.
class TRELMIX_API URL {
public:
    /// Longer texts are no addresses.
    static constexpr std::size_t kMaximumLength = 8192;

    /// Empty unless the text begins with "http://" or "https://" and a host (and a port from 1 to 65535,
    /// if any), or is "file:///" (or "file://localhost/") and a path; and when it is too long or has spaces
    /// or control characters in it, which have to be percent-encoded.
    static std::optional<URL> fromString(std::string_view text);

    /// The text, with the scheme in lower case.
    const std::string& string() const { return _string; }
    /// "http", "https" or "file".
    std::string_view scheme() const;
    /// Who is asked: the host, with its port when it is named, in lower case. Empty for files.
    std::string authority() const;
    /// What a file address names, percent-decoded; empty for other schemes, and when the path has a NUL.
    std::string filePath() const;

    /// The same address.
    friend bool operator==(const URL&, const URL&) = default;

private:
    explicit URL(std::string text) : _string(std::move(text)) {}
    std::string _string;
};

} // namespace trelmix
