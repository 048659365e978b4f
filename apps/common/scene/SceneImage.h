#pragma once

#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <string>

namespace trelmix::apps {

/// An image that a scene names; "name@2x.png" has two pixels a point, "name@3x.png" three. The reason begins
/// with the path.
Result<std::shared_ptr<const UIImage>> loadSceneImage(const std::string& path);

} // namespace trelmix::apps
