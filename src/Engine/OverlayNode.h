#pragma once

#include "Engine/GeoNode.h"
#include "Platform/Foundation/MainEntry.h"

#include <Trelmix/TrelmixMapOverlay.h>

namespace trelmix {

/// The overlay members that every kind has in common, forwarded once to the node.
template <class Protocol>
class OverlayNode : public GeoNode, public Protocol {
public:
    std::shared_ptr<TrelmixMapEngine> map() const override {
        const MainEntry entry{"map"};
        return entry ? attachedMap() : nullptr;
    }
    void setMap(std::shared_ptr<TrelmixMapEngine> map) override {
        if (const MainEntry entry{"setMap"}) {
            attachTo(map);
        }
    }
    std::any userInfo() const override {
        // Without the lock: what is copied is the application's.
        return requireMainThread("userInfo") ? applicationData() : std::any();
    }
    void setUserInfo(std::any info) override {
        if (const MainEntry entry{"setUserInfo"}) {
            setApplicationData(std::move(info));
        }
    }
    std::int64_t zIndex() const override {
        const MainEntry entry{"zIndex"};
        return entry ? layerIndex() : 0;
    }
    void setZIndex(std::int64_t zIndex) override {
        if (const MainEntry entry{"setZIndex"}) {
            setLayerIndex(zIndex);
        }
    }
    bool visible() const override {
        const MainEntry entry{"visible"};
        return entry && !isHidden();
    }
    void setVisible(bool visible) override {
        if (const MainEntry entry{"setVisible"}) {
            setIsHidden(!visible);
        }
    }
    double opacity() const override {
        const MainEntry entry{"opacity"};
        return entry ? SCNNode::opacity() : 0;
    }
    void setOpacity(double opacity) override {
        if (const MainEntry entry{"setOpacity"}) {
            SCNNode::setOpacity(opacity);
        }
    }
    bool tappable() const override {
        const MainEntry entry{"tappable"};
        return entry && isTappable();
    }
    void setTappable(bool tappable) override {
        if (const MainEntry entry{"setTappable"}) {
            setIsTappable(tappable);
        }
    }
};

} // namespace trelmix
