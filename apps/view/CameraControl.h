#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <string>

namespace trelmix::apps {

/// Camera moves of a mouse and of keys, through the engine's public setters. Each does nothing before the
/// first camera.

/// Zooms by so many levels, at once, so that the ground under a point of the map's view stays there.
void zoomAbout(TrelmixMapEngine& engine, CGPoint point, double levels);
/// Adds degrees to the heading and to the tilt.
void turnBy(TrelmixMapEngine& engine, double rotation, double viewingAngle, bool animated);
/// Zooms by so many levels about the middle of the view.
void zoomBy(TrelmixMapEngine& engine, double levels, bool animated);
/// North to the top.
void resetRotation(TrelmixMapEngine& engine);

/// Metres on the ground that a point of the screen covers in the middle of a view of that size; 0 when that
/// cannot be told.
double metresPerPoint(const TrelmixMapEngine& engine, CGSize viewSize);

/// The view as the programs' options take it: "--camera LAT,LON,ZOOM,ROTATION,ANGLE"; empty before the first
/// camera.
std::string cameraArgument(const TrelmixMapEngine& engine);

} // namespace trelmix::apps
