/// @file
/// JSON text for the sample's files; every text that goes in is plain ASCII without quotes.
#pragma once

#include "GroundFrame.h"

#include <string>
#include <vector>

namespace trelmix::sample {

/// Without trailing zeros.
std::string jsonNumber(double value);
std::string jsonText(const std::string& text);
/// {"lat": .., "lon": ..}
std::string jsonCoordinate(LatLon place);
/// Members or items joined by commas, one a line.
std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members);
std::string jsonArray(const std::vector<std::string>& items);
/// Empty when it went well, else what is wrong.
std::string writeText(const std::string& path, const std::string& text);

} // namespace trelmix::sample
