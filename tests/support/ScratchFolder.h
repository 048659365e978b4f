#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <unistd.h>

namespace trelmix::apps {

/// A folder of its own for one test, gone with it.
class ScratchFolder {
public:
    ScratchFolder() {
        static std::atomic<int> count{0};
        folder = std::filesystem::temp_directory_path() /
                 ("trelmix-apps-" + std::to_string(::getpid()) + "-" + std::to_string(count++));
        std::filesystem::create_directories(folder);
    }
    ~ScratchFolder() {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return (folder / name).string(); }

    std::string write(const std::string& name, std::span<const std::byte> bytes) const {
        std::filesystem::create_directories((folder / name).parent_path());
        std::ofstream file(folder / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path(name);
    }
    std::string write(const std::string& name, const std::string& text) const {
        return write(name, std::as_bytes(std::span(text)));
    }

    /// All that stands in the file.
    std::string text(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path folder;
};

} // namespace trelmix::apps
