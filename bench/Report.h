#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace trelmix::bench {

struct Goal {
    enum class Kind { atMost, atLeast, ratioAtMost };
    Kind kind = Kind::atMost;
    /// In the figure's unit; without one for a ratio.
    double limit = 0;
};

/// One row of the table.
struct Figure {
    std::string name;
    double value = 0;
    std::string unit = "ms";
    /// What the same work costs without the library, in the same unit and the same run.
    std::optional<double> bare = {};
    std::optional<Goal> goal = {};
};

/// A line above the rows that follow. Its title goes into their JSON as "group".
void startTable(const std::string& title);

/// Prints the figure as a row, and appends it as one line of JSON to the file that the environment's
/// TRELMIX_BENCH_JSON names, if it names one.
void report(const Figure& figure);

/// Steady time.
double seconds();
/// Processor time of the calling thread, which other programs cannot lengthen much.
double threadSeconds();

double median(std::vector<double> values);
/// The smallest value that this share of the values does not exceed; 0.99 for the 99th percentile.
double percentile(std::vector<double> values, double share);

/// Runs `job` in a process of its own, made from this one, and gives what it answers; ends the program when
/// the child fails. Call it while no other thread runs and no driver is loaded.
double inOwnProcess(const std::function<double()>& job);

} // namespace trelmix::bench
