#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trelmix {

/// The whole of a regular file, or why it cannot be had ("cannot open", "is a folder", "is no file", "is
/// larger than N bytes" ...).
Result<std::vector<std::byte>> readFile(const std::string& path, std::uint64_t maximumBytes = 1ULL << 30);

} // namespace trelmix
