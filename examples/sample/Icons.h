/// @file
/// The icons of the sample's markers, drawn at twice their size in points.
#pragma once

#include <string>

namespace trelmix::sample {

/// Writes every icon into `folder`. Empty when it went well, else what is wrong.
std::string writeIcons(const std::string& folder);

} // namespace trelmix::sample
