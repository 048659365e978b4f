#include "Platform/Scene/Tessellator.h"

#include "Platform/Scene/OutlineSweep.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>

namespace trelmix {

namespace {

/// Beyond this no point has a meaning on the plane; the world is 2^30 units wide.
constexpr double kFarthest = 1e15;

bool isUsable(CGPoint p) {
    return std::abs(p.x) <= kFarthest && std::abs(p.y) <= kFarthest;
}

CGPoint middleOf(const UIBezierPath& path) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    CGPoint least{kInfinity, kInfinity};
    CGPoint greatest{-kInfinity, -kInfinity};
    for (const auto& element : path.elements()) {
        if (isUsable(element.point)) {
            least = {std::min(least.x, element.point.x), std::min(least.y, element.point.y)};
            greatest = {std::max(greatest.x, element.point.x), std::max(greatest.y, element.point.y)};
        }
    }
    return least.x <= greatest.x ? CGPoint{(least.x + greatest.x) * 0.5, (least.y + greatest.y) * 0.5}
                                 : CGPoint{};
}

/// The runs relative to an origin, without repeated points: the library takes them, but slowly.
std::vector<Outline> outlinesOf(const UIBezierPath& path, CGPoint origin) {
    std::vector<Outline> outlines;
    for (const auto& element : path.elements()) {
        if (element.startsSubpath || outlines.empty()) {
            outlines.emplace_back();
        }
        if (!isUsable(element.point)) {
            continue;
        }
        const OutlineCorner corner{element.point.x - origin.x, element.point.y - origin.y, 0};
        if (outlines.back().empty() || outlines.back().back() != corner) {
            outlines.back().push_back(corner);
        }
    }
    std::erase_if(outlines, [](const Outline& outline) { return outline.size() < 3; });
    return outlines;
}

std::vector<Outline> turned(std::vector<Outline> outlines, Turn turn) {
    for (Outline& outline : outlines) {
        for (OutlineCorner& corner : outline) {
            corner = turn.applied(corner);
        }
    }
    return outlines;
}

/// One run of the library: collects triangles as indices into its own list of vertices.
class Filling {
public:
    Filling() : _tess(gluNewTess()) {
        if (!_tess) {
            _failed = true;
            return;
        }
        // Without a normal the library guesses one, and fails on outlines whose area is zero.
        gluTessNormal(_tess, 0, 0, 1);
        gluTessProperty(_tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
        setCallback(GLU_TESS_VERTEX_DATA, &onVertex);
        setCallback(GLU_TESS_COMBINE_DATA, &onCombine);
        setCallback(GLU_TESS_ERROR_DATA, &onError);
        // With one of these the library gives plain triangles, never fans or strips.
        setCallback(GLU_TESS_EDGE_FLAG_DATA, &onEdgeFlag);
    }
    ~Filling() {
        if (_tess) {
            gluDeleteTess(_tess);
        }
    }
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;

    /// @param turn of the plane while the library works
    void add(const std::vector<Outline>& outlines, Turn turn) {
        if (_failed) {
            return;
        }
        _back = turn.back();
        gluTessBeginPolygon(_tess, this);
        for (const Outline& outline : outlines) {
            gluTessBeginContour(_tess);
            for (const OutlineCorner& corner : outline) {
                OutlineCorner turned = turn.applied(corner);
                gluTessVertex(_tess, turned.data(), store(corner));
            }
            gluTessEndContour(_tess);
        }
        gluTessEndPolygon(_tess);
    }

    std::shared_ptr<const SCNMesh> mesh(CGPoint origin) const {
        if (_failed || _triangles.empty()) {
            return nullptr;
        }
        auto mesh = std::make_shared<SCNMesh>();
        mesh->origin = {origin.x, origin.y, 0};
        mesh->vertices.reserve(_vertices.size() * 3);
        for (const Vertex& vertex : _vertices) {
            for (const double value : vertex.place) {
                mesh->vertices.push_back(static_cast<float>(value));
            }
        }
        if (_vertices.size() <= 256) {
            mesh->indices = std::vector<std::uint8_t>(_triangles.begin(), _triangles.end());
        } else {
            mesh->indices = _triangles;
        }
        return mesh;
    }

private:
    struct Vertex {
        OutlineCorner place;
        std::uint32_t index;
    };

    template <class F>
    void setCallback(GLenum which, F* function) {
        gluTessCallback(_tess, which, reinterpret_cast<_GLUfuncptr>(function));
    }

    Vertex* store(const OutlineCorner& place) {
        _vertices.push_back({place, static_cast<std::uint32_t>(_vertices.size())});
        return &_vertices.back();
    }

    static void onVertex(void* vertex, void* self) {
        static_cast<Filling*>(self)->_triangles.push_back(static_cast<Vertex*>(vertex)->index);
    }
    static void onCombine(GLdouble place[3], void* /*neighbours*/[4], GLfloat /*weights*/[4], void** made,
                          void* self) {
        auto& filling = *static_cast<Filling*>(self);
        *made = filling.store(filling._back.applied({place[0], place[1], 0}));
    }
    static void onError(GLenum /*error*/, void* self) { static_cast<Filling*>(self)->_failed = true; }
    static void onEdgeFlag(GLboolean /*isBoundary*/, void* /*self*/) {}

    GLUtesselator* _tess;
    Turn _back;
    bool _failed = false;
    /// The library keeps pointers into it.
    std::deque<Vertex> _vertices;
    std::vector<std::uint32_t> _triangles;
};

} // namespace

std::shared_ptr<const SCNMesh> tessellate(const UIBezierPath& path) {
    const CGPoint origin = middleOf(path);
    const std::vector<Outline> outlines = outlinesOf(path, origin);
    if (outlines.empty()) {
        return nullptr;
    }
    const Turn turn = OutlineSweep::bestTurn(outlines);
    if (!OutlineSweep::isAffordable(turned(outlines, turn))) {
        return nullptr;
    }
    Filling filling;
    filling.add(outlines, turn);
    return filling.mesh(origin);
}

} // namespace trelmix
