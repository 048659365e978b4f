#pragma once

#include "Render/GLObjects.h"

#include <Trelmix/Platform/UIImage.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace trelmix {

/// Small images that share textures, so that what follows one another in painter's order is drawn in one
/// call.
///
/// Every icon is surrounded by copies of its edge, so that filtering near it sees what it would at the edge
/// of a texture of its own. A page grows until the driver's limit or 2048 x 4096 texels; then another is
/// begun.
///
/// Larger than most classes: packing, repacking and uploading change the same pages and icons together.
class IconAtlas {
public:
    static constexpr int kLargestIcon = 256;
    struct Page;
    struct Icon {
        std::weak_ptr<const UIImage> image;
        Page* page = nullptr;
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        int uses = 0;
    };
    struct Page {
        struct Shelf {
            int y;
            int height;
            int used;
        };
        GLTexture texture;
        int width = 0;
        int height = 0;
        int filled = 0; ///< rows taken by shelves
        std::vector<Shelf> shelves;
        std::vector<Icon*> icons;
    };

    IconAtlas(std::shared_ptr<GLGraveyard> graveyard, int maximumTextureSize);

    /// Whether the image is small enough for it.
    bool takes(const UIImage& image) const;
    /// Counts one use. Whoever uses it keeps the image alive. Null when there is no room at all.
    Icon* retain(const std::shared_ptr<const UIImage>& image);
    void release(Icon* icon) { --icon->uses; }
    /// Drops the pages of which nothing is used any more.
    void dropUnusedPages();

    /// Counts the times at which icons have been moved: their texture coordinates have to be written again.
    int generation() const { return _generation; }
    std::size_t uploadedBytes() const { return _uploadedBytes; }
    std::size_t byteCount() const;

private:
    bool place(Icon& icon);
    bool placeOnPage(Icon& icon, Page& page);
    /// Gives the page another size and packs what is used of it anew.
    bool repack(Page& page, int width, int height);
    bool makeRoom(Page& page);
    void allocate(Page& page, int width, int height);
    void upload(const Icon& icon, const UIImage& image);
    /// Of one page: the icons that nothing uses, or all.
    void forget(Page& page, bool everything);

    std::shared_ptr<GLGraveyard> _graveyard;
    int _maximumSize;
    int _generation = 0;
    std::size_t _uploadedBytes = 0;
    std::map<const UIImage*, std::unique_ptr<Icon>> _icons;
    std::vector<std::unique_ptr<Page>> _pages;
    std::vector<std::uint8_t> _scratch;
};

} // namespace trelmix
