#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <optional>
#include <string>

namespace trelmix::apps {

/// Camera moves of a mouse and of keys, through the engine's public setters. Each does nothing before the
/// first camera.

/// Zooms by so many levels, at once, so that the ground under a point of the map's view stays there.
void zoomAbout(TrelmixMapEngine& engine, CGPoint point, double levels);
/// What is added to the camera: degrees to the heading and to the tilt, and zoom levels.
struct CameraStep {
    double rotation = 0;
    double viewingAngle = 0;
    double levels = 0;
};

/// At once.
void moveBy(TrelmixMapEngine& engine, CameraStep step);

/// Animated steps, as keys make them: each begins where the one before is going, not where it has come. The
/// engine's listener, as another change of its camera ends that.
class CameraKeys final : public TrelmixMapEngineDelegate {
public:
    void moveBy(TrelmixMapEngine& engine, CameraStep step);
    /// North to the top.
    void resetRotation(TrelmixMapEngine& engine);
    void mapViewWillMoveFromGesture(bool) override { _goalZoom.reset(); }

private:
    /// A camera that moves has the heading and the tilt where it is going, and the zoom where it is.
    std::optional<double> _goalZoom;
};

/// Metres on the ground that a point of the screen covers in the middle of a view of that size; 0 when that
/// cannot be told.
double metresPerPoint(const TrelmixMapEngine& engine, CGSize viewSize);

/// The view as the programs' options take it: "--camera LAT,LON,ZOOM,ROTATION,ANGLE"; empty before the first
/// camera.
std::string cameraArgument(const TrelmixMapEngine& engine);

} // namespace trelmix::apps
