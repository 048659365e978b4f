#include "Platform/Network/URLSession.h"

#include "Platform/Foundation/FileData.h"
#include "Platform/Foundation/WorkerPool.h"
#include "Platform/Network/HostQueue.h"

#include <algorithm>
#include <chrono>
#include <curl/curl.h>
#include <filesystem>
#include <mutex>
#include <optional>
#include <random>
#include <span>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

namespace trelmix {
namespace {

using Steady = std::chrono::steady_clock;

/// All redirects of an attempt together; nothing honest comes near it.
constexpr std::size_t kMostHeaderBytes = std::size_t{256} << 10;
constexpr std::chrono::milliseconds kLongestSleep{60000};

struct EasyDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

Steady::duration seconds(double value) {
    return std::chrono::duration_cast<Steady::duration>(
        std::chrono::duration<double>(std::clamp(value, 0.0, 86400.0)));
}

/// One request, from the call to its answer.
struct Transfer {
    Transfer(URLRequest asked, URLSession::Completion answer)
        : request(std::move(asked)), completion(std::move(answer)), host(request.url.authority()) {}

    URLRequest request;
    URLSession::Completion completion;
    std::string host;
    /// Set when it leaves the queue.
    std::shared_ptr<const URLSession::Settings> settings;
    Steady::time_point deadline;
    Steady::time_point nextAttempt;
    int failedAttempts = 0;
    std::string lastFault;

    std::unique_ptr<CURL, EasyDeleter> easy;
    std::vector<std::byte> body;
    std::size_t headerBytes = 0;
    bool isTooLarge = false;

    void answer(URLSession::Answer result) {
        easy = nullptr;
        try {
            std::exchange(completion, nullptr)(std::move(result));
        } catch (...) {
            // Somebody else's fault must not end the thread that serves all.
        }
    }
    void fail(std::string reason) { answer(URLSession::Answer::failure(std::move(reason))); }
};

std::size_t receiveBody(const char* data, std::size_t, std::size_t size, void* target) {
    auto& transfer = *static_cast<Transfer*>(target);
    transfer.isTooLarge = size > transfer.settings->largestBody - transfer.body.size();
    if (transfer.isTooLarge) {
        return 0;
    }
    try {
        const auto bytes = std::as_bytes(std::span(data, size));
        transfer.body.insert(transfer.body.end(), bytes.begin(), bytes.end());
    } catch (const std::bad_alloc&) {
        transfer.isTooLarge = true;
        return 0;
    }
    return size;
}

std::size_t receiveHeader(const char*, std::size_t, std::size_t size, void* target) {
    auto& transfer = *static_cast<Transfer*>(target);
    transfer.headerBytes += size;
    return transfer.headerBytes > kMostHeaderBytes ? 0 : size;
}

/// A fresh handle for the next attempt of the transfer; false when the library gives none.
bool prepareAttempt(Transfer& transfer, Steady::time_point now) {
    transfer.body.clear();
    transfer.headerBytes = 0;
    transfer.isTooLarge = false;
    transfer.easy.reset(curl_easy_init());
    CURL* const easy = transfer.easy.get();
    if (easy == nullptr) {
        return false;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(transfer.deadline - now).count();
    const URLSession::Settings& settings = *transfer.settings;
    // A refused option must not quietly leave a check out.
    bool isSet = true;
    const auto set = [&](CURLoption option, auto value) {
        isSet = curl_easy_setopt(easy, option, value) == CURLE_OK && isSet;
    };
    set(CURLOPT_URL, transfer.request.url.string().c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, static_cast<long>(URLSession::kMostRedirects));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TIMEOUT_MS, std::max(static_cast<long>(left), 1L));
    set(CURLOPT_USERAGENT, settings.userAgent.c_str());
    set(CURLOPT_WRITEFUNCTION, &receiveBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(&transfer));
    // Known before the body comes, when the server says so.
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(settings.largestBody));
    set(CURLOPT_HEADERFUNCTION, &receiveHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(&transfer));
    if (!settings.caFile.empty()) {
        set(CURLOPT_CAINFO, settings.caFile.c_str());
    }
    // Whatever this build of the library can do: these may be refused.
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    // One connection may do for all; without TLS that never happens, and waiting to learn it would cost time.
    curl_easy_setopt(easy, CURLOPT_PIPEWAIT, transfer.request.url.scheme() == "https" ? 1L : 0L);
    return isSet;
}

bool isPassingFault(CURLcode code) {
    switch (code) {
    case CURLE_COULDNT_CONNECT:
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return true;
    default:
        return false;
    }
}

URLSession::Answer readLocalFile(const std::string& path, std::size_t largest) {
    std::error_code error;
    // Opening a pipe would wait for somebody to write.
    if (!std::filesystem::is_regular_file(path, error)) {
        return URLSession::Answer::failure("is no file");
    }
    return readFile(path, largest);
}

} // namespace

