#include "common/Files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace trelmix::apps {

Result<std::vector<std::byte>> loadFile(const std::string& path, std::uint64_t maximumBytes) {
    using Bytes = Result<std::vector<std::byte>>;
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return Bytes::failure("is a folder, not a file");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return Bytes::failure(std::string("cannot be opened: ") + std::strerror(errno != 0 ? errno : EIO));
    }
    // Read in pieces: devices and pipes have no size to ask for.
    std::vector<std::byte> bytes;
    std::vector<char> piece(1U << 16U);
    while (file.read(piece.data(), static_cast<std::streamsize>(piece.size())) || file.gcount() > 0) {
        const auto count = static_cast<std::size_t>(file.gcount());
        if (bytes.size() + count > maximumBytes) {
            return Bytes::failure("is larger than " + std::to_string(maximumBytes) + " bytes");
        }
        const auto view = std::as_bytes(std::span(piece.data(), count));
        bytes.insert(bytes.end(), view.begin(), view.end());
    }
    if (file.bad()) {
        return Bytes::failure("cannot be read to its end");
    }
    return bytes;
}

std::string saveFile(const std::string& path, std::span<const std::byte> data) {
    // A device or a pipe must be written to, not replaced by a file.
    std::error_code error;
    const bool direct =
        std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error);
    const std::string place = direct ? path : path + ".part" + std::to_string(::getpid());
    errno = 0;
    std::ofstream file(place, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    file.close();
    std::string reason;
    if (!file) {
        reason = std::string("cannot be written: ") + std::strerror(errno != 0 ? errno : EIO);
    } else if (!direct && std::rename(place.c_str(), path.c_str()) != 0) {
        reason = std::string("cannot be written: ") + std::strerror(errno);
    }
    if (!reason.empty() && !direct) {
        std::remove(place.c_str());
    }
    return reason;
}

} // namespace trelmix::apps
