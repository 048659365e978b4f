#pragma once

#include "Camera/ZoomLimits.h"
#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "support/NotFinite.h"

#include <Trelmix/TrelmixMapMarker.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trelmix {

/// An engine of 800 x 600 points on a stopped clock, without a host: tests step it themselves.
///
/// Everything that the process shares (clock, run loop, zoom limits, marker duration, fault handler) is as
/// new before and after each test. A test fails when it leaves blocks in the main queue, when something keeps
/// its engine alive, and when a caller's fault was reported that it did not take with `takeFaults`.
class EngineFixture : public ::testing::Test {
protected:
    static constexpr double kFrame = 1.0 / 60.0;

    void SetUp() override {
        resetProcess();
        engine = makeEngine();
    }

    void TearDown() override {
        const std::weak_ptr<TrelmixMapEngineSceneView> weak = engine;
        engine.reset();
        lastFrame = {};
        EXPECT_TRUE(weak.expired()) << "something keeps the engine alive";
        EXPECT_TRUE(DispatchQueue::main().isEmpty()) << "blocks are left in the main queue";
        for (const std::string& fault : takeFaults()) {
            ADD_FAILURE() << "caller's fault: " << fault;
        }
        resetProcess();
        setCallerFaultHandler(nullptr);
    }

    static std::shared_ptr<TrelmixMapEngineSceneView> makeEngine(double width = 800, double height = 600) {
        auto made = TrelmixMapEngineSceneView::make({{0, 0}, {width, height}});
        made->layoutIfNeeded();
        return made;
    }

    /// Sets the clock further on, makes a frame (actions, overlay update, draw list), pumps the main queue.
    void step(double seconds = kFrame) {
        Clock::set(Clock::now() + seconds);
        lastFrame = engine->sceneView()->nextFrame(Clock::now());
        RunLoop::main().pump();
    }

    /// The faults reported since the last call.
    static std::vector<std::string> takeFaults() { return std::exchange(faults(), {}); }

    std::shared_ptr<TrelmixMapEngineSceneView> engine;
    /// What the last step gives to draw.
    DrawFrame lastFrame;

private:
    static std::vector<std::string>& faults() {
        static std::vector<std::string> list;
        return list;
    }

    static void resetProcess() {
        RunLoop::main().reset();
        ZoomLimits::reset();
        TrelmixMapMarker::setMarkerAnimationDuration(0.2);
        Clock::reset();
        // Not a time that the running clock may have passed already.
        Clock::set(1001.0);
        faults().clear();
        setCallerFaultHandler([](const char* what) { faults().emplace_back(what); });
    }
};

} // namespace trelmix
