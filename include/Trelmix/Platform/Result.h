/// @file
/// A value, or the reason why there is none.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace trelmix {

/// What an operation gives that can fail for reasons outside the program: the value, or one line that names
/// what is wrong. Never both.
template <class T>
class Result {
public:
    /// Success.
    Result(T value) : _value(std::move(value)) {}
    /// Failure. @param reason one line: what is wrong, and where
    static Result failure(std::string reason) { return Result(Reason{std::move(reason)}); }

    /// True when there is a value.
    explicit operator bool() const { return _value.has_value(); }
    /// The value; only while there is one.
    T& operator*() { return *_value; }
    /// The value; only when there is one.
    const T& operator*() const { return *_value; }
    /// Its members; only when there is one.
    T* operator->() { return &*_value; }
    /// Its members; only when there is one.
    const T* operator->() const { return &*_value; }
    /// Empty when there is a value.
    const std::string& reason() const { return _reason; }

private:
    /// A type of its own: T may be a string.
    struct Reason {
        std::string text;
    };
    explicit Result(Reason reason) : _reason(std::move(reason.text)) {}

    std::optional<T> _value;
    std::string _reason;
};

} // namespace trelmix
