#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace trelmix::apps {

/// Notices that a file has been written anew. Asks the disk once a second at most.
class FileWatch {
public:
    explicit FileWatch(std::string path) : _path(std::move(path)), _seen(timeOf(_path)) {}

    /// True once for each change; a file that is missing has not changed.
    bool hasChanged() {
        const auto now = std::chrono::steady_clock::now();
        if (now < _nextLook) {
            return false;
        }
        _nextLook = now + std::chrono::seconds(1);
        const auto time = timeOf(_path);
        const bool isNew = time != Time() && time != _seen;
        _seen = isNew ? time : _seen;
        return isNew;
    }

private:
    using Time = std::filesystem::file_time_type;
    static Time timeOf(const std::string& path) {
        std::error_code error;
        const Time time = std::filesystem::last_write_time(path, error);
        return error ? Time() : time;
    }

    std::string _path;
    Time _seen;
    std::chrono::steady_clock::time_point _nextLook;
};

} // namespace trelmix::apps
