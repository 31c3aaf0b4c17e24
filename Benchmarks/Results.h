#pragma once

#include <functional>
#include <string>
#include <vector>

/// One line of the table: our figure and that of the same work done by the bare libraries in the same run.
struct Result {
    std::string measure;
    double ours = 0;
    double bare = 0; ///< 0 where there is none: the reach is then a limit on `ours` itself
    std::string unit;
    std::string reach; ///< what is to be reached, in words
    bool holds = false;
};

/// What the benchmarks of this run have measured, in order.
class Results
{
public:
    /// `limit` bounds ours divided by bare: from above where less is better, from below where more is.
    void addRatio(std::string measure, double ours, double bare, std::string unit, double limit,
                  bool lessIsBetter);
    /// `limit` bounds `ours` itself from above.
    void addLimit(std::string measure, double ours, std::string unit, double limit);
    /// `limit` bounds `ours` itself from below.
    void addMinimum(std::string measure, double ours, std::string unit, double limit);

    void print() const;
    /// Adds what another run has written; false where there is nothing of the kind.
    [[nodiscard]] bool read(const std::string& path);
    /// An array of objects; returns false where the file cannot be written.
    [[nodiscard]] bool write(const std::string& path) const;

private:
    std::vector<Result> m_results;
};

/// Seconds that `work` took.
[[nodiscard]] double timed(const std::function<void()>& work);
/// Seconds of the processor that `work` took on this thread: what else the machine does meanwhile does not
/// count.
[[nodiscard]] double timedOnThread(const std::function<void()>& work);
[[nodiscard]] double median(std::vector<double> values);
/// The value that `share` of all values do not exceed.
[[nodiscard]] double percentile(std::vector<double> values, double share);

struct Pair {
    double ours;
    double bare;
};

/// `usual`, or 1 where the environment has VIRLO_BENCH_ONCE: each benchmark then only shows that it still
/// runs.
[[nodiscard]] int roundsOf(int usual);

/// Medians of `rounds` rounds (see `roundsOf`) that run the two in turn, after one of each that does not
/// count.
[[nodiscard]] Pair alternate(int rounds, const std::function<double()>& ours,
                             const std::function<double()>& bare);
