/// @file
/// Several listeners on one engine.
#pragma once

#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <mutex>
#include <vector>

namespace trelmix {

/// A delegate that hands every call on to all its members, in the order in which they were added; so that an
/// application and a side view can both listen to one engine.
///
/// Made by `make`, owned by the application, as are its members: it refers to them weakly. Members may come
/// and go inside a call: one that is removed hears nothing more, one that is added hears the next call.
/// Members are added and removed on any thread; calls come as the engine makes them, those for tiles also on
/// the thread that draws.
class TRELMIX_API TrelmixMapEngineDelegateGroup final : public TrelmixMapEngineDelegate {
public:
    /// A group without members.
    static std::shared_ptr<TrelmixMapEngineDelegateGroup> make();
    ~TrelmixMapEngineDelegateGroup() override;

    /// Puts a member last. One that is there already, an empty one, the group itself and a group that leads
    /// back to this one change nothing.
    void addMember(const std::shared_ptr<TrelmixMapEngineDelegate>& member);
    /// A delegate that is no member changes nothing.
    void removeMember(const std::shared_ptr<TrelmixMapEngineDelegate>& member);

    void mapViewWillMoveFromGesture(bool fromGesture) override;
    void mapViewDidChangeCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override;
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override;
    void mapViewDidTapAt(CLLocationCoordinate2D coordinate) override;
    void mapViewDidLongPressAt(CLLocationCoordinate2D coordinate) override;
    /// All members hear of it; handled when one says so.
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    void mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>& overlay) override;
    void mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    void mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    void mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override;
    /// The first member that has an image decides; the rest is not asked.
    std::shared_ptr<const UIImage> tileForX(std::int64_t x, std::int64_t y, std::int64_t zoom) override;
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override;

private:
    using Member = std::weak_ptr<TrelmixMapEngineDelegate>;
    TrelmixMapEngineDelegateGroup();
    /// Calls `hear(member)` for each member that is there when its turn comes, until one answers true.
    template <class F>
    bool untilOne(F&& hear);
    template <class F>
    void all(F&& hear);
    bool has(const Member& member) const;
    std::vector<Member> members() const;
    /// Whether calls to a delegate come to this group.
    bool leadsFrom(const TrelmixMapEngineDelegate& start) const;

    mutable std::mutex _mutex;
    std::vector<Member> _members;
};

} // namespace trelmix
