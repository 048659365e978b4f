#include "trelmix/View.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace trelmix::apps {

namespace {

constexpr const char* kWindowProgram = "trelmix-view";

std::filesystem::path besideThisProgram(const char* ownPath) {
    std::error_code error;
    auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        self = ownPath;
    }
    return self.parent_path() / kWindowProgram;
}

} // namespace

ExitCode view(const char* ownPath, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts = arguments;
    texts.insert(texts.begin(), kWindowProgram);
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const std::string beside = besideThisProgram(ownPath).string();
    ::execv(beside.c_str(), pointers.data());
    if (errno == ENOENT) {
        ::execvp(kWindowProgram, pointers.data());
    }
    const std::string reason =
        errno == ENOENT ? "is neither beside this program nor in PATH; build or install it to get a window"
                        : std::string("cannot be started: ") + std::strerror(errno);
    return complain(std::string(kWindowProgram) + ": " + reason, ExitCode::badInput);
}

} // namespace trelmix::apps
