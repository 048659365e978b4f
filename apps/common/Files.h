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

/// The same for standard output.
std::string writeStandardOutput(std::span<const std::byte> data);

/// Whether both names lead to one file that exists.
bool isSameFile(const std::string& a, const std::string& b);
/// Whether the name leads to a device or a pipe, which is written to rather than replaced.
bool isDeviceOrPipe(const std::string& path);

} // namespace trelmix::apps
