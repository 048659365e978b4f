#pragma once

#include "Engine/OverlayNode.h"

#include <Trelmix/TrelmixLevelPlanNode.h>

namespace trelmix {

/// An image on the ground between two corners. As the first overlay of an engine it chooses a camera that
/// shows it whole.
class LevelPlanNode final : public OverlayNode<TrelmixLevelPlanNode> {
public:
    static std::shared_ptr<LevelPlanNode> make(Coordinate southWest, Coordinate northEast);

    CLLocationCoordinate2D southWest() const override {
        return readOnMain("southWest", _southWest, kCLLocationCoordinate2DInvalid);
    }
    void setSouthWest(CLLocationCoordinate2D corner) override;
    CLLocationCoordinate2D northEast() const override {
        return readOnMain("northEast", _northEast, kCLLocationCoordinate2DInvalid);
    }
    void setNorthEast(CLLocationCoordinate2D corner) override;
    std::shared_ptr<const UIImage> levelPlanImage() const override {
        return readOnMain("levelPlanImage", _levelPlanImage);
    }
    void setLevelPlanImage(std::shared_ptr<const UIImage> image) override;
    double levelPlanRotation() const override { return readOnMain("levelPlanRotation", _levelPlanRotation); }
    void setLevelPlanRotation(double degrees) override;
    std::string description() const override;

    Coordinate initialTargetCoordinateForProjection() const override;
    void setupInitialCameraZoom(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;

private:
    LevelPlanNode(Coordinate southWest, Coordinate northEast);
    /// Builds the node anew, when it is set up.
    void rebuild();
    std::shared_ptr<SCNPlane> plane() const;

    std::shared_ptr<const UIImage> _levelPlanImage;
    CLLocationCoordinate2D _southWest;
    CLLocationCoordinate2D _northEast;
    double _levelPlanRotation = 0;
};

} // namespace trelmix
