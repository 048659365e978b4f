#include "Platform/View/GestureArbiter.h"

#include "Platform/Foundation/CallerFault.h"
#include "Platform/View/UIGestureRecognizer.h"

#include <Trelmix/Platform/UIView.h>

#include <algorithm>
#include <utility>

namespace trelmix {
namespace {

using Recognizer = std::shared_ptr<UIGestureRecognizer>;

bool allowedByDelegateOf(const Recognizer& asked, const Recognizer& other) {
    const std::shared_ptr<UIGestureRecognizerDelegate> delegate = asked->delegate();
    return delegate && delegate->gestureRecognizerShouldRecognizeSimultaneouslyWith(*asked, *other);
}

bool mayRunTogether(const Recognizer& one, const Recognizer& other) {
    return allowedByDelegateOf(one, other) || allowedByDelegateOf(other, one);
}

} // namespace

GestureArbiter::GestureArbiter(std::weak_ptr<UIView> root, std::function<void(When)> onUnsettled)
    : _root(std::move(root)), _onUnsettled(std::move(onUnsettled)) {}

GestureArbiter::Recognizers GestureArbiter::participants() {
    Recognizers result;
    std::erase_if(_participants, [](const auto& weak) { return weak.expired(); });
    for (const auto& weak : _participants) {
        if (Recognizer recognizer = weak.lock()) {
            result.push_back(std::move(recognizer));
        }
    }
    return result;
}

void GestureArbiter::touchWillBegin(CGPoint location, double time) {
    for (const Recognizer& recognizer : participants()) {
        if (recognizer->isOpen()) {
            recognizer->touchWillBegin(location, time);
        }
    }
    finishEvent();
}

void GestureArbiter::touchBegan(std::uint64_t serial, CGPoint location, double time,
                                const Recognizers& recognizers) {
    for (const Recognizer& recognizer : recognizers) {
        const std::shared_ptr<GestureArbiter> busyWith = recognizer->_arbiter.lock();
        if (busyWith && busyWith.get() != this && !recognizer->isAtRest()) {
            continue;
        }
        recognizer->_arbiter = weak_from_this();
        recognizer->_root = _root;
        const auto isSame = [&](const auto& weak) { return weak.lock() == recognizer; };
        if (std::none_of(_participants.begin(), _participants.end(), isSame)) {
            _participants.push_back(recognizer);
        }
        recognizer->beginTouch(serial, location, time);
    }
    finishEvent();
}

void GestureArbiter::touchesMoved(std::span<const Move> moves, double time) {
    for (const Recognizer& recognizer : participants()) {
        bool isConcerned = false;
        for (const Move& move : moves) {
            isConcerned = recognizer->moveTouch(move.serial, move.location, time) || isConcerned;
        }
        if (isConcerned && recognizer->isOpen()) {
            recognizer->touchesMoved(time);
            recognizer->updateLocation();
        }
    }
    finishEvent();
}

void GestureArbiter::touchEnded(std::uint64_t serial, double time, bool isCancelled) {
    for (const Recognizer& recognizer : participants()) {
        recognizer->endTouch(serial, time, isCancelled);
    }
    finishEvent();
}

void GestureArbiter::advance(double time) {
    while (deadlinesPass(time)) {
    }
}

bool GestureArbiter::deadlinesPass(double time) {
    const std::optional<double> due = nextDeadline();
    if (!due || *due > time) {
        return false;
    }
    for (const Recognizer& recognizer : participants()) {
        const std::optional<double> deadline = recognizer->openDeadline();
        if (deadline && *deadline <= *due) {
            recognizer->deadlineReached();
        }
    }
    finishEvent();
    return true;
}

void GestureArbiter::cancelAll() {
    for (const Recognizer& recognizer : participants()) {
        recognizer->cancel();
        recognizer->dropTouches();
    }
    finishEvent();
}

void GestureArbiter::settle() {
    finishEvent();
}

void GestureArbiter::askToSettle(When when) {
    _onUnsettled(when);
}

std::optional<double> GestureArbiter::nextDeadline() {
    std::optional<double> next;
    for (const Recognizer& recognizer : participants()) {
        const std::optional<double> deadline = recognizer->openDeadline();
        if (deadline && (!next || *deadline < *next)) {
            next = deadline;
        }
    }
    return next;
}

bool GestureArbiter::isAtRest() {
    return participants().empty();
}

void GestureArbiter::finishEvent() {
    const std::shared_ptr<GestureArbiter> self = shared_from_this();
    do {
        withdrawDetached();
        resolve();
    } while (sendActions());
    for (const Recognizer& recognizer : participants()) {
        recognizer->afterCycle();
    }
    std::erase_if(_participants, [](const auto& weak) {
        const Recognizer recognizer = weak.lock();
        return !recognizer || recognizer->isAtRest();
    });
}

// What has left the tree gets no more touches: whoever held it there may no longer exist.
void GestureArbiter::withdrawDetached() {
    const std::shared_ptr<UIView> root = _root.lock();
    for (const Recognizer& recognizer : participants()) {
        const std::shared_ptr<UIView> view = recognizer->view();
        if (!root || !view || !view->isDescendantOf(*root)) {
            recognizer->withdraw();
        }
    }
}

void GestureArbiter::resolve() {
    bool isChanged = true;
    while (isChanged) {
        isChanged = false;
        for (const Recognizer& recognizer : participants()) {
            isChanged = resolveOne(recognizer) || isChanged;
        }
    }
}

bool GestureArbiter::resolveOne(const Recognizer& recognizer) {
    if (!recognizer->_wantsRecognition) {
        return false;
    }
    bool hasOpenRequirement = false;
    for (const auto& weak : recognizer->_requirements) {
        const Recognizer required = weak.lock();
        if (!required) {
            continue;
        }
        if (required->isActive() || required->_state == UIGestureRecognizerState::ended) {
            recognizer->fail();
            return true;
        }
        hasOpenRequirement = hasOpenRequirement || (required->_state == UIGestureRecognizerState::possible &&
                                                    !required->isAtRest());
    }
    if (isBlocked(recognizer)) {
        recognizer->fail();
        return true;
    }
    // The delegates asked above may have disabled it.
    if (hasOpenRequirement || !recognizer->_wantsRecognition) {
        return false;
    }
    admit(recognizer);
    return true;
}

bool GestureArbiter::isBlocked(const Recognizer& recognizer) {
    for (const Recognizer& other : participants()) {
        if (other != recognizer && other->isActive() && recognizer->sharesTouchWith(*other) &&
            !mayRunTogether(recognizer, other)) {
            return true;
        }
    }
    return false;
}

void GestureArbiter::admit(const Recognizer& recognizer) {
    recognizer->_wantsRecognition = false;
    recognizer->_state =
        recognizer->isDiscrete() ? UIGestureRecognizerState::ended : UIGestureRecognizerState::began;
    recognizer->_actionDue = true;
    for (const Recognizer& other : participants()) {
        if (other != recognizer && other->_state == UIGestureRecognizerState::possible &&
            recognizer->sharesTouchWith(*other) && !mayRunTogether(recognizer, other)) {
            other->fail();
        }
    }
}

bool GestureArbiter::sendActions() {
    bool isAnySent = false;
    for (const Recognizer& recognizer : participants()) {
        if (!std::exchange(recognizer->_actionDue, false)) {
            continue;
        }
        isAnySent = true;
        recognizer->_beganSent = true;
        // A target may add targets.
        const std::vector<UIGestureRecognizer::Action> actions = recognizer->_actions;
        for (const UIGestureRecognizer::Action& action : actions) {
            guarded("a gesture's action threw an exception", [&] { action(*recognizer); });
        }
    }
    return isAnySent;
}

} // namespace trelmix
