#pragma once

#include "Render/ImageTexture.h"

#include <cstddef>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace trelmix {

/// The images of one context's textures.
///
/// A texture lives while a drawn node uses it (`retain`, `release`), one drawn over the picture while its
/// image does.
class TextureStore {
public:
    TextureStore(std::shared_ptr<GLGraveyard> graveyard, TextureLimits limits);

    /// Never null; counts one use. Whoever uses it keeps the image alive.
    ImageTexture* retain(const std::shared_ptr<const UIImage>& image, bool usesLevels);
    /// Takes one use back. The texture stays until `dropUnused`, so that it can go from one node to another.
    void release(ImageTexture* texture);
    void dropUnused();

    /// Uploads what waits until `seconds` are over, at least one piece: first what is in view, then for a
    /// short while the rest, each in the order it was asked for.
    std::size_t upload(double seconds);
    bool isAnyWaiting() const { return !_pending.empty(); }
    int waitingInView() const;

    /// Uploaded at once and whole; kept until the image has gone.
    const ImageTexture& overlay(const std::shared_ptr<const UIImage>& image);
    void dropDeadOverlays();

    std::size_t byteCount() const;

private:
    using Key = std::pair<const UIImage*, bool>;
    struct Used {
        std::unique_ptr<ImageTexture> texture;
        int uses = 0;
    };
    struct Overlay {
        std::weak_ptr<const UIImage> image;
        std::unique_ptr<ImageTexture> texture;
    };

    std::shared_ptr<GLGraveyard> _graveyard;
    TextureLimits _limits;
    std::map<Key, Used> _used;
    std::map<const ImageTexture*, Key> _keys;
    std::vector<Key> _released;
    std::vector<ImageTexture*> _pending;
    std::map<const UIImage*, Overlay> _overlays;
};

} // namespace trelmix
