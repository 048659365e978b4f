#include "Render/IconAtlas.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace trelmix {

namespace {

/// Texels of repeated edge around an icon: as far as the filter of an icon drawn at half its size reaches.
constexpr int kEdge = 2;

struct PageSize {
    int width;
    int height;
};
constexpr std::array<PageSize, 5> kPageSizes{
    {{256, 256}, {512, 512}, {1024, 1024}, {2048, 2048}, {2048, 4096}}};

} // namespace

IconAtlas::IconAtlas(std::shared_ptr<GLGraveyard> graveyard, int maximumTextureSize)
    : _graveyard(std::move(graveyard)), _maximumSize(maximumTextureSize) {}

bool IconAtlas::takes(const UIImage& image) const {
    const int largest = std::min(kLargestIcon, _maximumSize - 2 * kEdge);
    return image.pixelWidth() <= largest && image.pixelHeight() <= largest;
}

IconAtlas::Icon* IconAtlas::retain(const std::shared_ptr<const UIImage>& image) {
    auto& known = _icons[image.get()];
    if (known && (known->uses > 0 || known->image.lock() == image)) {
        ++known->uses;
        return known.get();
    }
    if (known) {
        // Another image once stood at this address.
        std::erase(known->page->icons, known.get());
    }
    known = std::make_unique<Icon>();
    Icon* icon = known.get();
    icon->image = image;
    icon->width = image->pixelWidth();
    icon->height = image->pixelHeight();
    icon->uses = 1;
    if (!place(*icon)) {
        _icons.erase(image.get());
        return nullptr;
    }
    upload(*icon, *image);
    return icon;
}

bool IconAtlas::place(Icon& icon) {
    for (const auto& page : _pages) {
        if (placeOnPage(icon, *page)) {
            return true;
        }
    }
    if (!_pages.empty()) {
        Page& last = *_pages.back();
        while (makeRoom(last)) {
            if (placeOnPage(icon, last)) {
                return true;
            }
        }
    }
    _pages.push_back(std::make_unique<Page>());
    Page& page = *_pages.back();
    do {
        if (!makeRoom(page)) {
            _pages.pop_back();
            return false;
        }
    } while (!placeOnPage(icon, page));
    return true;
}

bool IconAtlas::placeOnPage(Icon& icon, Page& page) {
    const int width = icon.width + 2 * kEdge;
    const int height = icon.height + 2 * kEdge;
    if (width > page.width) {
        return false;
    }
    Page::Shelf* chosen = nullptr;
    for (Page::Shelf& shelf : page.shelves) {
        if (shelf.height >= height && shelf.height <= height + height / 2 &&
            page.width - shelf.used >= width && (!chosen || shelf.height < chosen->height)) {
            chosen = &shelf;
        }
    }
    if (!chosen) {
        if (page.height - page.filled < height) {
            return false;
        }
        page.shelves.push_back({page.filled, height, 0});
        page.filled += height;
        chosen = &page.shelves.back();
    }
    icon.page = &page;
    icon.x = chosen->used + kEdge;
    icon.y = chosen->y + kEdge;
    chosen->used += width;
    page.icons.push_back(&icon);
    return true;
}

bool IconAtlas::makeRoom(Page& page) {
    for (const PageSize size : kPageSizes) {
        const int width = std::min(size.width, _maximumSize);
        const int height = std::min(size.height, _maximumSize);
        if (width * height > page.width * page.height) {
            return repack(page, width, height);
        }
    }
    const auto unused =
        std::count_if(page.icons.begin(), page.icons.end(), [](const Icon* icon) { return icon->uses == 0; });
    // Less is not worth the uploads.
    return unused > 0 && static_cast<std::size_t>(unused) * 4 >= page.icons.size() &&
           repack(page, page.width, page.height);
}

bool IconAtlas::repack(Page& page, int width, int height) {
    forget(page, false);
    std::vector<Icon*> icons = std::move(page.icons);
    page.icons.clear();
    page.shelves.clear();
    page.filled = 0;
    allocate(page, width, height);
    std::stable_sort(icons.begin(), icons.end(),
                     [](const Icon* a, const Icon* b) { return a->height > b->height; });
    std::vector<Icon*> left;
    for (Icon* icon : icons) {
        if (!placeOnPage(*icon, page)) {
            left.push_back(icon);
        }
    }
    for (Icon* icon : left) {
        // Packed in another order they may need a little more room than before.
        place(*icon);
    }
    for (const Icon* icon : icons) {
        if (const auto image = icon->image.lock()) {
            upload(*icon, *image);
        }
    }
    ++_generation;
    return true;
}

void IconAtlas::allocate(Page& page, int width, int height) {
    page.width = width;
    page.height = height;
    page.texture = GLTexture::make(_graveyard);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, page.texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}

void IconAtlas::upload(const Icon& icon, const UIImage& image) {
    const int width = icon.width + 2 * kEdge;
    const int height = icon.height + 2 * kEdge;
    const auto rowBytes = static_cast<std::size_t>(width) * 4;
    const auto sourceRowBytes = static_cast<std::size_t>(icon.width) * 4;
    _scratch.resize(rowBytes * static_cast<std::size_t>(height));
    for (int row = 0; row < height; ++row) {
        const int sourceRow = std::clamp(row - kEdge, 0, icon.height - 1);
        const std::uint8_t* source =
            image.pixels().data() + static_cast<std::size_t>(sourceRow) * sourceRowBytes;
        std::uint8_t* out = _scratch.data() + static_cast<std::size_t>(row) * rowBytes;
        for (std::size_t i = 0; i < kEdge; ++i) {
            std::memcpy(out + i * 4, source, 4);
            std::memcpy(out + rowBytes - (i + 1) * 4, source + sourceRowBytes - 4, 4);
        }
        std::memcpy(out + std::size_t{kEdge} * 4, source, sourceRowBytes);
    }
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, icon.page->texture.name());
    glTexSubImage2D(GL_TEXTURE_2D, 0, icon.x - kEdge, icon.y - kEdge, width, height, GL_RGBA,
                    GL_UNSIGNED_BYTE, _scratch.data());
    _uploadedBytes += _scratch.size();
}

void IconAtlas::forget(Page& page, bool everything) {
    std::erase_if(page.icons, [&](const Icon* icon) { return everything || icon->uses == 0; });
    std::erase_if(_icons, [&](const auto& entry) {
        const Icon& icon = *entry.second;
        return icon.page == &page && (everything || icon.uses == 0);
    });
}

void IconAtlas::dropUnusedPages() {
    std::erase_if(_pages, [this](const std::unique_ptr<Page>& page) {
        const bool isUsed = std::any_of(page->icons.begin(), page->icons.end(),
                                        [](const Icon* icon) { return icon->uses > 0; });
        if (!isUsed) {
            forget(*page, true);
        }
        return !isUsed;
    });
}

std::size_t IconAtlas::byteCount() const {
    std::size_t bytes = 0;
    for (const auto& page : _pages) {
        bytes += static_cast<std::size_t>(page->width) * static_cast<std::size_t>(page->height) * 4;
    }
    return bytes;
}

} // namespace trelmix
