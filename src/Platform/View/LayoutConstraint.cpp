#include "Platform/View/LayoutConstraint.h"

#include <cmath>
#include <locale>
#include <sstream>

namespace trelmix {
namespace {

constexpr double kLongestLength = 1e7;

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Formats can come from anywhere: what is quoted back stays one short, printable line.
std::string quoted(std::string_view text) {
    constexpr std::size_t kLongestQuote = 60;
    std::string result = "\"";
    for (const char c : text.substr(0, kLongestQuote)) {
        result += c >= ' ' && c <= '~' ? c : '?';
    }
    return result + (text.size() > kLongestQuote ? "...\"" : "\"");
}

/// Takes the format apart from left to right.
class FormatReader {
public:
    explicit FormatReader(std::string_view rest) : _rest(rest) {}

    bool take(std::string_view expected) {
        if (!_rest.starts_with(expected)) {
            return false;
        }
        _rest.remove_prefix(expected.size());
        return true;
    }
    std::string_view takeUntil(std::string_view ends) {
        const std::string_view taken = _rest.substr(0, _rest.find_first_of(ends));
        _rest.remove_prefix(taken.size());
        return taken;
    }
    bool atEnd() const { return _rest.empty(); }

private:
    std::string_view _rest;
};

bool isName(std::string_view name) {
    if (name.empty() || (name.front() >= '0' && name.front() <= '9')) {
        return false;
    }
    for (const char c : name) {
        if (!isNameCharacter(c)) {
            return false;
        }
    }
    return true;
}

/// The whole text as a decimal number. `from_chars` reads doubles in some standard libraries only.
bool read(std::string_view text, double& number) {
    std::istringstream in{std::string(text)};
    in.imbue(std::locale::classic());
    return (in >> std::noskipws >> number) && in.peek() == std::istringstream::traits_type::eof();
}

Result<double> lengthFor(std::string_view text, const LayoutConstraint::Metrics& metrics) {
    using Failed = Result<double>;
    double length = 0;
    if (isName(text)) {
        const auto metric = metrics.find(std::string(text));
        if (metric == metrics.end()) {
            return Failed::failure("there is no metric " + quoted(text));
        }
        length = metric->second;
    } else if (!read(text, length)) {
        return Failed::failure(quoted(text) + " is neither a number nor the name of a metric");
    }
    if (!(length >= 0 && length <= kLongestLength)) {
        return Failed::failure("the length " + quoted(text) + " is out of range");
    }
    return length;
}

} // namespace

Result<std::vector<LayoutConstraint>> LayoutConstraint::constraintsWithVisualFormat(std::string_view format,
                                                                                    const Metrics& metrics,
                                                                                    const Views& views) {
    using Answer = Result<std::vector<LayoutConstraint>>;
    const auto failure = [&](const std::string& reason) {
        return Answer::failure("layout format " + quoted(format) + ": " + reason);
    };
    FormatReader reader(format);
    const bool isHorizontal = reader.take("H:");
    if (!isHorizontal && !reader.take("V:")) {
        return failure("must start with H: or V:");
    }
    if (!reader.take("|[")) {
        return failure("expected |[ after the axis");
    }
    const std::string_view name = reader.takeUntil("(]");
    if (!isName(name)) {
        return failure(quoted(name) + " is not the name of a view");
    }
    std::optional<double> length;
    if (reader.take("(==")) {
        const Result<double> read = lengthFor(reader.takeUntil(")"), metrics);
        if (!read) {
            return failure(read.reason());
        }
        length = *read;
        if (!reader.take(")")) {
            return failure("the length is not closed");
        }
    }
    if (!reader.take("]|") || !reader.atEnd()) {
        return failure("expected ]| at the end");
    }
    const auto view = views.find(std::string(name));
    if (view == views.end() || view->second.expired()) {
        return failure("there is no view " + quoted(name));
    }
    return std::vector<LayoutConstraint>{
        LayoutConstraint(isHorizontal ? Axis::horizontal : Axis::vertical, length, view->second)};
}

} // namespace trelmix
