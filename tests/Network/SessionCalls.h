#pragma once

#include "Platform/Network/URLSession.h"

#include <future>
#include <memory>
#include <string>

namespace trelmix {

inline const std::string kBody = "the body of an answer";

inline URLSession::Settings quickSettings(const std::string& caFile = {}) {
    return {"Test/1 (somebody@example.org)", caFile, 1 << 20, {0.01, 0.05}};
}

inline std::string text(const URLSession::Answer& answer) {
    return answer ? std::string(reinterpret_cast<const char*>(answer->data()), answer->size())
                  : "failed: " + answer.reason();
}

inline std::future<URLSession::Answer> begin(URLSession& session, const std::string& url,
                                             double timeout = 10) {
    auto promise = std::make_shared<std::promise<URLSession::Answer>>();
    session.load({URL::fromString(url).value(), timeout},
                 [promise](URLSession::Answer answer) { promise->set_value(std::move(answer)); });
    return promise->get_future();
}

} // namespace trelmix
