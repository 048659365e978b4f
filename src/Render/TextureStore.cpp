#include "Render/TextureStore.h"

#include <algorithm>
#include <chrono>

namespace trelmix {

namespace {

/// What a frame spends on images that it does not show.
constexpr double kSecondsForUnseen = 0.002;

} // namespace

TextureStore::TextureStore(std::shared_ptr<GLGraveyard> graveyard, TextureLimits limits)
    : _graveyard(std::move(graveyard)), _limits(limits) {}

ImageTexture* TextureStore::retain(const std::shared_ptr<const UIImage>& image, bool usesLevels) {
    const Key key{image.get(), usesLevels};
    Used& used = _used[key];
    if (!used.texture) {
        used.texture = std::make_unique<ImageTexture>(image, usesLevels, _limits);
        _keys[used.texture.get()] = key;
        _pending.push_back(used.texture.get());
    }
    ++used.uses;
    return used.texture.get();
}

void TextureStore::release(ImageTexture* texture) {
    const Key key = _keys.find(texture)->second;
    if (--_used.find(key)->second.uses == 0) {
        _released.push_back(key);
    }
}

void TextureStore::dropUnused() {
    for (const Key& key : _released) {
        const auto used = _used.find(key);
        if (used == _used.end() || used->second.uses > 0) {
            continue;
        }
        ImageTexture* texture = used->second.texture.get();
        _pending.erase(std::remove(_pending.begin(), _pending.end(), texture), _pending.end());
        _keys.erase(texture);
        _used.erase(used);
    }
    _released.clear();
}

std::size_t TextureStore::upload(double seconds) {
    using SteadyClock = std::chrono::steady_clock;
    if (_pending.empty()) {
        return 0;
    }
    std::stable_partition(_pending.begin(), _pending.end(),
                          [](const ImageTexture* texture) { return texture->isInView(); });
    // Real time, not the clock of the frames, which stands still while one is drawn.
    const auto start = SteadyClock::now();
    const auto isTimeLeft = [&](const ImageTexture& next) {
        const double elapsed = std::chrono::duration<double>(SteadyClock::now() - start).count();
        return elapsed < (next.isInView() ? seconds : std::min(seconds, kSecondsForUnseen));
    };
    std::size_t bytes = 0;
    auto next = _pending.begin();
    glActiveTexture(GL_TEXTURE0);
    do {
        bytes += (*next)->uploadPiece(_graveyard);
        if ((*next)->isUploaded()) {
            ++next;
        }
    } while (next != _pending.end() && isTimeLeft(**next));
    _pending.erase(_pending.begin(), next);
    return bytes;
}

int TextureStore::waitingInView() const {
    return static_cast<int>(std::count_if(_pending.begin(), _pending.end(),
                                          [](const ImageTexture* texture) { return texture->isInView(); }));
}

const ImageTexture& TextureStore::overlay(const std::shared_ptr<const UIImage>& image) {
    Overlay& overlay = _overlays[image.get()];
    if (overlay.image.lock() != image) {
        overlay.image = image;
        overlay.texture = std::make_unique<ImageTexture>(image, false, _limits);
        glActiveTexture(GL_TEXTURE0);
        while (!overlay.texture->isUploaded()) {
            overlay.texture->uploadPiece(_graveyard);
        }
    }
    return *overlay.texture;
}

void TextureStore::dropDeadOverlays() {
    std::erase_if(_overlays, [](const auto& entry) { return entry.second.image.expired(); });
}

std::size_t TextureStore::byteCount() const {
    std::size_t bytes = 0;
    for (const auto& [key, used] : _used) {
        bytes += used.texture->byteCount();
    }
    for (const auto& [image, overlay] : _overlays) {
        bytes += overlay.texture->byteCount();
    }
    return bytes;
}

} // namespace trelmix
