/// @file
/// Makes engines and overlays.
#pragma once

#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <memory>

namespace trelmix {

/// Every engine and every overlay comes from here. Main thread only.
class TRELMIX_API TrelmixMapEngineFactory {
public:
    /// An engine with an empty frame, fully set up; place its view and give it to a host.
    static std::shared_ptr<TrelmixMapEngine> createMap();
    /// A tile layer on no map yet.
    static std::shared_ptr<TrelmixMapTileLayer> createMapTilesNode();
};

} // namespace trelmix
