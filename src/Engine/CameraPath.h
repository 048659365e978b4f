#pragma once

#include "Camera/CameraProjection.h"
#include "Camera/ZoomLimits.h"
#include "Geo/Radians.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Scene/SCNAction.h"

#include <Trelmix/Platform/CLLocation.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace trelmix {

class TrelmixMapEngineSceneView;

/// A camera as the one camera path takes it: the rotation counter-clockwise; public zoom.
struct CameraChange {
    WorldMapPoint target;
    Radians rotation;
    Radians viewingAngle;
    float zoom = 0;
    bool fromGesture = false;
    bool animated = false;
};

/// The one path by which an engine's camera changes, from the clamped target to the report that it has come
/// to rest.
///
/// A part of its engine, which whoever calls keeps alive: the delegate, called on the way, may drop it. Needs
/// the scene lock.
///
/// The order that the delegate sees: the target is written first, then the change is announced, then
/// rotation, viewing angle and zoom are written. A camera that it sets from inside the announcement ends the
/// outer change. That order is why the whole path stands in one class, long as it is.
class CameraPath {
public:
    /// Seconds of every animated camera change.
    static constexpr double kDuration = 0.2;
    /// 55 degrees in single precision, as cameras are given.
    static constexpr Radians kHighestViewingAngle = Radians{0.9599311}.narrowed();

    explicit CameraPath(TrelmixMapEngineSceneView& engine) : _engine(engine) {}
    ~CameraPath();
    CameraPath(const CameraPath&) = delete;
    CameraPath& operator=(const CameraPath&) = delete;

    /// Empty before the first camera.
    const std::shared_ptr<CameraProjection>& projection() const { return _projection; }
    bool hasInitialZoom() const { return _initialZoom.has_value(); }

    /// Makes the projection when there is none. An invalid or polar coordinate puts the scene's origin at (0,
    /// 0).
    void initialiseProjection(Coordinate coordinate);
    void setupProjection();
    /// The first camera; afterwards only the zoom is recorded. The zoom is finite.
    void initialise(Coordinate target, float zoom);
    /// The first overlay's choice: the current camera at this zoom.
    void applyInitialZoom(float zoom);

    /// The projection's camera as a change that changes nothing; needs a projection.
    CameraChange current() const;
    /// Numbers that are not finite (but for the viewing angle) change nothing. Angles are narrowed.
    void set(CameraChange change);
    enum class Touch { stops, goesOn };
    /// Runs through the poses of so many seconds, from a gesture: announced once, reported when it stands.
    /// Any other camera ends it where it is.
    void run(std::function<CameraPose(double elapsed)> poses, double duration, Touch touch);
    /// A finger has come down: what a touch stops ends where it is, and reports as the end of a gesture.
    void touched();
    /// The public zoom at which what runs will end; the camera's when nothing does.
    float goalZoom() const { return _running ? _running->goalZoom : _projection->mapZoom(); }
    /// The nearest target within the bounds.
    WorldMapPoint canSetCameraToTarget(WorldMapPoint target) const;
    /// Updates the overlays, and tells the delegate from the main queue.
    void informDelegateAboutIdle();

    /// The user's limits, as they were set; until then those of the supported range.
    float highestZoom() const { return _highestZoom.value_or(supportedZooms().highest); }
    float lowestZoom() const { return _lowestZoom.value_or(supportedZooms().lowest); }
    /// Limits of all engines, or of this one, to which its camera keeps at once, as its behaviour wants.
    void setHighestZoom(float zoom);
    void setLowestZoom(float zoom);
    /// The zooms that are ever shown.
    ZoomRange supportedZooms() const;
    /// A public zoom brought within the limits.
    float limitedZoom(float zoom) const;
    /// Brings the camera and what stands on the map to what the engine's behaviour wants.
    void behaviourChanged();

    CLLocationCoordinate2D boundsNorthEast() const { return _boundsNorthEast; }
    void setBoundsNorthEast(CLLocationCoordinate2D corner) { _boundsNorthEast = corner; }
    CLLocationCoordinate2D boundsSouthWest() const { return _boundsSouthWest; }
    void setBoundsSouthWest(CLLocationCoordinate2D corner) { _boundsSouthWest = corner; }

    /// A displacement on screen, points, as a displacement of the target in zoom-22 map points.
    OpenGlPoint normalisedOpenGlPoint(ScreenPoint displacement) const;

private:
    void connectProjection();
    void place(const CameraPose& pose);
    void reportSoon();
    /// False when the delegate has made another camera meanwhile, and this one stops.
    bool announce(bool fromGesture);
    bool apply(const CameraChange& change);
    /// Turns the camera node; animated, answers the action that does.
    std::shared_ptr<const SCNAction> performMapEulerRotate(Radians viewingAngle, Radians rotation,
                                                           bool animated);
    void runAnimation(float startZoom, float goalZoom, std::shared_ptr<const SCNAction> turn);
    void reportWhenAtRest(const CameraChange& change);

    TrelmixMapEngineSceneView& _engine;
    std::shared_ptr<CameraProjection> _projection;
    std::optional<float> _initialZoom;
    std::optional<float> _highestZoom;
    std::optional<float> _lowestZoom;
    std::shared_ptr<Timer> _idleTimer;
    CLLocationCoordinate2D _boundsNorthEast = kCLLocationCoordinate2DInvalid;
    CLLocationCoordinate2D _boundsSouthWest = kCLLocationCoordinate2DInvalid;
    /// Whether a camera has been placed; until then the projection's zoom is a placeholder.
    bool _hasCamera = false;
    struct Running {
        Touch touch;
        float goalZoom;
    };
    std::optional<Running> _running;
    std::uint64_t _changeNumber = 0;
    int _changeDepth = 0;
};

} // namespace trelmix
