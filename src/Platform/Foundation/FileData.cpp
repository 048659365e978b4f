#include "Platform/Foundation/FileData.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trelmix {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20;

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

std::string lastError(const char* what) {
    return std::string(what) + ": " + std::error_code(errno, std::generic_category()).message();
}

using Bytes = std::vector<std::byte>;

Result<Bytes> readAll(int descriptor, std::uint64_t expected, std::uint64_t maximumBytes) {
    Bytes data;
    std::size_t used = 0;
    // One byte more than expected, so that the end of the file is seen without growing.
    data.resize(static_cast<std::size_t>(std::min(expected, maximumBytes)) + 1);
    for (;;) {
        if (used == data.size()) {
            data.resize(used + std::max(kChunk, used / 2));
        }
        const ssize_t got = ::read(descriptor, data.data() + used, data.size() - used);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return Result<Bytes>::failure(lastError("cannot be read"));
        }
        if (got == 0) {
            break;
        }
        used += static_cast<std::size_t>(got);
        if (used > maximumBytes) {
            return Result<Bytes>::failure("is larger than " + std::to_string(maximumBytes) + " bytes");
        }
    }
    data.resize(used);
    return data;
}

bool writeAll(int descriptor, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::byte*>(data);
    while (size > 0) {
        const ssize_t written = ::write(descriptor, bytes, std::min(size, std::size_t{1} << 30));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

std::string writeOver(const std::string& path, const void* data, std::size_t size) {
    FileHandle file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file) {
        return lastError("cannot be written");
    }
    return writeAll(file.get(), data, size) && file.close() ? std::string() : lastError("cannot be written");
}

std::string writeBeside(const std::string& path, const void* data, std::size_t size, mode_t mode) {
    static std::atomic<unsigned> counter{0};
    const std::string temporary =
        path + "." + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
    FileHandle file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file) {
        return lastError("cannot be written");
    }
    const bool kept = mode == 0 || ::fchmod(file.get(), mode) == 0;
    if (kept && writeAll(file.get(), data, size) && file.close() &&
        std::rename(temporary.c_str(), path.c_str()) == 0) {
        return {};
    }
    std::string reason = lastError("cannot be written");
    ::unlink(temporary.c_str());
    return reason;
}

} // namespace

Result<std::vector<std::byte>> readFile(const std::string& path, std::uint64_t maximumBytes) {
    const FileHandle file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        return Result<Bytes>::failure(lastError("cannot open"));
    }
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) {
        return Result<Bytes>::failure(lastError("cannot be read"));
    }
    if (S_ISDIR(status.st_mode)) {
        return Result<Bytes>::failure("is a folder");
    }
    const auto expected = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    if (expected > maximumBytes) {
        return Result<Bytes>::failure("is larger than " + std::to_string(maximumBytes) + " bytes");
    }
    try {
        return readAll(file.get(), expected, maximumBytes);
    } catch (const std::bad_alloc&) {
        return Result<Bytes>::failure("does not fit into memory");
    }
}

std::string writeFile(const std::string& path, const void* data, std::size_t size) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        return writeBeside(path, data, size, 0);
    }
    if (S_ISDIR(status.st_mode)) {
        return "is a folder";
    }
    if (!S_ISREG(status.st_mode)) {
        // Renaming over a device or a pipe would replace it.
        return writeOver(path, data, size);
    }
    // A link stays a link: the file it leads to is replaced.
    std::error_code error;
    const std::string target = std::filesystem::canonical(path, error).string();
    return writeBeside(error ? path : target, data, size, status.st_mode & 07777);
}

} // namespace trelmix
