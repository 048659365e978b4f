#pragma once

#include "Platform/Foundation/RunLoop.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIPinchGestureRecognizer.h"
#include "Platform/View/UIRotationGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"
#include "Platform/View/ViewNode.h"
#include "support/NotFinite.h"
#include "support/TouchStory.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace trelmix {

/// A view with the recognisers a map has, and the log of what they report.
class GestureStage : public testing::Test {
protected:
    struct Delegate : UIGestureRecognizerDelegate {
        bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer& a,
                                                                UIGestureRecognizer& b) override {
            return runTogether && runTogether(a, b);
        }
        std::function<bool(UIGestureRecognizer&, UIGestureRecognizer&)> runTogether;
    };

    GestureStage() {
        Clock::reset();
        RunLoop::main().reset();
        singleTap->requireGestureRecognizerToFail(doubleTap);
        singleTap->requireGestureRecognizerToFail(longPress);
        doubleTap->setNumberOfTapsRequired(2);
        watch("pinch", pinch);
        watch("rotation", rotation);
        watch("pan", pan);
        watch("tap", singleTap);
        watch("double", doubleTap);
        watch("long", longPress);
    }
    void TearDown() override {
        // What these refer to is gone with the test's body; the dispatcher still cancels what is under way.
        onAction = nullptr;
        delegate->runTogether = nullptr;
        story.dispatcher().reset();
        RunLoop::main().reset();
    }

    void watch(const std::string& name, const std::shared_ptr<UIGestureRecognizer>& recognizer) {
        view->addGestureRecognizer(recognizer);
        recognizer->setDelegate(delegate);
        recognizer->addTarget([this, name](UIGestureRecognizer& sender) {
            static const char* const kNames[] = {"possible", "began",     "changed",
                                                 "ended",    "cancelled", "failed"};
            log += name + " " + kNames[static_cast<int>(sender.state())] + "; ";
            if (onAction) {
                onAction(sender);
            }
        });
    }
    std::string takeLog() { return std::exchange(log, {}); }
    bool allAtRest() const {
        for (const auto& recognizer : view->gestureRecognizers()) {
            if (recognizer->state() != UIGestureRecognizerState::possible ||
                recognizer->numberOfTouches() != 0) {
                return false;
            }
        }
        return true;
    }

    std::shared_ptr<ViewNode> view = ViewNode::make({{0, 0}, {400, 800}});
    std::shared_ptr<UIPinchGestureRecognizer> pinch = std::make_shared<UIPinchGestureRecognizer>();
    std::shared_ptr<UIRotationGestureRecognizer> rotation = std::make_shared<UIRotationGestureRecognizer>();
    std::shared_ptr<UIPanGestureRecognizer> pan = std::make_shared<UIPanGestureRecognizer>();
    std::shared_ptr<UITapGestureRecognizer> singleTap = std::make_shared<UITapGestureRecognizer>();
    std::shared_ptr<UITapGestureRecognizer> doubleTap = std::make_shared<UITapGestureRecognizer>();
    std::shared_ptr<UILongPressGestureRecognizer> longPress =
        std::make_shared<UILongPressGestureRecognizer>();
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::function<void(UIGestureRecognizer&)> onAction;
    std::string log;
    TouchStory story{view};
};

} // namespace trelmix
