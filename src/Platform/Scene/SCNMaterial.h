#pragma once

#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIImage.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>

namespace trelmix {

/// What a binding handler writes its uniform with: the OpenGL ES calls of the same names, on the current
/// program.
class UniformWriter {
public:
    virtual ~UniformWriter() = default;
    virtual void glUniform1f(int location, float value) = 0;
    /// Colours, premultiplied; the node's opacity is worked in.
    virtual void glUniform4fv(int location, int count, const float* values) = 0;
};

/// Which array of a mesh, or which transform, a symbol of a shader program stands for.
enum class SCNSemantic { vertex, normal, tangent, color, texcoord, modelViewProjection };

/// A pair of GLSL ES 1.00 shaders and what their symbols mean. Immutable once shared.
struct SCNProgram {
    std::string vertexShader;
    std::string fragmentShader;
    std::map<std::string, SCNSemantic> symbols;
};

/// Called on the thread that draws, once for every draw of a mesh with the program, with the uniform's
/// location.
using SCNBindingHandler = std::function<void(UniformWriter& gl, int location)>;

enum class SCNTransparencyMode { aOne = 0, rgbZero = 1 };

/// How a geometry's surface looks. A node's look changes by giving it a new material, except for what the
/// binding handlers read.
struct SCNMaterial {
    /// Nothing, a colour or an image.
    std::variant<std::monostate, UIColor, std::shared_ptr<const UIImage>> diffuse;
    /// An image is multiplied by it, after it was multiplied by its own alpha.
    UIColor multiply = UIColor::whiteColor();
    /// Whether a minified image is drawn from its levels of detail.
    bool diffuseUsesLevels = true;
    /// These three are kept and have no effect: there is no depth buffer, every plane is seen from both
    /// sides, and alpha blends.
    bool readsFromDepthBuffer = true;
    bool isDoubleSided = false;
    SCNTransparencyMode transparencyMode = SCNTransparencyMode::aOne;
    std::shared_ptr<const SCNProgram> program;
    std::shared_ptr<const std::map<std::string, SCNBindingHandler>> bindings;
};

} // namespace trelmix
