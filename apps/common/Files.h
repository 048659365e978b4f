#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace trelmix::apps {

/// The whole of a file that a user named; the reason is a verb phrase to put behind the file's name ("cannot
/// be opened: ...", "is larger than ...").
Result<std::vector<std::byte>> loadFile(const std::string& path, std::uint64_t maximumBytes);

/// Writes through a temporary file beside the target, so that a full disk never leaves half a picture. Empty
/// when it went well, else a verb phrase as above.
std::string saveFile(const std::string& path, std::span<const std::byte> data);

} // namespace trelmix::apps
