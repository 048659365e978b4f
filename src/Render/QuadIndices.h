#pragma once

#include "Render/GLObjects.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace trelmix {

/// The index buffer that puts quads of slot buffers into painter's order. Written only when the order or the
/// visible ones change.
class QuadIndices {
public:
    /// Quads that 16-bit indices reach.
    static constexpr std::uint32_t kChunk = 16384;

    QuadIndices(std::shared_ptr<GLGraveyard> graveyard, bool has32BitIndices)
        : _graveyard(std::move(graveyard)), _has32BitIndices(has32BitIndices) {}

    /// Starts a frame whose slots are below `slotCount`.
    void start(std::uint32_t slotCount);
    /// Appends a quad; returns its place in the order.
    std::uint32_t add(std::uint32_t slot) {
        _slots.push_back(slot);
        return static_cast<std::uint32_t>(_slots.size()) - 1;
    }
    /// Quads drawn together have one chunk: the vertices begin at slot `chunk * kChunk`. Always 0 with 32-bit
    /// indices.
    std::uint32_t chunkOf(std::uint32_t slot) const { return _isWide ? 0 : slot / kChunk; }
    /// Binds the buffer and brings it up to date; returns the bytes written.
    std::size_t upload();
    void bind() const { glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _buffer.name()); }
    void draw(std::uint32_t first, std::uint32_t count) const;

private:
    template <class Index>
    std::size_t write(Index mask);

    std::shared_ptr<GLGraveyard> _graveyard;
    bool _has32BitIndices;
    bool _isWide = false;
    bool _wasWide = false;
    GLBuffer _buffer;
    std::size_t _capacity = 0; ///< bytes
    std::vector<std::uint32_t> _slots;
    std::vector<std::uint32_t> _written;
    std::vector<unsigned char> _scratch;
};

} // namespace trelmix