struct URLSession::State {
    std::mutex mutex;
    std::shared_ptr<const Settings> settings;
    std::vector<std::unique_ptr<Transfer>> inbox;
    bool isStopping = false;
    /// Here for waking it; belongs to the worker.
    CURLM* multi = nullptr;
    std::thread thread;

    void wake() {
        if (multi != nullptr) {
            curl_multi_wakeup(multi);
        }
    }
};

/// What the session's thread does and holds.
class URLSession::Worker {
public:
    explicit Worker(std::shared_ptr<State> state) : _state(std::move(state)), _multi(_state->multi) {
        curl_multi_setopt(_multi, CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(kMostPerHost));
        curl_multi_setopt(_multi, CURLMOPT_MAX_TOTAL_CONNECTIONS, static_cast<long>(kMostAtOnce));
    }

    ~Worker() {
        for (auto& [easy, transfer] : _running) {
            curl_multi_remove_handle(_multi, easy);
        }
        _running.clear();
        const std::lock_guard guard(_state->mutex);
        curl_multi_cleanup(std::exchange(_state->multi, nullptr));
    }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void run() {
        while (takeInbox()) {
            startRetries();
            startWaiting();
            int running = 0;
            curl_multi_perform(_multi, &running);
            if (!takeFinished()) {
                sleep();
            }
        }
    }

private:
    using TransferPointer = std::unique_ptr<Transfer>;

    /// False when the session ends.
    bool takeInbox() {
        const std::lock_guard guard(_state->mutex);
        for (TransferPointer& transfer : _state->inbox) {
            const std::string host = transfer->host;
            _queue.push(host, std::move(transfer));
        }
        _state->inbox.clear();
        _settings = _state->settings;
        return !_state->isStopping;
    }

    void startRetries() {
        const auto now = Steady::now();
        for (TransferPointer& transfer : _retrying) {
            if (now >= transfer->deadline) {
                transfer->fail(transfer->lastFault);
                transfer = nullptr;
            } else if (now >= transfer->nextAttempt && _queue.takePlace(transfer->host)) {
                start(std::move(transfer), now);
            }
        }
        std::erase(_retrying, nullptr);
    }

    void startWaiting() {
        while (auto transfer = _queue.takeNext()) {
            const auto now = Steady::now();
            (*transfer)->settings = _settings;
            (*transfer)->deadline = now + seconds((*transfer)->request.timeout);
            start(std::move(*transfer), now);
        }
    }

    /// Takes over a transfer that has its place in the queue.
    void start(TransferPointer transfer, Steady::time_point now) {
        if (!prepareAttempt(*transfer, now) ||
            curl_multi_add_handle(_multi, transfer->easy.get()) != CURLM_OK) {
            _queue.leavePlace(transfer->host);
            transfer->fail("cannot be asked for");
            return;
        }
        CURL* const easy = transfer->easy.get();
        _running.emplace(easy, std::move(transfer));
    }

    bool takeFinished() {
        bool tookAny = false;
        int left = 0;
        while (const CURLMsg* const message = curl_multi_info_read(_multi, &left)) {
            if (message->msg != CURLMSG_DONE) {
                continue;
            }
            // The message goes with the handle.
            const CURLcode code = message->data.result;
            const auto found = _running.find(message->easy_handle);
            curl_multi_remove_handle(_multi, message->easy_handle);
            TransferPointer transfer = std::move(found->second);
            _running.erase(found);
            _queue.leavePlace(transfer->host);
            finish(std::move(transfer), code);
            tookAny = true;
        }
        return tookAny;
    }

