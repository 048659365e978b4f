#include "Platform/Network/URLSession.h"

#include "Platform/Foundation/FileData.h"
#include "Platform/Foundation/WorkerPool.h"
#include "Platform/Network/HostQueue.h"
#include "Platform/Network/URLTransfer.h"

#include <algorithm>
#include <chrono>
#include <curl/curl.h>
#include <filesystem>
#include <mutex>
#include <random>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

namespace trelmix {
namespace {

using Steady = URLTransfer::Clock;

constexpr std::chrono::milliseconds kLongestSleep{60000};

} // namespace

struct URLSession::State {
    std::mutex mutex;
    std::shared_ptr<const Settings> settings;
    std::vector<std::unique_ptr<URLTransfer>> inbox;
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
    using TransferPointer = std::unique_ptr<URLTransfer>;

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
            (*transfer)->deadline = now + URLTransfer::duration((*transfer)->request.timeout);
            start(std::move(*transfer), now);
        }
    }

    /// Takes over a transfer that has its place in the queue.
    void start(TransferPointer transfer, Steady::time_point now) {
        if (!transfer->prepareAttempt(now) ||
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
            const double chance = std::uniform_real_distribution(0.0, 1.0)(_random);
            if (!transfer->finishAttempt(code, chance)) {
                _retrying.push_back(std::move(transfer));
            }
            tookAny = true;
        }
        return tookAny;
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
    std::vector<std::unique_ptr<URLTransfer>> dropped;
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
            _state->inbox.push_back(std::make_unique<URLTransfer>(std::move(request), std::move(completion)));
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
            std::error_code error;
            const bool isThere = std::filesystem::exists(path, error) || error;
            completion(isThere ? Answer(readFile(path, largest)) : Answer::absence("no such file"));
        });
}

} // namespace trelmix
