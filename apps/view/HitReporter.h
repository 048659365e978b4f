#pragma once

#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <functional>
#include <string>

namespace trelmix::apps {

/// Says in words what touches hit. Main thread.
class HitReporter : public TrelmixMapEngineDelegate {
public:
    /// @param report hears one line a hit: `tap marker "guest" 53.54,9.98`, `tap map 53.54,9.98`, and of a
    /// GeoJSON feature its name and its properties, `tap polygon "Old Park" {"name":"Old Park","trees":12}`.
    explicit HitReporter(std::function<void(const std::string&)> report) : _report(std::move(report)) {}

    void mapViewDidTapAt(CLLocationCoordinate2D coordinate) override;
    void mapViewDidLongPressAt(CLLocationCoordinate2D coordinate) override;
    /// The map stays where it is.
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    void mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>& overlay) override;
    void mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    void mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;

private:
    std::function<void(const std::string&)> _report;
};

} // namespace trelmix::apps
