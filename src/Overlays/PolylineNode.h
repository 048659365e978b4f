#pragma once

#include "Engine/OverlayNode.h"
#include "Overlays/LineMesh.h"
#include "Overlays/LineShader.h"
#include "Overlays/ScenePlace.h"

#include <Trelmix/TrelmixMapPolyline.h>

namespace trelmix {

/// A line of constant width on screen. The mesh is built once per list of vertices; zoom, width and colour
/// only change what the shader is told.
class PolylineNode final : public OverlayNode<TrelmixMapPolyline> {
public:
    static std::shared_ptr<PolylineNode> make();

    UIColor color() const override { return readOnMain("color", _color); }
    void setColor(UIColor color) override;
    float width() const override { return readOnMain("width", _width); }
    void setWidth(float width) override;
    std::vector<CLLocation> polylineVertices() const override {
        return readOnMain("polylineVertices", _polylineVertices);
    }
    void setPolylineVertices(std::vector<CLLocation> vertices) override;
    std::string description() const override;

    Coordinate initialTargetCoordinateForProjection() const override;
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;
    void update(float zoom, Radians rotation, Radians viewingAngle) override;

    float widthInMapPoints() const { return _uniforms->widthInMapPoints(); }
    double hitMargin() const override { return static_cast<double>(widthInMapPoints()) * 0.5; }

    /// Without the vertices at which a line turns back on itself (by 175 degrees or more) and those within
    /// 0.1 m of the one before; the last leg is not looked at.
    static std::vector<CLLocation> cleanedUp(const std::vector<CLLocation>& vertices);

private:
    PolylineNode();
    void showUniforms();
    void preparePolyline();
    /// False when fewer than two different points remain; the old geometry stays.
    bool updateGeometry(const std::vector<OpenGlPoint>& points);

    float _width = 5.0F;
    UIColor _color = UIColor::blueColor();
    std::vector<CLLocation> _polylineVertices;
    std::shared_ptr<LineUniforms> _uniforms = std::make_shared<LineUniforms>();
    std::shared_ptr<const SCNMaterial> _material;
    GroundScale _groundScale;
    WorldMapPoint _origin;
    /// What the width was last computed from.
    float _lastZoom = 0;
    double _lastRatio = 0;
    bool _needsWidth = true;
};

} // namespace trelmix
