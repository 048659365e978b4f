#pragma once

#include "Engine/OverlayNode.h"
#include "Platform/Scene/SCNShape.h"

#include <Trelmix/TrelmixMapPolygon.h>

namespace trelmix {

/// A filled outline on the ground. The node stays at the scene's origin; the shape has scene coordinates.
class PolygonNode final : public OverlayNode<TrelmixMapPolygon> {
public:
    static std::shared_ptr<PolygonNode> make();

    std::optional<UIColor> color() const override { return readOnMain("color", _color); }
    void setColor(std::optional<UIColor> color) override;
    std::vector<CLLocation> polygonCorners() const override {
        return readOnMain("polygonCorners", _polygonCorners);
    }
    void setPolygonCorners(std::vector<CLLocation> corners) override;
    std::string description() const override;

    Coordinate initialTargetCoordinateForProjection() const override;
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;

private:
    PolygonNode();
    void preparePolygon();
    std::shared_ptr<const UIBezierPath> outline() const;

    std::optional<UIColor> _color;
    std::vector<CLLocation> _polygonCorners;
    /// The filled outline, kept until the corners or the scene's origin change; without materials.
    std::shared_ptr<const SCNShape> _lastShape;
    WorldMapPoint _lastOrigin;
};

} // namespace trelmix
