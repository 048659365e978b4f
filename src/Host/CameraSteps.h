#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <optional>

namespace trelmix {

/// What is added to a camera: degrees to the heading and to the tilt, zoom levels, and points of the screen,
/// at the target's scale, to the target.
struct CameraStep {
    double rotation = 0;
    double viewingAngle = 0;
    double levels = 0;
    CGPoint pan{};
};

/// Camera moves of mouse and keys, through the engine's public calls. Each obeys the gestures that are
/// switched off, does nothing before the first camera, and calls the engine, which calls the application, as
/// its last act. Main thread.
class CameraSteps {
public:
    enum class Pace { atOnce, animated };

    /// Zooms so that the ground under a point of the map's view stays there.
    void zoomAbout(TrelmixMapEngine& engine, CGPoint point, double levels, Pace pace);
    /// Brings what a rectangle of the map's view shows to the middle, as large as the view allows.
    void zoomTo(TrelmixMapEngine& engine, const CGRect& box, CGSize view);
    /// A step that is animated begins where the one before is going, not where it has come.
    void moveBy(TrelmixMapEngine& engine, CGSize view, CameraStep step, Pace pace);
    void moveTo(TrelmixMapEngine& engine, const TrelmixMapEngineCamera& camera);
    /// North to the top; from there straight down.
    void faceNorth(TrelmixMapEngine& engine, CGSize view);
    /// The next step begins where the camera has come.
    void forget() { _zooming.reset(); }

private:
    /// A camera that moves has the heading, the tilt and the target where it is going, and the zoom where it
    /// has come.
    struct Zooming {
        float start = 0;
        float goal = 0;
        double time = 0;
    };
    double zoomOf(const TrelmixMapEngineCamera& camera) const;
    void apply(TrelmixMapEngine& engine, std::shared_ptr<TrelmixMapEngineCamera> camera, float goal,
               Pace pace);

    std::optional<Zooming> _zooming;
};

} // namespace trelmix
