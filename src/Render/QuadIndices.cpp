#include "Render/QuadIndices.h"

#include <algorithm>

namespace trelmix {

void QuadIndices::start(std::uint32_t slotCount) {
    _slots.clear();
    _isWide = _has32BitIndices && slotCount > kChunk;
}

std::size_t QuadIndices::upload() {
    if (!_buffer) {
        _buffer = GLBuffer::make(_graveyard);
    }
    bind();
    if (_isWide == _wasWide && _slots == _written) {
        return 0;
    }
    _wasWide = _isWide;
    _written.assign(_slots.begin(), _slots.end());
    return _isWide ? write<std::uint32_t>(0xFFFFFFFF) : write<std::uint16_t>(kChunk - 1);
}

template <class Index>
std::size_t QuadIndices::write(Index mask) {
    const std::size_t bytes = _slots.size() * 6 * sizeof(Index);
    _scratch.resize(bytes);
    auto* out = reinterpret_cast<Index*>(_scratch.data());
    for (const std::uint32_t slot : _slots) {
        const std::uint32_t first = (slot & mask) * 4;
        // Top left, bottom left, top right; top right, bottom left, bottom right.
        for (const std::uint32_t corner : {0U, 2U, 1U, 1U, 2U, 3U}) {
            *out++ = static_cast<Index>(first + corner);
        }
    }
    if (bytes > _capacity) {
        _capacity = bytes + bytes / 2;
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(_capacity), nullptr, GL_DYNAMIC_DRAW);
    }
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(bytes), _scratch.data());
    return bytes;
}

void QuadIndices::draw(std::uint32_t first, std::uint32_t count) const {
    const std::size_t indexBytes = _isWide ? 4 : 2;
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count * 6),
                   _isWide ? GL_UNSIGNED_INT : GL_UNSIGNED_SHORT,
                   reinterpret_cast<const void*>(std::size_t{first} * 6 * indexBytes));
}

} // namespace trelmix
