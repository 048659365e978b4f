// The programs that use Google Benchmark, in the form of all others. A benchmark named "x, bare" is the
// baseline of the one named "x". The counter "per" says how many things one iteration does, and
// the time is that of one of them; "goal" is a limit for it, "goalRatio" one for the ratio to the baseline.
// Any other counter becomes a row of its own.

#include "Report.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace trelmix::bench {
namespace {

class TableReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        std::string program = context.executable_name;
        startTable(program.substr(program.rfind('/') + 1));
        return true;
    }

    /// All repetitions of one benchmark, which end in any order: the quickest counts, as whatever else the
    /// machine does only lengthens it.
    void ReportRuns(const std::vector<Run>& runs) override {
        const Run* best = nullptr;
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred &&
                (!best || run.GetAdjustedCPUTime() < best->GetAdjustedCPUTime())) {
                best = &run;
            }
        }
        if (best) {
            _times[nameOf(*best)] = best->GetAdjustedCPUTime() / counter(*best, "per").value_or(1);
            _best[{best->family_index, best->per_family_instance_index}] = *best;
        }
    }

    void Finalize() override {
        for (const auto& [place, run] : _best) {
            if (!nameOf(run).ends_with(kBare)) {
                reportRow(run);
            }
        }
    }

private:
    static constexpr const char* kBare = ", bare";

    void reportRow(const Run& run) const {
        Figure figure{nameOf(run), _times.at(nameOf(run)), benchmark::GetTimeUnitString(run.time_unit)};
        if (const auto bare = _times.find(figure.name + kBare); bare != _times.end()) {
            figure.bare = bare->second;
        }
        if (const auto limit = counter(run, "goal")) {
            figure.goal = Goal{Goal::Kind::atMost, *limit};
        } else if (const auto ratio = counter(run, "goalRatio"); ratio && figure.bare) {
            figure.goal = Goal{Goal::Kind::ratioAtMost, *ratio};
        }
        report(figure);
        for (const auto& [name, value] : run.counters) {
            if (name != "per" && !name.starts_with("goal")) {
                report({figure.name + ": " + name, value, ""});
            }
        }
    }

    static std::string nameOf(const Run& run) {
        return run.run_name.args.empty() ? run.run_name.function_name
                                         : run.run_name.function_name + ", " + run.run_name.args;
    }
    static std::optional<double> counter(const Run& run, const std::string& name) {
        const auto found = run.counters.find(name);
        return found == run.counters.end() ? std::nullopt : std::optional<double>(found->second.value);
    }

    std::map<std::string, double> _times;
    std::map<std::pair<std::int64_t, std::int64_t>, Run> _best;
};

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char repetitions[] = "--benchmark_repetitions=7";
    char shortest[] = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], interleaved, repetitions, shortest};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    trelmix::bench::TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
