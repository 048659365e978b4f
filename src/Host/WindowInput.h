#pragma once

#include "Host/CameraSteps.h"

#include <Trelmix/Host/MapInput.h>

#include <limits>
#include <memory>
#include <optional>

namespace trelmix {

/// The one that works. Whatever calls the host or the engine comes last in a function, as the application may
/// destroy this object in it.
class WindowInput final : public MapInput {
public:
    explicit WindowInput(std::weak_ptr<ViewHost> host) : _host(std::move(host)) {}

    void buttonDown(Button button, CGPoint point, Modifiers modifiers, double time) override;
    void pointerMoved(CGPoint point, double time) override;
    void buttonUp(Button button, CGPoint point, double time) override;
    void pointerLeft() override;
    void wheel(CGPoint point, double notches) override;
    void pinch(CGPoint point, double factor) override;
    void touchBegan(std::int64_t identifier, CGPoint point, double time) override;
    void touchMoved(std::int64_t identifier, CGPoint point, double time) override;
    void touchEnded(std::int64_t identifier, CGPoint point, double time) override;
    void touchCancelled(std::int64_t identifier, double time) override;
    void keyDown(Key key, Modifiers modifiers) override;
    void faceNorth() override;
    void setHome(std::optional<TrelmixMapEngineCamera> camera) override;
    void cancel() override;
    PointerShape pointerShape() const override;
    std::optional<Hover> hover() const override;
    std::optional<CGRect> box() const override;

private:
    static constexpr std::int64_t kMouse = std::numeric_limits<std::int64_t>::min();
    enum class Action { touch, turn, box };
    /// What a button that is down does.
    struct Press {
        Button button = Button::left;
        Action action = Action::touch;
        CGPoint start;
        bool hasMoved = false;
    };
    /// A click that a second one makes a double click.
    struct Click {
        Button button = Button::left;
        CGPoint point;
        double time = 0;
    };
    /// The map in the window, for one call. Empty without a host, and on another thread than the main one.
    struct Map {
        /// Whoever uses it may see the host end in a call, and then ends.
        ViewHost* host = nullptr;
        std::shared_ptr<TrelmixMapEngine> engine;
        CGRect frame;
        explicit operator bool() const { return host != nullptr; }
        bool contains(CGPoint point) const;
        CGPoint inside(CGPoint point) const { return {point.x - frame.origin.x, point.y - frame.origin.y}; }
    };
    Map map(const char* caller) const;
    void zoomAt(const Map& map, CGPoint point, double levels, CameraSteps::Pace pace);
    void finishClick(const Map& map, const Click& click);
    CGRect boxOf(const Map& map, const Press& press) const;

    std::weak_ptr<ViewHost> _host;
    CameraSteps _steps;
    std::optional<CGPoint> _pointer;
    std::optional<Press> _press;
    std::optional<Click> _lastClick;
    std::optional<TrelmixMapEngineCamera> _home;
};

} // namespace trelmix
