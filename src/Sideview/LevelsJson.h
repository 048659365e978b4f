#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <span>
#include <string>

#include <nlohmann/json.hpp>

namespace trelmix {

/// The text of a levels file as a tree whose top is an object, or one line naming the place and what is wrong
/// there. No key stands twice in an object; depth and number of values are limited. Pure; any thread.
Result<nlohmann::json> parseLevelsJson(std::span<const std::byte> text);

/// A key for a line of text: those that come from a file may be of any length and hold line ends.
std::string shownKey(const std::string& key);

} // namespace trelmix
