#include <Trelmix/Host/MapInput.h>

#include "Host/WindowInput.h"

#include <utility>

namespace trelmix {

MapInput::~MapInput() = default;

std::unique_ptr<MapInput> MapInput::make(std::weak_ptr<ViewHost> host) {
    return std::make_unique<WindowInput>(std::move(host));
}

} // namespace trelmix
