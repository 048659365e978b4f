#pragma once

#include <Trelmix/TrelmixMapEngineCamera.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace trelmix {

/// A delegate that writes down what it hears, and can be told to do something while it hears it.
class DelegateLog : public TrelmixMapEngineDelegate {
public:
    std::vector<std::string> calls;
    std::vector<std::shared_ptr<TrelmixMapEngineCamera>> records;
    std::function<void()> onWillMove, onIdle;

    void mapViewWillMoveFromGesture(bool fromGesture) override {
        calls.emplace_back(fromGesture ? "willMove(gesture)" : "willMove");
        run(onWillMove);
    }
    void mapViewDidChangeCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override {
        calls.emplace_back("didChange");
        records.push_back(camera);
    }
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override {
        calls.emplace_back("idle");
        records.push_back(camera);
        run(onIdle);
    }
    void mapViewDidLongPressAt(CLLocationCoordinate2D) override { calls.emplace_back("longPress"); }

    std::size_t count(const std::string& call) const {
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
    }

protected:
    /// A copy, since the action may replace itself or destroy this delegate's engine.
    static void run(const std::function<void()>& action) {
        if (const auto copy = action) {
            copy();
        }
    }
};

} // namespace trelmix
