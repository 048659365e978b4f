#pragma once

#include "Engine/OverlayNode.h"
#include "Overlays/ScenePlace.h"

#include <Trelmix/TrelmixMapMarker.h>

#include <optional>

namespace trelmix {

/// An icon that keeps its size on screen: upright and turned to the camera, or flat with a rotation of its
/// own.
class MarkerNode final : public OverlayNode<TrelmixMapMarker> {
public:
    static std::shared_ptr<MarkerNode> make();

    CLLocationCoordinate2D presentedCoordinate() const override;
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
    void update(float zoom, float rotation, float viewingAngle) override;

    /// Where the marker belongs, apart from a running move; absent until it has been placed.
    const std::optional<OpenGlPoint>& markerPosition() const { return _markerPosition; }
    /// Moves the marker with a finger; its coordinate stays as it is.
    void dragBy(OpenGlPoint offset);

protected:
    void actionsWereCancelled() override;

private:
    /// What the last update that did something was given.
    struct CameraState {
        float zoom;
        float rotation;
        float viewingAngle;
        double ratio;
        friend bool operator==(const CameraState&, const CameraState&) = default;
    };

    MarkerNode();
    bool place(CLLocationCoordinate2D coordinate);
    void changeMarkerPosition(bool animated, double duration);
    void prepareMarkerIcon();
    void storeRotation(double degrees);
    void updateMarkerRotation();
    void rotateTo(double degrees, double duration);
    void rotationEnded(std::uint64_t number, float rotation);

    CLLocationCoordinate2D _coordinate = kCLLocationCoordinate2DInvalid;
    /// The last valid one: the latitude of an invalid one would turn the icon inside out.
    CLLocationCoordinate2D _placedCoordinate = kCLLocationCoordinate2DInvalid;
    std::optional<OpenGlPoint> _markerPosition;
    bool _isFlat = false;
    bool _isDraggable = false;
    double _markerRotation = 0;
    float _markerRotationRad = 0;
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
