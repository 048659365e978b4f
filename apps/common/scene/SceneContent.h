#pragma once

#include "common/scene/GeoJson.h"
#include "common/scene/SceneFile.h"
#include "common/tiles/TileSource.h"

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/UIImage.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace trelmix::apps {

/// A GeoJSON file and the icons that its scene entry names, by their paths.
struct SceneGeoJsonContent {
    GeoJsonFile file;
    std::map<std::string, std::shared_ptr<const UIImage>> icons;
};

/// The files that a scene names, opened and decoded: one entry for each of the scene's, in the same order.
struct SceneContent {
    /// Empty where the tiles come from addresses.
    std::vector<std::shared_ptr<const TileSource>> tiles;
    std::vector<std::shared_ptr<const UIImage>> levelPlans;
    /// Empty where the marker has no icon of its own.
    std::vector<std::shared_ptr<const UIImage>> markerIcons;
    std::vector<SceneGeoJsonContent> geojson;
    /// What has to be shown with the picture, as one line; empty when there is nothing.
    std::string attribution;
};

/// The reason begins with `scenePath` and the place in the scene; then comes the file's path and what is
/// wrong with it.
Result<SceneContent> loadSceneContent(const SceneFile& scene, const std::string& scenePath);

} // namespace trelmix::apps
