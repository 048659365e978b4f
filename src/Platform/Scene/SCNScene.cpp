#include "Platform/Scene/SCNScene.h"

#include "Platform/Foundation/WakeUp.h"

#include <algorithm>

namespace trelmix {

SCNScene::~SCNScene() {
    for (const auto& node : _children) {
        if (node) {
            node->_scene = nullptr;
        }
    }
}

void SCNScene::addChildNode(const std::shared_ptr<SCNNode>& node) {
    if (!node) {
        return;
    }
    node->removeFromParentNode();
    node->_scene = this;
    node->_slot = _children.size();
    node->_drawSequence = _nextSequence++;
    node->_needsDrawing = true;
    _children.push_back(node);
    _spheres.add();
    _snapshot = nullptr;
    orderChanged();
}

void SCNScene::remove(SCNNode& node) {
    node._scene = nullptr;
    // The place may hold the last reference: it is given up only when everything here is consistent again.
    const std::shared_ptr<SCNNode> keep = std::move(_children[node._slot]);
    _children[node._slot] = nullptr;
    _spheres.clear(node._slot);
    ++_emptyPlaces;
    _snapshot = nullptr;
    orderChanged();
    if (_emptyPlaces > 64 && _emptyPlaces * 2 > _children.size()) {
        compact();
    }
}

void SCNScene::contentChanged() {
    _contentChanged = true;
    WakeUp::signal(Wake::frame);
}

void SCNScene::orderChanged() {
    _orderChanged = true;
    WakeUp::signal(Wake::frame);
}

void SCNScene::compact() {
    std::erase(_children, nullptr);
    for (std::size_t i = 0; i < _children.size(); ++i) {
        _children[i]->_slot = i;
    }
    _emptyPlaces = 0;
    _spheres.reset(_children.size());
}

std::shared_ptr<const SCNScene::NodeList> SCNScene::childNodes() {
    if (!_snapshot) {
        auto list = std::make_shared<NodeList>();
        list->reserve(_children.size() - _emptyPlaces);
        std::copy_if(_children.begin(), _children.end(), std::back_inserter(*list),
                     [](const auto& node) { return node != nullptr; });
        _snapshot = std::move(list);
    }
    return _snapshot;
}

void SCNScene::advanceActions(double time) {
    if (_acting.empty()) {
        return;
    }
    // Blocks may start further actions: those wait for the next frame.
    std::vector<std::weak_ptr<SCNNode>> acting = std::move(_acting);
    _acting.clear();
    for (const auto& weak : acting) {
        const std::shared_ptr<SCNNode> node = weak.lock();
        if (node && node->_scene == this && node->advanceActions(time)) {
            _acting.push_back(weak);
        }
    }
    if (hasActions()) {
        WakeUp::signal(Wake::frame);
    }
}

void SCNScene::sortVisible() {
    _painted.clear();
    for (const auto& node : _children) {
        if (node && !node->_isHidden && node->_geometry) {
            _painted.push_back(node.get());
        }
    }
    std::sort(_painted.begin(), _painted.end(), [](const SCNNode* a, const SCNNode* b) {
        if (a->_renderingOrder != b->_renderingOrder) {
            return a->_renderingOrder < b->_renderingOrder;
        }
        return a->_drawSequence != b->_drawSequence ? a->_drawSequence < b->_drawSequence
                                                    : a->_slot < b->_slot;
    });
}

const std::shared_ptr<const DrawList>& SCNScene::collect() {
    if (!_orderChanged && !_contentChanged && _list) {
        return _list;
    }
    if (_orderChanged) {
        sortVisible();
    }
    auto list = std::make_shared<DrawList>();
    list->items.reserve(_painted.size());
    for (SCNNode* node : _painted) {
        if (const auto& item = node->drawItem()) {
            list->items.push_back(item);
        }
    }
    _list = std::move(list);
    _orderChanged = false;
    _contentChanged = false;
    return _list;
}

} // namespace trelmix
