#include "view/MessageLine.h"

namespace trelmix::apps {

namespace {

constexpr std::chrono::seconds kMessageTime{4};
/// Bytes of a message in the window; what is printed is not cut.
constexpr std::size_t kLongestMessage = 400;

} // namespace

void MessageLine::set(const std::string& message) {
    _message = message;
    if (message.size() > kLongestMessage) {
        const auto isInsideCharacter = [&](std::size_t at) { return (message[at] & 0xc0) == 0x80; };
        std::size_t end = kLongestMessage;
        while (isInsideCharacter(end)) {
            --end;
        }
        _message = message.substr(0, end) + " ...";
    }
    _end = Clock::now() + kMessageTime;
}

std::string MessageLine::shown() const {
    return Clock::now() < _end ? _message : std::string();
}

} // namespace trelmix::apps
