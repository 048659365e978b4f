#include "Render/RunPainter.h"

namespace trelmix {

std::string RunPainter::prepare(const std::vector<DrawRun>& runs) {
    for (const DrawRun& run : runs) {
        if (std::string reason = prepare(run); !reason.empty()) {
            return reason;
        }
    }
    return {};
}

std::string RunPainter::prepare(const DrawRun& run) {
    switch (run.kind) {
    case DrawRun::Kind::images:
        return _stores.images.prepare(run.isMultiplied, _graveyard);
    case DrawRun::Kind::discs:
        return _stores.discs.prepare(_graveyard);
    case DrawRun::Kind::sharedFills:
    case DrawRun::Kind::largeFill:
        return _stores.fills.prepare(_graveyard);
    case DrawRun::Kind::program:
        return _plan.placement(run).program->prepare(_graveyard, _hasHighPrecision);
    }
    return {};
}

int RunPainter::paint(const std::vector<DrawRun>& runs, const FrameView& view, VertexArrays& arrays) {
    _stores.images.startFrame();
    _stores.discs.startFrame();
    glEnable(GL_BLEND);
    int drawCalls = 0;
    for (const DrawRun& run : runs) {
        drawCalls += paint(run, view, arrays);
    }
    glDisable(GL_BLEND);
    return drawCalls;
}

int RunPainter::paint(const DrawRun& run, const FrameView& view, VertexArrays& arrays) {
    switch (run.kind) {
    case DrawRun::Kind::images:
        paintImages(run, view, arrays);
        return 1;
    case DrawRun::Kind::discs:
        _stores.discs.use(view, arrays);
        _stores.discs.pointAt(run.chunk);
        _stores.indices.bind();
        _stores.indices.draw(run.first, run.count);
        return 1;
    case DrawRun::Kind::sharedFills:
        _stores.fills.useShared(view, arrays);
        _stores.fills.drawShared(run.chunk, run.first, run.count);
        return 1;
    case DrawRun::Kind::largeFill:
        return _stores.fills.drawLarge(_plan.placement(run), view, arrays);
    case DrawRun::Kind::program: {
        const Placement& placement = _plan.placement(run);
        glUseProgram(placement.program->name());
        return placement.program->draw(*placement.mesh, view.matrixFor(placement.item->meshPosition),
                                       *placement.item, arrays);
    }
    }
    return 0;
}

void RunPainter::paintImages(const DrawRun& run, const FrameView& view, VertexArrays& arrays) {
    _stores.images.use(run.isMultiplied, view, arrays);
    _stores.images.pointAt(run.chunk);
    _stores.indices.bind();
    glBindTexture(GL_TEXTURE_2D, run.texture);
    if (!run.isTranslucent) {
        glDisable(GL_BLEND);
    }
    _stores.indices.draw(run.first, run.count);
    if (!run.isTranslucent) {
        glEnable(GL_BLEND);
    }
}

} // namespace trelmix
