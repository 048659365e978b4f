#pragma once

#include "Engine/OverlayNode.h"
#include "Overlays/ScenePlace.h"

#include <Trelmix/TrelmixMapMarker.h>

#include <optional>

namespace trelmix {

/// An icon that keeps its size on screen: upright and turned to the camera, or flat with a rotation of its
/// own.
///
/// Long by its many properties; place and scale, which could stand alone, are in ScenePlace.
class MarkerNode final : public OverlayNode<TrelmixMapMarker> {
public:
    static std::shared_ptr<MarkerNode> make();

    CLLocationCoordinate2D presentedCoordinate() const override { return presentedCoordinateOf(*this); }
    CLLocationCoordinate2D coordinate() const override {
        return readOnMain("coordinate", _coordinate, kCLLocationCoordinate2DInvalid);
    }
    void setCoordinate(CLLocationCoordinate2D coordinate) override;
    void setCoordinate(CLLocationCoordinate2D coordinate, bool animated, double duration) override;
    std::shared_ptr<const UIImage> markerIcon() const override {
        return readOnMain("markerIcon", _markerIcon);
    }
    void setMarkerIcon(std::shared_ptr<const UIImage> icon) override;
    UIColor tint() const override { return readOnMain("tint", _tint); }
    void setTint(UIColor tint) override;
    CGPoint groundAnchor() const override { return readOnMain("groundAnchor", _groundAnchor); }
    void setGroundAnchor(CGPoint anchor) override;
    bool isFlat() const override { return readOnMain("isFlat", _isFlat); }
    void setIsFlat(bool flat) override;
    bool isDraggable() const override { return readOnMain("isDraggable", _isDraggable); }
    void setIsDraggable(bool draggable) override;
    double markerRotation() const override { return readOnMain("markerRotation", _markerRotation); }
    void setMarkerRotation(double degrees) override;
    void setRotation(double degrees, bool animated, double duration) override;
    std::string description() const override;

    void clearEverything() override;
    Coordinate initialTargetCoordinateForProjection() const override { return coordinateOf(_coordinate); }
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;
    void update(float zoom, Radians rotation, Radians viewingAngle) override;

    /// Where the marker belongs, apart from a running move; absent until it has been placed.
    const std::optional<OpenGlPoint>& markerPosition() const { return _place.point(); }
    /// Moves the marker with a finger; its coordinate stays as it is.
    void dragBy(OpenGlPoint offset);

protected:
    void actionsWereCancelled() override;

private:
    /// What the last update that did something was given.
    struct CameraState {
        float zoom;
        Radians rotation;
        Radians viewingAngle;
        double ratio;
        friend bool operator==(const CameraState&, const CameraState&) = default;
    };

    MarkerNode();
    bool place(CLLocationCoordinate2D coordinate);
    void standAtPlace();
    void prepareMarkerIcon();
    /// With the next frame.
    void needUpdate();
    void storeRotation(double degrees);
    void updateMarkerRotation();
    void rotateTo(double degrees, double duration);
    void rotationEnded(std::uint64_t number, Radians rotation);

    CLLocationCoordinate2D _coordinate = kCLLocationCoordinate2DInvalid;
    /// Its latitude gives the size: that of an invalid coordinate would turn the icon inside out.
    GroundPlace _place;
    bool _isFlat = false;
    bool _isDraggable = false;
    double _markerRotation = 0;
    /// The same in single precision, the last that was finite.
    Radians _shownRotation;
    bool _markerRotationActive = false;
    /// Counts animated rotations: an older one's end must not pass for a newer one's.
    std::uint64_t _rotationNumber = 0;
    std::shared_ptr<const UIImage> _markerIcon;
    UIColor _tint = UIColor::whiteColor();
    CGPoint _groundAnchor{0.5, 0.5};
    std::optional<CameraState> _lastCamera;
    bool _needsUpdate = true;
    GroundScale _groundScale;
};

} // namespace trelmix
