#pragma once

#include "BareScene.h"
#include "Render/GLContext.h"
#include "Render/GLShader.h"
#include "Render/Renderer.h"

#include <array>
#include <memory>
#include <vector>

namespace trelmix::bench {

/// A scene drawn into a window with no more calls and no more thought than it takes: straight into it with
/// one sample, with more beside it and resolved there by the driver.
///
/// Longer than other classes, as it shares nothing with the renderer that it is compared with.
class BarePicture {
public:
    BarePicture(const GLContext& context, const Scene& scene, const RenderArea& window, int samples);
    void writeMarkers(const Scene& scene);
    void draw(const Matrix4d& clip);

private:
    void bindForDrawing() const;
    void resolve() const;
    struct Quad {
        GLTexture texture;
        std::array<Vector3d, 4> corners;
        std::size_t firstVertex;
    };
    struct Mesh {
        GLBuffer vertices;
        GLBuffer indices;
        GLsizei count = 0;
    };
    void addTiles(const Scene& scene);
    void addMarkers(const Scene& scene);
    void addMeshes(const Scene& scene);
    void addCircles(const Scene& scene);
    GLTexture upload(const UIImage& image, bool usesLevels) const;
    Mesh makeMesh(const std::vector<float>& vertices, const std::vector<std::uint32_t>& indices) const;
    GLProgram makeProgram(const char* vertex, const char* fragment) const;
    void drawTiles(const Matrix4d& clip);

    std::shared_ptr<GLGraveyard> _graveyard;
    GLCapabilities _capabilities;
    RenderArea _window;
    GLRenderbuffer _sampled;
    GLFramebuffer _beside;
    GLProgram _images, _fills, _lines, _circles;
    std::vector<Quad> _tiles;
    GLBuffer _tileVertices;
    GLTexture _iconSheet;
    Mesh _markers, _polygons, _bands, _discs;
};

} // namespace trelmix::bench
