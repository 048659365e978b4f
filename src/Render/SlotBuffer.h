#pragma once

#include "Render/FrameView.h"
#include "Render/GLObjects.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace trelmix {

constexpr std::uint32_t kNoSlot = 0xFFFFFFFF;

/// A vertex buffer cut into slots of four vertices, one for each quad, in no order: an index buffer puts them
/// into the painter's. Adding, moving or dropping one quad leaves the others as they are, and only what was
/// written since is uploaded.
template <class Vertex>
class SlotBuffer {
public:
    explicit SlotBuffer(std::shared_ptr<GLGraveyard> graveyard) : _graveyard(std::move(graveyard)) {}

    /// A slot that is linked before `next`: the quads of one image form a chain.
    std::uint32_t allocate(std::uint32_t next = kNoSlot) {
        std::uint32_t slot = _firstFree;
        if (slot != kNoSlot) {
            _firstFree = _next[slot];
        } else {
            slot = static_cast<std::uint32_t>(_next.size());
            _next.push_back(kNoSlot);
            _vertices.resize(_vertices.size() + 4);
            _spheres.emplace_back();
            _isDirty.push_back(0);
        }
        _next[slot] = next;
        return slot;
    }

    /// Frees the whole chain.
    void release(std::uint32_t slot) {
        while (slot != kNoSlot) {
            const std::uint32_t next = _next[slot];
            _next[slot] = _firstFree;
            _firstFree = slot;
            slot = next;
        }
    }

    std::uint32_t next(std::uint32_t slot) const { return _next[slot]; }
    std::uint32_t slotCount() const { return static_cast<std::uint32_t>(_next.size()); }
    const BoundingSphere& sphere(std::uint32_t slot) const { return _spheres[slot]; }
    BoundingSphere& sphere(std::uint32_t slot) { return _spheres[slot]; }

    /// The four vertices of a slot, to be written.
    Vertex* edit(std::uint32_t slot) {
        if (!_isDirty[slot]) {
            _isDirty[slot] = 1;
            _dirty.push_back(slot);
        }
        return &_vertices[std::size_t{slot} * 4];
    }

    /// Binds the buffer and brings it up to date; returns the bytes written.
    std::size_t upload() {
        if (!_buffer) {
            _buffer = GLBuffer::make(_graveyard);
        }
        glBindBuffer(GL_ARRAY_BUFFER, _buffer.name());
        std::size_t bytes = 0;
        if (_capacity < _next.size()) {
            _capacity = _next.capacity();
            glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(_capacity * kSlotBytes), nullptr,
                         GL_DYNAMIC_DRAW);
            bytes = write(0, slotCount());
        } else if (!_dirty.empty()) {
            bytes = uploadDirty();
        }
        for (const std::uint32_t slot : _dirty) {
            _isDirty[slot] = 0;
        }
        _dirty.clear();
        return bytes;
    }

    void bind() const { glBindBuffer(GL_ARRAY_BUFFER, _buffer.name()); }

private:
    static constexpr std::size_t kSlotBytes = 4 * sizeof(Vertex);
    /// Rewriting a few slots in between is cheaper than another call.
    static constexpr std::uint32_t kBridgedGap = 16;

    std::size_t write(std::uint32_t first, std::uint32_t end) const {
        const std::size_t bytes = std::size_t{end - first} * kSlotBytes;
        glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(first * kSlotBytes),
                        static_cast<GLsizeiptr>(bytes), &_vertices[std::size_t{first} * 4]);
        return bytes;
    }

    std::size_t uploadDirty() {
        std::sort(_dirty.begin(), _dirty.end());
        std::size_t bytes = 0;
        std::uint32_t first = _dirty.front();
        std::uint32_t end = first + 1;
        for (const std::uint32_t slot : _dirty) {
            if (slot > end + kBridgedGap) {
                bytes += write(first, end);
                first = slot;
            }
            end = slot + 1;
        }
        return bytes + write(first, end);
    }

    std::shared_ptr<GLGraveyard> _graveyard;
    GLBuffer _buffer;
    std::size_t _capacity = 0;
    std::vector<Vertex> _vertices;
    std::vector<BoundingSphere> _spheres;
    std::vector<std::uint32_t> _next;
    std::uint32_t _firstFree = kNoSlot;
    std::vector<std::uint32_t> _dirty;
    std::vector<std::uint8_t> _isDirty;
};

} // namespace trelmix
