#pragma once

#include "Platform/Scene/SCNMaterial.h"

#include <array>
#include <memory>
#include <mutex>

namespace trelmix {

/// GLSL ES 1.00.
extern const char* const kLineVertexShaderString;
extern const char* const kLineFragmentShaderString;

/// What the line's shader is told at every draw: written by the line, read by the thread that draws.
class LineUniforms {
public:
    /// Scene units.
    float widthInMapPoints() const;
    void setWidthInMapPoints(float width);
    /// Premultiplied.
    std::array<float, 4> color() const;
    void setColor(UIColor color);

private:
    mutable std::mutex _mutex;
    float _widthInMapPoints = 0;
    std::array<float, 4> _color{0, 0, 1, 1};
};

/// The one program that all lines share.
const std::shared_ptr<const SCNProgram>& lineProgram();

/// A line's own material. Its handlers hold the uniforms weakly and do nothing once they are gone.
std::shared_ptr<const SCNMaterial> makeLineMaterial(const std::shared_ptr<const LineUniforms>& uniforms);

} // namespace trelmix
