#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace trelmix {

/// One line of valid UTF-8 of at most `maximumCharacters`: wrong bytes become U+FFFD, control characters
/// spaces.
std::string printableLine(std::string_view text, std::size_t maximumCharacters);

} // namespace trelmix
