#include <Trelmix/TrelmixMapEngineDelegateGroup.h>

#include "Platform/Foundation/CallerFault.h"

#include <algorithm>

namespace trelmix {

namespace {

using Delegate = TrelmixMapEngineDelegate;

bool isSame(const std::weak_ptr<Delegate>& a, const std::weak_ptr<Delegate>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

} // namespace

std::shared_ptr<TrelmixMapEngineDelegateGroup> TrelmixMapEngineDelegateGroup::make() {
    return std::shared_ptr<TrelmixMapEngineDelegateGroup>(new TrelmixMapEngineDelegateGroup());
}

TrelmixMapEngineDelegateGroup::TrelmixMapEngineDelegateGroup() = default;
TrelmixMapEngineDelegateGroup::~TrelmixMapEngineDelegateGroup() = default;

void TrelmixMapEngineDelegateGroup::addMember(const std::shared_ptr<TrelmixMapEngineDelegate>& member) {
    // Calls would go round for ever.
    if (!member || leadsFrom(*member)) {
        return;
    }
    const std::lock_guard guard(_mutex);
    std::erase_if(_members, [](const Member& m) { return m.expired(); });
    if (!has(member)) {
        _members.emplace_back(member);
    }
}

bool TrelmixMapEngineDelegateGroup::leadsFrom(const TrelmixMapEngineDelegate& start) const {
    const auto* const group = dynamic_cast<const TrelmixMapEngineDelegateGroup*>(&start);
    if (group == this || group == nullptr) {
        return group == this;
    }
    const std::vector<Member> members = group->members();
    return std::any_of(members.begin(), members.end(), [this](const Member& weak) {
        const auto member = weak.lock();
        return member && leadsFrom(*member);
    });
}

std::vector<TrelmixMapEngineDelegateGroup::Member> TrelmixMapEngineDelegateGroup::members() const {
    const std::lock_guard guard(_mutex);
    return _members;
}

void TrelmixMapEngineDelegateGroup::removeMember(const std::shared_ptr<TrelmixMapEngineDelegate>& member) {
    const std::lock_guard guard(_mutex);
    std::erase_if(_members, [&](const Member& m) { return m.expired() || isSame(m, member); });
}

bool TrelmixMapEngineDelegateGroup::has(const Member& member) const {
    return std::any_of(_members.begin(), _members.end(), [&](const Member& m) { return isSame(m, member); });
}

template <class F>
bool TrelmixMapEngineDelegateGroup::untilOne(F&& hear) {
    for (const Member& weak : members()) {
        // Released after the guard: the member's destructor may call this group.
        std::shared_ptr<Delegate> member;
        {
            const std::lock_guard guard(_mutex);
            if (has(weak)) {
                member = weak.lock();
            }
        }
        // One that throws must not keep the call from those after it.
        if (member &&
            guarded("a member of a delegate group threw an exception", [&] { return hear(*member); })) {
            return true;
        }
    }
    return false;
}

template <class F>
void TrelmixMapEngineDelegateGroup::all(F&& hear) {
    untilOne([&](Delegate& member) {
        hear(member);
        return false;
    });
}

void TrelmixMapEngineDelegateGroup::mapViewWillMoveFromGesture(bool fromGesture) {
    all([&](Delegate& member) { member.mapViewWillMoveFromGesture(fromGesture); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidChangeCamera(
    const std::shared_ptr<TrelmixMapEngineCamera>& camera) {
    all([&](Delegate& member) { member.mapViewDidChangeCamera(camera); });
}

void TrelmixMapEngineDelegateGroup::mapViewIdleAtCamera(
    const std::shared_ptr<TrelmixMapEngineCamera>& camera) {
    all([&](Delegate& member) { member.mapViewIdleAtCamera(camera); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidTapAt(CLLocationCoordinate2D coordinate) {
    all([&](Delegate& member) { member.mapViewDidTapAt(coordinate); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidLongPressAt(CLLocationCoordinate2D coordinate) {
    all([&](Delegate& member) { member.mapViewDidLongPressAt(coordinate); });
}

bool TrelmixMapEngineDelegateGroup::mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) {
    bool isHandled = false;
    all([&](Delegate& member) { isHandled = member.mapViewDidTapMarker(marker) || isHandled; });
    return isHandled;
}

void TrelmixMapEngineDelegateGroup::mapViewDidTapAtOverlay(
    const std::shared_ptr<TrelmixMapOverlay>& overlay) {
    all([&](Delegate& member) { member.mapViewDidTapAtOverlay(overlay); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidBeginDraggingMarker(
    const std::shared_ptr<TrelmixMapMarker>& marker) {
    all([&](Delegate& member) { member.mapViewDidBeginDraggingMarker(marker); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>& marker) {
    all([&](Delegate& member) { member.mapViewDidDragMarker(marker); });
}

void TrelmixMapEngineDelegateGroup::mapViewDidEndDraggingMarker(
    const std::shared_ptr<TrelmixMapMarker>& marker) {
    all([&](Delegate& member) { member.mapViewDidEndDraggingMarker(marker); });
}

std::shared_ptr<const UIImage> TrelmixMapEngineDelegateGroup::tileForX(std::int64_t x, std::int64_t y,
                                                                       std::int64_t zoom) {
    std::shared_ptr<const UIImage> image;
    untilOne([&](Delegate& member) {
        image = member.tileForX(x, y, zoom);
        return image != nullptr;
    });
    return image;
}

void TrelmixMapEngineDelegateGroup::tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                                      const std::shared_ptr<TrelmixMapTileLayer>& layer) {
    all([&](Delegate& member) { member.tileRequestedForX(x, y, zoom, layer); });
}

} // namespace trelmix
