#include "Overlays/LineShader.h"

namespace trelmix {

const char* const kLineVertexShaderString =
    "#version 100 \n"
    "attribute vec4 a_position; \n"
    "attribute vec4 a_normal; \n"
    "attribute vec4 a_tagent; \n"
    "attribute vec2 textureCoordinate; \n"
    " \n"
    "uniform mat4 u_modelViewProjection; \n"
    "uniform float u_lineWidth; \n"
    " \n"
    "varying vec2 texcoord; \n"
    " \n"
    "void main() { \n"
    "    vec2 normal = normalize(a_normal.xy); \n"
    "    vec2 miter = vec2(-a_tagent.y, a_tagent.x); \n"
    "    float _length = (u_lineWidth * 0.5) / dot(miter, normal); \n"
    "    vec2 translated = a_position.xy + miter * _length; \n"
    "    vec4 pos = u_modelViewProjection * vec4(translated, a_position.zw); \n"
    "    gl_Position = pos; \n"
    "    texcoord = textureCoordinate; \n"
    "}";

const char* const kLineFragmentShaderString =
    "#version 100 \n"
    "uniform lowp vec4 u_color1; \n"
    "uniform lowp vec4 u_color2; \n"
    "varying highp vec2 texcoord; \n"
    " \n"
    "void main() \n"
    "{ \n"
    "     gl_FragColor = u_color1; //mix(u_color1, u_color2, texcoord.x + texcoord.y - 2.0 * texcoord.x * "
    "texcoord.y); \n"
    "}";

float LineUniforms::widthInMapPoints() const {
    const std::lock_guard guard(_mutex);
    return _widthInMapPoints;
}

void LineUniforms::setWidthInMapPoints(float width) {
    const std::lock_guard guard(_mutex);
    _widthInMapPoints = width;
}

std::array<float, 4> LineUniforms::color() const {
    const std::lock_guard guard(_mutex);
    return _color;
}

void LineUniforms::setColor(UIColor color) {
    const UIColor c = color.limited();
    const std::lock_guard guard(_mutex);
    _color = {static_cast<float>(c.red * c.alpha), static_cast<float>(c.green * c.alpha),
              static_cast<float>(c.blue * c.alpha), static_cast<float>(c.alpha)};
}

const std::shared_ptr<const SCNProgram>& lineProgram() {
    static const auto program = std::make_shared<const SCNProgram>(
        SCNProgram{kLineVertexShaderString,
                   kLineFragmentShaderString,
                   {{"a_position", SCNSemantic::vertex},
                    {"a_normal", SCNSemantic::normal},
                    {"textureCoordinate", SCNSemantic::texcoord},
                    {"a_tagent", SCNSemantic::tangent},
                    {"u_modelViewProjection", SCNSemantic::modelViewProjection}}});
    return program;
}

std::shared_ptr<const SCNMaterial> makeLineMaterial(const std::shared_ptr<const LineUniforms>& uniforms) {
    const std::weak_ptr<const LineUniforms> weak = uniforms;
    auto bindings = std::make_shared<std::map<std::string, SCNBindingHandler>>();
    (*bindings)["u_lineWidth"] = [weak](UniformWriter& gl, int location) {
        if (const auto line = weak.lock()) {
            gl.glUniform1f(location, line->widthInMapPoints());
        }
    };
    (*bindings)["u_color1"] = [weak](UniformWriter& gl, int location) {
        if (const auto line = weak.lock()) {
            gl.glUniform4fv(location, 1, line->color().data());
        }
    };
    (*bindings)["u_color2"] = [weak](UniformWriter& gl, int location) {
        if (weak.lock()) {
            const std::array<float, 4> unused{0.5F, 0.0F, 0.0F, 0.5F};
            gl.glUniform4fv(location, 1, unused.data());
        }
    };
    auto material = std::make_shared<SCNMaterial>();
    material->readsFromDepthBuffer = false;
    material->transparencyMode = SCNTransparencyMode::rgbZero;
    material->isDoubleSided = true;
    material->program = lineProgram();
    material->bindings = std::move(bindings);
    return material;
}

} // namespace trelmix
