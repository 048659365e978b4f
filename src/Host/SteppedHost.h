#pragma once

#include "Host/HostedEngine.h"
#include "Render/GLContext.h"
#include "Render/Renderer.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <memory>
#include <optional>
#include <string>

namespace trelmix {

/// The host of pictures: a context of its own, which is current only while it draws.
class SteppedHost final : public OffscreenHost {
public:
    SteppedHost(HostedEngine engine, std::unique_ptr<GLContext> context, Renderer::Options options);
    ~SteppedHost() override;

    bool resize(double width, double height, double scale) override;
    void step(double seconds) override;
    bool pump() override;
    void wait(double seconds) override;
    TileCounts settle(double seconds, const std::function<bool(const TileCounts&)>& progress) override;
    Result<std::shared_ptr<const UIImage>> image() override;

private:
    /// With the size of its time: the engine's may have changed since.
    struct Step {
        DrawFrame frame;
        int pixelWidth = 0;
        int pixelHeight = 0;
        double scale = 1;
    };

    /// Why it failed; empty when it did not.
    std::string draw();

    /// Ends with this host.
    std::shared_ptr<const bool> _life = std::make_shared<const bool>(true);
    HostedEngine _engine;
    std::unique_ptr<GLContext> _context;
    std::unique_ptr<Renderer> _renderer;
    std::optional<Step> _last;
};

} // namespace trelmix
