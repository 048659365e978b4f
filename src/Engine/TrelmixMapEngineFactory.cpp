#include <Trelmix/TrelmixMapEngineFactory.h>

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/MainEntry.h"
#include "SceneKit/MapTileNode.h"

namespace trelmix {

std::shared_ptr<TrelmixMapEngine> TrelmixMapEngineFactory::createMap() {
    return TrelmixMapEngineSceneView::make();
}

std::shared_ptr<TrelmixMapTileLayer> TrelmixMapEngineFactory::createMapTilesNode() {
    return MapTileNode::make();
}

} // namespace trelmix
