#include "common/Files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trelmix::apps {

namespace {

class FileHandle {
public:
    explicit FileHandle(int descriptor) : _descriptor(descriptor) {}
    ~FileHandle() { close(); }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }
    bool close() {
        const int descriptor = std::exchange(_descriptor, -1);
        return descriptor < 0 || ::close(descriptor) == 0;
    }

private:
    int _descriptor;
};

std::string cannotBeWritten() {
    return "cannot be written: " + std::error_code(errno, std::generic_category()).message();
}

bool writeAll(int descriptor, std::span<const std::byte> data) {
    while (!data.empty()) {
        const ssize_t written = ::write(descriptor, data.data(), std::min(data.size(), std::size_t{1} << 30));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        data = data.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

std::string writeOver(const std::string& path, std::span<const std::byte> data) {
    FileHandle file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file) {
        return cannotBeWritten();
    }
    return writeAll(file.get(), data) && file.close() ? std::string() : cannotBeWritten();
}

std::string writeBeside(const std::string& path, std::span<const std::byte> data, mode_t mode) {
    static std::atomic<unsigned> counter{0};
    // Of its own short name: the target's may be as long as names can be.
    const std::string name =
        ".trelmix-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
    const std::string temporary = (std::filesystem::path(path).parent_path() / name).string();
    FileHandle file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file) {
        return cannotBeWritten();
    }
    const bool kept = mode == 0 || ::fchmod(file.get(), mode) == 0;
    if (kept && writeAll(file.get(), data) && file.close() &&
        std::rename(temporary.c_str(), path.c_str()) == 0) {
        return {};
    }
    std::string reason = cannotBeWritten();
    ::unlink(temporary.c_str());
    return reason;
}

} // namespace

Result<std::vector<std::byte>> loadFile(const std::string& path, std::uint64_t maximumBytes) {
    using Bytes = Result<std::vector<std::byte>>;
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return Bytes::failure("is a folder, not a file");
    }
    // The shell's own pipes have a writer; one with a name may wait for ever for its first.
    if (std::filesystem::is_fifo(path, error) && !path.starts_with("/dev/")) {
        return Bytes::failure("is a pipe, not a file");
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
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        return writeBeside(path, data, 0);
    }
    if (S_ISDIR(status.st_mode)) {
        return "is a folder, not a file";
    }
    if (isDeviceOrPipe(path)) {
        // Renaming over it would replace it.
        return writeOver(path, data);
    }
    // A link stays a link: the file it leads to is replaced.
    std::error_code error;
    const std::string target = std::filesystem::canonical(path, error).string();
    return writeBeside(error ? path : target, data, status.st_mode & 07777);
}

std::string writeStandardOutput(std::span<const std::byte> data) {
    return writeAll(STDOUT_FILENO, data) ? std::string() : cannotBeWritten();
}

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

bool isDeviceOrPipe(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

} // namespace trelmix::apps
