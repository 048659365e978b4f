#pragma once

#include "Platform/Network/URLSession.h"

#include <chrono>
#include <curl/curl.h>
#include <memory>
#include <string>
#include <vector>

namespace trelmix {

/// One request, from the call to its answer. On the session's thread once it has left the inbox.
class URLTransfer {
public:
    using Clock = std::chrono::steady_clock;

    URLTransfer(URLRequest asked, URLSession::Completion answer);

    /// Makes a fresh handle, `easy`, for the next attempt; false when the library gives none.
    bool prepareAttempt(Clock::time_point now);
    /// Takes the end of an attempt: answers, or sets `nextAttempt`. False when there is going to be another.
    /// @param chance from 0 to 1, for the delay.
    bool finishAttempt(CURLcode code, double chance);
    void fail(std::string reason) { answer(URLSession::Answer::failure(std::move(reason))); }

    /// At most a day.
    static Clock::duration duration(double seconds);

    URLRequest request;
    std::string host;
    /// Set when it leaves the queue, with the deadline.
    std::shared_ptr<const URLSession::Settings> settings;
    Clock::time_point deadline;
    Clock::time_point nextAttempt;
    std::string lastFault;

    struct EasyDeleter {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    std::unique_ptr<CURL, EasyDeleter> easy;

private:
    static std::size_t receiveBody(const char* data, std::size_t, std::size_t size, void* target);
    static std::size_t receiveHeader(const char*, std::size_t, std::size_t size, void* target);
    bool planRetry(bool isAnswered, double chance);
    void answer(URLSession::Answer result);

    URLSession::Completion _completion;
    int _failedAttempts = 0;
    std::vector<std::byte> _body;
    std::size_t _headerBytes = 0;
    bool _isTooLarge = false;
};

} // namespace trelmix
