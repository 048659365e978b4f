#pragma once

#include <Trelmix/Platform/UIImage.h>

#include <string>

namespace trelmix::apps {

/// Empty when a picture may go by that name, else the name and what is wrong with it.
/// @param scenePath the scene that is drawn, which must not be written over.
std::string faultOfPictureName(const std::string& path, const std::string& scenePath);

/// Writes the format that the name's ending asks for: ".png", ".jpg" or ".jpeg", ".webp". "-" is standard
/// output, which like devices and pipes takes a PNG. Empty when it went well, else the name and
/// what went wrong.
std::string savePictureFile(const UIImage& picture, const std::string& path);

} // namespace trelmix::apps
