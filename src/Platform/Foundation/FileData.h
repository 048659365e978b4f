#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trelmix {

/// The whole of a file, or why it cannot be had ("cannot open", "is a folder", "is larger than N bytes" ...).
Result<std::vector<std::byte>> readFile(const std::string& path, std::uint64_t maximumBytes = 1ULL << 30);

/// Writes a file through a temporary one beside it, so that a full disk never leaves half a file; empty when
/// it went well, else the reason.
std::string writeFile(const std::string& path, const void* data, std::size_t size);

} // namespace trelmix
