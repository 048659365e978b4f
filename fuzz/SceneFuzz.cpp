// A scene file is either read or refused in one line; nothing that it names is opened.
#include "common/scene/SceneFile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace trelmix::apps;
    const auto scene = parseSceneFile({reinterpret_cast<const char*>(data), size}, "folder");
    if (!scene && (scene.reason().empty() || scene.reason().find('\n') != std::string::npos)) {
        std::abort();
    }
    if (scene && !faultOfViewSize(scene->view.width, scene->view.height, scene->view.scale).empty()) {
        std::abort();
    }
    return 0;
}
