#pragma once

#include "Tiles/TileImageCache.h"

#include <Trelmix/Platform/URL.h>

#include <functional>
#include <memory>
#include <optional>

namespace trelmix {

/// Loads a tile's image: from the URL cache or the network, decoded with its levels of detail on the
/// decoders' pool, and remembered once it could be shown. Never cancelled.
///
/// @param done hears of the end once, on the main queue, without an answer when nobody gives one as the
/// network is shut down; never when `asker` has gone by then.
void loadTileImage(const URL& url, std::weak_ptr<void> asker,
                   std::function<void(std::optional<TileAnswer>)> done);

} // namespace trelmix
