#pragma once

#include "Engine/GeoNode.h"
#include "Platform/Foundation/MainEntry.h"

#include <Trelmix/TrelmixMapOverlay.h>

namespace trelmix {

/// The overlay members that every kind has in common, forwarded once to the node.
template <class Protocol>
class OverlayNode : public GeoNode, public Protocol {
public:
    std::shared_ptr<TrelmixMapEngine> map() const override { return attachedMap(); }
    void setMap(std::shared_ptr<TrelmixMapEngine> map) override {
        if (const MainEntry entry{"setMap"}) {
            attachTo(map);
        }
    }
    std::any userInfo() const override { return applicationData(); }
    void setUserInfo(std::any info) override {
        if (const MainEntry entry{"setUserInfo"}) {
            setApplicationData(std::move(info));
        }
    }
    std::int64_t zIndex() const override { return layerIndex(); }
    void setZIndex(std::int64_t zIndex) override {
        if (const MainEntry entry{"setZIndex"}) {
            setLayerIndex(zIndex);
        }
    }
    bool visible() const override { return !isHidden(); }
    void setVisible(bool visible) override {
        if (const MainEntry entry{"setVisible"}) {
            setIsHidden(!visible);
        }
    }
    double opacity() const override { return SCNNode::opacity(); }
    void setOpacity(double opacity) override {
        if (const MainEntry entry{"setOpacity"}) {
            SCNNode::setOpacity(opacity);
        }
    }
    bool tappable() const override { return isTappable(); }
    void setTappable(bool tappable) override {
        if (const MainEntry entry{"setTappable"}) {
            setIsTappable(tappable);
        }
    }
};

} // namespace trelmix
