#pragma once

#include "Render/GLContext.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"
#include "support/TestWindow.h"

#include <Trelmix/Host/ViewHost.h>

namespace trelmix {

/// A window of 200 x 150 pixels, and its context, which is current.
class WindowFixture : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        openWindow();
    }
    void TearDown() override {
        window.reset();
        context.reset();
        EngineFixture::TearDown();
    }
    void openWindow() {
        window.reset();
        context = std::move(*GLContext::makeOffscreen());
        window = std::make_unique<TestWindow>(200, 150);
    }

    std::unique_ptr<GLContext> context;
    std::unique_ptr<TestWindow> window;
};

} // namespace trelmix