    void finish(TransferPointer transfer, CURLcode code) {
        long status = 0;
        curl_easy_getinfo(transfer->easy.get(), CURLINFO_RESPONSE_CODE, &status);
        if (code == CURLE_OK && status >= 200 && status <= 299) {
            transfer->answer(std::move(transfer->body));
            return;
        }
        transfer->lastFault =
            transfer->isTooLarge
                ? "is larger than " + std::to_string(transfer->settings->largestBody) + " bytes"
            : code == CURLE_OK ? "is answered with status " + std::to_string(status)
                               : curl_easy_strerror(code);
        const bool isPassing = code == CURLE_OK ? isPassingStatus(status) : isPassingFault(code);
        if (isPassing && planRetry(*transfer, code == CURLE_OK)) {
            _retrying.push_back(std::move(transfer));
        } else {
            transfer->fail(transfer->lastFault);
        }
    }

    bool planRetry(Transfer& transfer, bool isAnswered) {
        curl_off_t wish = 0;
        if (isAnswered) {
            curl_easy_getinfo(transfer.easy.get(), CURLINFO_RETRY_AFTER, &wish);
        }
        const auto now = Steady::now();
        const auto remaining = std::chrono::duration<double>(transfer.deadline - now).count();
        const auto delay =
            transfer.settings->retries.delay(++transfer.failedAttempts, static_cast<double>(wish), remaining,
                                             std::uniform_real_distribution(0.0, 1.0)(_random));
        transfer.easy = nullptr;
        transfer.body = {};
        transfer.nextAttempt = now + seconds(delay.value_or(0));
        return delay.has_value();
    }

    void sleep() {
        const auto now = Steady::now();
        auto end = now + kLongestSleep;
        for (const TransferPointer& transfer : _retrying) {
            // One that is due and has no place is woken by the transfer that leaves its place.
            end = std::min(end, transfer->nextAttempt > now ? transfer->nextAttempt : transfer->deadline);
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(end - now).count();
        if (curl_multi_poll(_multi, nullptr, 0, static_cast<int>(std::max<decltype(wait)>(wait, 0)),
                            nullptr) != CURLM_OK) {
            // Out of memory, in practice: not the time to turn in circles.
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::shared_ptr<State> _state;
    CURLM* _multi;
    std::shared_ptr<const Settings> _settings;
    HostQueue<TransferPointer> _queue{kMostAtOnce, kMostPerHost};
    std::unordered_map<CURL*, TransferPointer> _running;
    std::vector<TransferPointer> _retrying;
    std::minstd_rand _random{
        static_cast<std::minstd_rand::result_type>(Steady::now().time_since_epoch().count())};
};

URLSession::URLSession(Settings settings) : _state(std::make_shared<State>()) {
    setSettings(std::move(settings));
    // Once for the process, and never undone: other libraries may use it too.
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (ready != CURLE_OK) {
        return;
    }
    _state->multi = curl_multi_init();
    if (_state->multi == nullptr) {
        return;
    }
    try {
        _state->thread = std::thread([state = _state] { Worker(state).run(); });
    } catch (const std::system_error&) {
        curl_multi_cleanup(std::exchange(_state->multi, nullptr));
    }
}

URLSession::~URLSession() {
    std::thread thread;
    std::vector<std::unique_ptr<Transfer>> dropped;
    {
        const std::lock_guard guard(_state->mutex);
        _state->isStopping = true;
        _state->wake();
        thread = std::move(_state->thread);
        dropped.swap(_state->inbox);
    }
    if (thread.get_id() == std::this_thread::get_id()) {
        // The last reference fell inside an answer: the thread cannot wait for itself.
        thread.detach();
    } else if (thread.joinable()) {
        thread.join();
    }
}

void URLSession::setSettings(Settings settings) {
    auto shared = std::make_shared<const Settings>(std::move(settings));
    const std::lock_guard guard(_state->mutex);
    _state->settings.swap(shared);
}

void URLSession::load(URLRequest request, Completion completion) {
    if (!completion) {
        return;
    }
    std::shared_ptr<const Settings> settings;
    {
        const std::lock_guard guard(_state->mutex);
        settings = _state->settings;
        if (request.url.scheme() != "file" && _state->multi != nullptr) {
            _state->inbox.push_back(std::make_unique<Transfer>(std::move(request), std::move(completion)));
            _state->wake();
            return;
        }
    }
    if (request.url.scheme() != "file") {
        completion(Answer::failure("there is no connection to the network"));
        return;
    }
    WorkerPool::decoders().run(
        [path = request.url.filePath(), largest = settings->largestBody, completion = std::move(completion)] {
            completion(readLocalFile(path, largest));
        });
}

} // namespace trelmix
