#include "Platform/Foundation/FileData.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trelmix {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20;

class FileHandle {
public:
    explicit FileHandle(int descriptor) : _descriptor(descriptor) {}
    ~FileHandle() {
        if (_descriptor >= 0) {
            ::close(_descriptor);
        }
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }

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

} // namespace

Result<std::vector<std::byte>> readFile(const std::string& path, std::uint64_t maximumBytes) {
    // Opening a pipe would wait for somebody to write.
    const FileHandle file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
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
    if (!S_ISREG(status.st_mode)) {
        return Result<Bytes>::failure("is no file");
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

} // namespace trelmix
