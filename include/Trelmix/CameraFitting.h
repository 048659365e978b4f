/// @file
/// The camera that shows given places.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/TrelmixMapEngineCamera.h>

#include <optional>
#include <span>

namespace trelmix {

/// The closest camera that looks straight down with north at the top and shows all the coordinates with a
/// margin of 5 % of the view at every side: zoom 15 to 23, centred on what they span. Places too far apart
/// for zoom 15 are cut off at all sides alike. Exact for a map whose first camera it is; a map created at
/// another latitude draws larger or smaller by the ratio of the two latitudes' cosines. Any thread.
/// @param coordinates invalid ones are ignored; beyond the Mercator square they count as lying on its edge
/// @param viewSize points; a view without a size gives zoom 15
/// @returns nothing when no coordinate is valid
TRELMIX_API std::optional<TrelmixMapEngineCamera>
cameraShowing(std::span<const CLLocationCoordinate2D> coordinates, CGSize viewSize);

} // namespace trelmix
