/// @file
/// Makes engines and overlays.
#pragma once

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <memory>
#include <vector>

namespace trelmix {

/// Every engine and every overlay comes from here; each call makes a new one. Overlays are on no map yet: set
/// `map` to show them. Main thread only: elsewhere a call is reported as a fault, and what it makes can be
/// used on the main thread alone.
class TRELMIX_API TrelmixMapEngineFactory {
public:
    /// An engine with an empty frame, fully set up; place its view and give it to a host.
    static std::shared_ptr<TrelmixMapEngine> createMap(const MapBehaviour& behaviour = {});
    /// A layer of tiles that asks the engine's delegate and takes the answers later.
    static std::shared_ptr<TrelmixMapTileLayer> createMapTilesNode();
    /// A floor plan. As an engine's first overlay it chooses a camera that shows it whole.
    /// @param image empty: nothing is seen, but the plan takes its place
    static std::shared_ptr<TrelmixLevelPlanNode> createLevelPlanNodeWith(std::shared_ptr<const UIImage> image,
                                                                         CLLocationCoordinate2D southWest,
                                                                         CLLocationCoordinate2D northEast);
    /// An upright marker with the middle of its icon on the coordinate.
    /// @param icon empty: nothing is shown until one is set
    static std::shared_ptr<TrelmixMapMarker> createMapMarkerWith(std::shared_ptr<const UIImage> icon,
                                                                 CLLocationCoordinate2D coordinate);
    /// A disc; it is seen once it has a colour.
    /// @param radius metres
    static std::shared_ptr<TrelmixMapCircle> createMapCircleWithCoordinate(CLLocationCoordinate2D coordinate,
                                                                           double radius);
    /// A filled outline; it is seen once it has a colour.
    /// @param corners in order; only their coordinates are used
    static std::shared_ptr<TrelmixMapPolygon> createMapPolygonWithCorners(std::vector<CLLocation> corners);
    /// A blue line, 5 points wide.
    /// @param vertices in order; only their coordinates are used
    static std::shared_ptr<TrelmixMapPolyline>
    createMapPolylineWithVertices(std::vector<CLLocation> vertices);
};

} // namespace trelmix
