#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace trelmix::apps {

/// What can be shown of a text from outside: without bytes that are no UTF-8 and without control characters,
/// blanks one at a time.
std::string plainLine(std::string_view text);

/// The texts of several sources as one line: without HTML, each once, separated by bars.
std::string joinedAttributions(const std::vector<std::string>& texts);

} // namespace trelmix::apps
