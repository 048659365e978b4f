#pragma once

#include <chrono>
#include <string>

namespace trelmix::apps {

/// The line at the top of the window, which goes after some seconds.
class MessageLine {
public:
    /// What is very long is cut.
    void set(const std::string& message);
    /// The last one, also when its time is over.
    const std::string& last() const { return _message; }
    /// Empty when there is nothing to show now.
    std::string shown() const;

private:
    using Clock = std::chrono::steady_clock;
    std::string _message;
    Clock::time_point _end;
};

} // namespace trelmix::apps
