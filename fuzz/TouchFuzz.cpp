// Random fingers on a view tree: all recognisers are at rest once every finger is up and time has passed.
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/View/TouchDispatcher.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIPinchGestureRecognizer.h"
#include "Platform/View/UIRotationGestureRecognizer.h"
#include "Platform/View/UIScrollView.h"
#include "Platform/View/UITapGestureRecognizer.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace trelmix;

namespace {

/// Hands out the input's bytes; zeros when they are used up.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : _data(data), _left(size) {}
    bool isEmpty() const { return _left == 0; }
    std::uint8_t next() {
        if (_left == 0) {
            return 0;
        }
        --_left;
        return *_data++;
    }
    // Mostly places on the view, now and then anything a double can hold.
    double nextNumber() {
        const std::uint8_t byte = next();
        if (byte < 250) {
            return byte * 1.7;
        }
        std::uint8_t raw[sizeof(double)];
        for (std::uint8_t& value : raw) {
            value = next();
        }
        double number = 0;
        std::memcpy(&number, raw, sizeof number);
        return number;
    }

private:
    const std::uint8_t* _data;
    std::size_t _left;
};

class Stage : public UIGestureRecognizerDelegate,
              public UIScrollViewDelegate,
              public std::enable_shared_from_this<Stage> {
public:
    Stage(Bytes& bytes) : _bytes(bytes) {}

    void build() {
        root->addSubview(scroll);
        scroll->addSubview(content);
        scroll->setContentSize(content->frame().size);
        scroll->setMinimumZoomScale(0.1);
        scroll->setMaximumZoomScale(4);
        scroll->setDelegate(weak_from_this());
        for (const auto& view : {root, std::static_pointer_cast<ViewNode>(scroll), content}) {
            addRecognizers(*view);
        }
    }
    bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer&,
                                                            UIGestureRecognizer&) override {
        return (_answers = _answers * 5 + 3) & 4;
    }
    std::shared_ptr<UIView> viewForZoomingInScrollView(UIScrollView&) override { return content; }

    std::vector<std::shared_ptr<UIGestureRecognizer>> recognizers;
    std::shared_ptr<ViewNode> root = ViewNode::make({{0, 0}, {425, 425}});
    std::shared_ptr<UIScrollView> scroll = UIScrollView::make({{100, 100}, {200, 200}});
    std::shared_ptr<ViewNode> content = ViewNode::make({{0, 0}, {600, 900}});
    std::unique_ptr<TouchDispatcher> dispatcher = std::make_unique<TouchDispatcher>(root);

private:
    void addRecognizers(ViewNode& view) {
        const auto tap = std::make_shared<UITapGestureRecognizer>();
        const auto doubleTap = std::make_shared<UITapGestureRecognizer>();
        const auto press = std::make_shared<UILongPressGestureRecognizer>();
        doubleTap->setNumberOfTapsRequired(2);
        tap->requireGestureRecognizerToFail(doubleTap);
        tap->requireGestureRecognizerToFail(press);
        press->requireGestureRecognizerToFail(_bytes.next() & 1 ? tap : doubleTap);
        const std::shared_ptr<UIGestureRecognizer> added[] = {std::make_shared<UIPinchGestureRecognizer>(),
                                                              std::make_shared<UIRotationGestureRecognizer>(),
                                                              std::make_shared<UIPanGestureRecognizer>(),
                                                              tap,
                                                              doubleTap,
                                                              press};
        for (const auto& recognizer : added) {
            view.addGestureRecognizer(recognizer);
            recognizer->setDelegate(weak_from_this());
            recognizer->addTarget([weak = weak_from_this()](UIGestureRecognizer& sender) {
                if (const auto self = weak.lock()) {
                    self->act(sender);
                }
            });
            recognizers.push_back(recognizer);
        }
    }

    void act(UIGestureRecognizer& sender) {
        const CGPoint location = sender.locationInView(content);
        const auto* pan = dynamic_cast<UIPanGestureRecognizer*>(&sender);
        if (!std::isfinite(location.x + location.y) ||
            (pan && !std::isfinite(pan->velocity(root).x + pan->translation(content).y))) {
            std::abort();
        }
        const std::uint8_t what = _bytes.next();
        if (what == 250) {
            sender.setIsEnabled(false);
        } else if (what == 251) {
            recognizers[_bytes.next() % recognizers.size()]->setIsEnabled(_bytes.next() & 1);
        } else if (what == 252) {
            scroll->removeFromSuperview();
        } else if (what == 253) {
            root->addSubview(scroll);
        } else if (what == 254) {
            dispatcher->cancelAll();
        } else if (const auto view = sender.view(); view && what == 255) {
            ViewNode::of(*view).removeGestureRecognizer(sender.shared_from_this());
        }
    }

    Bytes& _bytes;
    unsigned _answers = 0;
};

void feed(Stage& stage, Bytes& bytes) {
    double time = Clock::now();
    while (!bytes.isEmpty()) {
        const std::uint8_t what = bytes.next();
        const auto phase = static_cast<TouchPhase>(what & 3);
        const auto identifier = static_cast<std::int64_t>(what >> 2 & 3);
        if ((what & 0xC0) == 0xC0) {
            Clock::set(Clock::now() + (what & 0x3F) / 64.0);
            RunLoop::main().pump();
            continue;
        }
        const bool isOddTime = (what & 0xC0) == 0x80;
        time = isOddTime ? bytes.nextNumber() : Clock::now();
        const double x = bytes.nextNumber(), y = bytes.nextNumber();
        stage.dispatcher->handle({identifier, phase, {x, y}, time});
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Clock::reset();
    Clock::set(Clock::now());
    RunLoop::main().reset();
    Bytes bytes(data, size);
    const auto stage = std::make_shared<Stage>(bytes);
    stage->build();
    feed(*stage, bytes);
    for (std::int64_t identifier = 0; identifier < 4; ++identifier) {
        stage->dispatcher->handle({identifier, TouchPhase::ended, {0, 0}, Clock::now()});
    }
    for (int i = 0; i < 4; ++i) {
        Clock::set(Clock::now() + 1);
        RunLoop::main().drain();
    }
    for (const auto& recognizer : stage->recognizers) {
        if (recognizer->state() != UIGestureRecognizerState::possible || recognizer->numberOfTouches() != 0) {
            std::abort();
        }
    }
    if (stage->dispatcher->touchCount() != 0 || !std::isfinite(stage->scroll->zoomScale())) {
        std::abort();
    }
    return 0;
}
