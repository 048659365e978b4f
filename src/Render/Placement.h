#pragma once

#include "Platform/Scene/DrawList.h"
#include "Render/IconAtlas.h"
#include "Render/ImageTexture.h"
#include "Render/SlotBuffer.h"

#include <algorithm>
#include <cstdint>

namespace trelmix {

/// 0 to 1; 0 for what is not a number.
inline float fraction(float value) {
    return value > 0 ? std::min(value, 1.0F) : 0.0F;
}

struct MeshBuffers;
class ShaderProgram;

/// How one item of the draw list stands on the graphics processor. The list keeps the item.
struct Placement {
    const DrawItem* item = nullptr;
    DrawKind kind = DrawKind::image;
    /// False for what has nothing to draw: no image, no program, corners that are not finite.
    bool isDrawn = false;
    bool isTranslucent = false;
    /// An image that is multiplied by an opacity or a colour.
    bool isMultiplied = false;
    /// First of the item's quads, in the images' or the discs' buffer.
    std::uint32_t slot = kNoSlot;
    ImageTexture* texture = nullptr;
    IconAtlas::Icon* icon = nullptr;
    MeshBuffers* mesh = nullptr;
    ShaderProgram* program = nullptr;
    /// A fill that is drawn together with others: its part of their indices.
    std::uint32_t firstIndex = 0;
    std::uint32_t indexCount = 0;
    std::uint32_t batch = 0;
};

} // namespace trelmix
