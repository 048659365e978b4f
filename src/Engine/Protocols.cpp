// The protocols' destructors and the delegate's default answers live here, so that one copy of their type
// information serves casts on both sides of the shared library.

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>
#include <Trelmix/TrelmixMapTileLayer.h>

namespace trelmix {

TrelmixMapOverlay::~TrelmixMapOverlay() = default;
TrelmixMapEngine::~TrelmixMapEngine() = default;
TrelmixMapTileLayer::~TrelmixMapTileLayer() = default;
TrelmixMapMarker::~TrelmixMapMarker() = default;
TrelmixMapCircle::~TrelmixMapCircle() = default;
TrelmixMapPolygon::~TrelmixMapPolygon() = default;
TrelmixMapPolyline::~TrelmixMapPolyline() = default;
TrelmixLevelPlanNode::~TrelmixLevelPlanNode() = default;

TrelmixMapEngineDelegate::~TrelmixMapEngineDelegate() = default;
void TrelmixMapEngineDelegate::mapViewWillMoveFromGesture(bool) {}
void TrelmixMapEngineDelegate::mapViewDidChangeCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) {}
void TrelmixMapEngineDelegate::mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) {}
void TrelmixMapEngineDelegate::mapViewDidTapAt(CLLocationCoordinate2D) {}
void TrelmixMapEngineDelegate::mapViewDidLongPressAt(CLLocationCoordinate2D) {}
bool TrelmixMapEngineDelegate::mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>&) {
    return false;
}
void TrelmixMapEngineDelegate::mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>&) {}
void TrelmixMapEngineDelegate::mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) {}
void TrelmixMapEngineDelegate::mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>&) {}
void TrelmixMapEngineDelegate::mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) {}
std::shared_ptr<const UIImage> TrelmixMapEngineDelegate::tileForX(std::int64_t, std::int64_t, std::int64_t) {
    return nullptr;
}
void TrelmixMapEngineDelegate::tileRequestedForX(std::int64_t, std::int64_t, std::int64_t,
                                                 const std::shared_ptr<TrelmixMapTileLayer>&) {}

} // namespace trelmix
