#pragma once

#include "Engine/OverlayNode.h"
#include "Overlays/ScenePlace.h"

#include <Trelmix/TrelmixMapCircle.h>

#include <optional>

namespace trelmix {

/// A disc at true ground size: a plane of one scene unit with round corners, scaled to its diameter.
class CircleNode final : public OverlayNode<TrelmixMapCircle> {
public:
    static std::shared_ptr<CircleNode> make();

    CLLocationCoordinate2D presentedCoordinate() const override { return presentedCoordinateOf(*this); }
    CLLocationCoordinate2D coordinate() const override {
        return readOnMain("coordinate", _coordinate, kCLLocationCoordinate2DInvalid);
    }
    void setCoordinate(CLLocationCoordinate2D coordinate) override;
    double radius() const override { return readOnMain("radius", _radius); }
    void setRadius(double radius) override;
    std::optional<UIColor> color() const override { return readOnMain("color", _color); }
    void setColor(std::optional<UIColor> color) override;
    void updateCircleWithCoordinate(CLLocationCoordinate2D coordinate, double radius, bool animated,
                                    double duration) override;
    std::string description() const override;

    Coordinate initialTargetCoordinateForProjection() const override { return coordinateOf(_coordinate); }
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;

private:
    CircleNode();
    void prepareCircle();
    void store(CLLocationCoordinate2D coordinate);
    /// Whether the circle has a place to show at, and not an invalid centre.
    bool isPlaced() const;
    void showAtOnce();
    float diameter();

    CLLocationCoordinate2D _coordinate = kCLLocationCoordinate2DInvalid;
    GroundPlace _place;
    double _radius = 1.0;
    std::optional<UIColor> _color;
    GroundScale _groundScale;
};

} // namespace trelmix
