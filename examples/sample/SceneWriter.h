/// @file
/// The scene files of the sample, and the GeoJSON and levels files that they show.
#pragma once

#include "TownModel.h"

#include <string>

namespace trelmix::sample {

/// Writes every scene into `folder`: harbour, harbour-tilted, overlays and ship, with town.geojson and
/// side/levels.json. Empty when it went well, else what is wrong.
std::string writeScenes(const std::string& folder, const TownModel& model);

/// side/levels.json. Empty when it went well, else what is wrong.
std::string writeScenes(const std::string& folder, const TownModel& model);

/// town.geojson: parks, streets, piers and places of interest.
std::string townGeoJson(const TownModel& model);
/// side/levels.json: where each deck lies in the side elevation, and where the ship lies on the map.
std::string shipLevels();

} // namespace trelmix::sample
