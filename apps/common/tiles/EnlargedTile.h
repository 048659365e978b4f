#pragma once

#include "common/tiles/TileStore.h"

#include <Trelmix/Platform/UIImage.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace trelmix::apps {

/// The picture so many columns east and rows south (-1, 0 or 1) of another one; empty where there is none.
using PictureBeside = std::function<std::shared_ptr<const UIImage>(std::int64_t east, std::int64_t south)>;

/// The part of a tile's picture that its descendant `tile` covers, `levels` zooms deeper, enlarged to the
/// picture's own size. Bilinear between the centres of the old pixels, so that everything stays at its place
/// on the ground; at the picture's edge with the pixels of the picture beside it, so that lines run on.
std::shared_ptr<const UIImage> enlargedPart(const UIImage& ancestor, const TileIndex& tile,
                                            std::int64_t levels, const PictureBeside& beside);

} // namespace trelmix::apps
