#pragma once

#include "Platform/Network/RetryPolicy.h"

#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/URL.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace trelmix {

struct URLRequest {
    URL url;
    /// Seconds for the whole of it, repeats included, from the moment it leaves the queue.
    double timeout = 10.0;
};

/// Loads addresses on a thread of its own (files on the decoders' pool), in the order they were asked for: at
/// most `kMostAtOnce` at once, at most `kMostPerHost` of one host.
///
/// Follows up to five redirects, to http and https only; checks certificates; repeats what failed for a
/// passing reason (connection refused or reset, a body cut short, status 429 and 5xx) while the request's
/// time lasts. The destructor drops everything that is under way, uncalled, and waits for the thread.
///
/// Its source is longer than others, as it holds the thread's loop too, which shares every word of its state.
class URLSession {
public:
    static constexpr std::size_t kMostAtOnce = 64;
    static constexpr std::size_t kMostPerHost = 6;
    static constexpr int kMostRedirects = 5;

    struct Settings {
        std::string userAgent;
        /// Certificates (PEM) to trust instead of the system's; empty for the system's.
        std::string caFile;
        /// Bytes; larger bodies, decompressed, are failures.
        std::size_t largestBody = std::size_t{16} << 20;
        RetryPolicy retries;
    };

    /// The body of an answer with status 200 to 299, or of a file; else why there is none, as words to put
    /// behind "failed: ".
    struct Answer : Result<std::vector<std::byte>> {
        Answer(Result<std::vector<std::byte>> body) : Result(std::move(body)) {}
        static Answer failure(std::string reason) { return Result::failure(std::move(reason)); }
        /// What was asked for does not exist (status 204, 404 and 410, no such file): the server is well.
        static Answer absence(std::string reason) {
            Answer answer = failure(std::move(reason));
            answer.isAbsent = true;
            return answer;
        }
        bool isAbsent = false;
    };
    /// Called once, on the session's thread or the decoders' pool; must be quick.
    using Completion = std::function<void(Answer)>;

    explicit URLSession(Settings settings);
    ~URLSession();
    URLSession(const URLSession&) = delete;
    URLSession& operator=(const URLSession&) = delete;

    /// Any thread.
    void load(URLRequest request, Completion completion);
    /// For requests that leave the queue from now on. Any thread.
    void setSettings(Settings settings);

private:
    struct State;
    class Worker;
    std::shared_ptr<State> _state;
};

} // namespace trelmix
