#include "Platform/Network/URLTransfer.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <span>
#include <utility>

namespace trelmix {
namespace {

/// All redirects of an attempt together; nothing honest comes near it.
constexpr std::size_t kMostHeaderBytes = std::size_t{256} << 10;

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

/// Whether the server says that it has nothing there, which is an answer and no fault.
bool isAbsence(long status) {
    return status == 204 || status == 404 || status == 410;
}

std::string wordsFor(CURL* easy, CURLcode code) {
    long systemError = 0;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "unknown host";
    case CURLE_OPERATION_TIMEDOUT:
        return "no answer in time";
    case CURLE_COULDNT_CONNECT:
        curl_easy_getinfo(easy, CURLINFO_OS_ERRNO, &systemError);
        if (systemError == ECONNREFUSED) {
            return "connection refused";
        }
        [[fallthrough]];
    default:
        return curl_easy_strerror(code);
    }
}

} // namespace

URLTransfer::URLTransfer(URLRequest asked, URLSession::Completion answer)
    : request(std::move(asked)), host(request.url.authority()), _completion(std::move(answer)) {}

URLTransfer::Clock::duration URLTransfer::duration(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, 86400.0)));
}

std::size_t URLTransfer::receiveBody(const char* data, std::size_t, std::size_t size, void* target) {
    auto& transfer = *static_cast<URLTransfer*>(target);
    transfer._isTooLarge = size > transfer.settings->largestBody - transfer._body.size();
    if (transfer._isTooLarge) {
        return 0;
    }
    try {
        const auto bytes = std::as_bytes(std::span(data, size));
        transfer._body.insert(transfer._body.end(), bytes.begin(), bytes.end());
    } catch (const std::bad_alloc&) {
        transfer._isTooLarge = true;
        return 0;
    }
    return size;
}

std::size_t URLTransfer::receiveHeader(const char*, std::size_t, std::size_t size, void* target) {
    auto& transfer = *static_cast<URLTransfer*>(target);
    transfer._headerBytes += size;
    return transfer._headerBytes > kMostHeaderBytes ? 0 : size;
}

bool URLTransfer::prepareAttempt(Clock::time_point now) {
    _body.clear();
    _headerBytes = 0;
    _isTooLarge = false;
    easy.reset(curl_easy_init());
    if (!easy) {
        return false;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now).count();
    // A refused option must not quietly leave a check out.
    bool isSet = true;
    const auto set = [&](CURLoption option, auto value) {
        isSet = curl_easy_setopt(easy.get(), option, value) == CURLE_OK && isSet;
    };
    set(CURLOPT_URL, request.url.string().c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, static_cast<long>(URLSession::kMostRedirects));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TIMEOUT_MS, std::max(static_cast<long>(left), 1L));
    set(CURLOPT_USERAGENT, settings->userAgent.c_str());
    set(CURLOPT_WRITEFUNCTION, &receiveBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    // Known before the body comes, when the server says so.
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(settings->largestBody));
    set(CURLOPT_HEADERFUNCTION, &receiveHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    if (!settings->caFile.empty()) {
        set(CURLOPT_CAINFO, settings->caFile.c_str());
    }
    // Whatever this build of the library can do: these may be refused.
    curl_easy_setopt(easy.get(), CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy.get(), CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    // One connection may do for all; without TLS that never happens, and waiting to learn it would cost time.
    curl_easy_setopt(easy.get(), CURLOPT_PIPEWAIT, request.url.scheme() == "https" ? 1L : 0L);
    return isSet;
}

bool URLTransfer::finishAttempt(CURLcode code, double chance) {
    long status = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    if (code == CURLE_OK && status >= 200 && status <= 299 && !isAbsence(status)) {
        answer(URLSession::Answer(std::move(_body)));
        return true;
    }
    lastFault = _isTooLarge ? "an answer of more than " + std::to_string(settings->largestBody) + " bytes"
                : code == CURLE_OK ? "status " + std::to_string(status)
                                   : wordsFor(easy.get(), code);
    if (code == CURLE_OK && isAbsence(status)) {
        answer(URLSession::Answer::absence(lastFault));
        return true;
    }
    const bool isPassing = code == CURLE_OK ? isPassingStatus(status) : isPassingFault(code);
    if (isPassing && planRetry(code == CURLE_OK, chance)) {
        return false;
    }
    fail(lastFault);
    return true;
}

bool URLTransfer::planRetry(bool isAnswered, double chance) {
    curl_off_t wish = 0;
    if (isAnswered) {
        curl_easy_getinfo(easy.get(), CURLINFO_RETRY_AFTER, &wish);
    }
    const auto now = Clock::now();
    const auto remaining = std::chrono::duration<double>(deadline - now).count();
    const auto delay =
        settings->retries.delay(++_failedAttempts, static_cast<double>(wish), remaining, chance);
    easy = nullptr;
    _body = {};
    nextAttempt = now + duration(delay.value_or(0));
    return delay.has_value();
}

void URLTransfer::answer(URLSession::Answer result) {
    easy = nullptr;
    try {
        std::exchange(_completion, nullptr)(std::move(result));
    } catch (...) {
        // Somebody else's fault must not end the thread that serves all.
    }
}

} // namespace trelmix
