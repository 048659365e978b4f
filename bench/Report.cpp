#include "Report.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <sys/wait.h>
#include <unistd.h>

namespace trelmix::bench {
namespace {

std::string title;

std::string verdict(const Figure& figure) {
    if (!figure.goal) {
        return {};
    }
    const auto& [kind, limit] = *figure.goal;
    const double reached =
        kind == Goal::Kind::ratioAtMost ? figure.value / figure.bare.value_or(NAN) : figure.value;
    return (kind == Goal::Kind::atLeast ? reached >= limit : reached <= limit) ? "reached" : "MISSED";
}

std::string goalText(const Figure& figure) {
    if (!figure.goal) {
        return {};
    }
    char text[40];
    const Goal& goal = *figure.goal;
    std::snprintf(text, sizeof text, "%s%g%s", goal.kind == Goal::Kind::atLeast ? ">= " : "<= ", goal.limit,
                  goal.kind == Goal::Kind::ratioAtMost ? " x" : "");
    return text;
}

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.6g", value);
    return std::isfinite(value) ? text : "null";
}

// Names are the benchmarks' own: nothing in them needs to be escaped.
void appendJson(const Figure& figure) {
    const char* const path = std::getenv("TRELMIX_BENCH_JSON");
    std::FILE* const file = path ? std::fopen(path, "a") : nullptr;
    if (!file) {
        return;
    }
    std::string line = R"({"group": ")" + title + R"(", "name": ")" + figure.name + R"(", "value": )" +
                       number(figure.value) + R"(, "unit": ")" + figure.unit + '"';
    if (figure.bare) {
        line +=
            R"(, "bare": )" + number(*figure.bare) + R"(, "ratio": )" + number(figure.value / *figure.bare);
    }
    if (figure.goal) {
        line += R"(, "goal": ")" + goalText(figure) + R"(", "reached": )" +
                (verdict(figure) == "reached" ? "true" : "false");
    }
    std::fprintf(file, "%s}\n", line.c_str());
    std::fclose(file);
}

} // namespace

void startTable(const std::string& heading) {
    title = heading;
    std::printf("\n%-58s %10s %-10s %9s %6s %10s\n", heading.c_str(), "figure", "", "bare", "ratio", "goal");
    std::fflush(stdout);
}

void report(const Figure& figure) {
    char bare[20] = "";
    char ratio[20] = "";
    if (figure.bare) {
        std::snprintf(bare, sizeof bare, "%.4g", *figure.bare);
        std::snprintf(ratio, sizeof ratio, "%.2f", figure.value / *figure.bare);
    }
    std::printf("  %-56s %10.4g %-10s %9s %6s %10s %s\n", figure.name.c_str(), figure.value,
                figure.unit.c_str(), bare, ratio, goalText(figure).c_str(), verdict(figure).c_str());
    std::fflush(stdout);
    appendJson(figure);
}

double seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values) {
    return percentile(std::move(values), 0.5);
}

double percentile(std::vector<double> values, double share) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    const double rank = std::ceil(share * static_cast<double>(values.size()));
    return values[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

double inOwnProcess(const std::function<double()>& job) {
    int ends[2];
    std::fflush(stdout);
    if (::pipe(ends) != 0) {
        std::exit(1);
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const double answer = job();
        // Without the destructors of what the driver and the library keep for the process.
        ::_exit(::write(ends[1], &answer, sizeof answer) == sizeof answer ? 0 : 1);
    }
    ::close(ends[1]);
    double answer = 0;
    const bool isAnswered = ::read(ends[0], &answer, sizeof answer) == sizeof answer;
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (child < 0 || !isAnswered || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fputs("a measurement's own process failed\n", stderr);
        std::exit(1);
    }
    return answer;
}

} // namespace trelmix::bench
