#include "Results.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>

namespace
{

std::string shortNumber(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

} // namespace

void Results::addRatio(std::string measure, double ours, double bare, std::string unit, double limit,
                       bool lessIsBetter)
{
    const double ratio = ours / bare;
    const bool holds = std::isfinite(ratio) && (lessIsBetter ? ratio <= limit : ratio >= limit);
    const std::string reach = (lessIsBetter ? "at most " : "at least ") + shortNumber(limit) + " × bare";
    m_results.push_back({std::move(measure), ours, bare, std::move(unit), reach, holds});
}

void Results::addLimit(std::string measure, double ours, std::string unit, double limit)
{
    const std::string reach = "at most " + shortNumber(limit) + " " + unit;
    m_results.push_back({std::move(measure), ours, 0, std::move(unit), reach, ours <= limit});
}

void Results::addMinimum(std::string measure, double ours, std::string unit, double limit)
{
    const std::string reach = "at least " + shortNumber(limit) + " " + unit;
    m_results.push_back({std::move(measure), ours, 0, std::move(unit), reach, ours >= limit});
}

void Results::print() const
{
    std::printf("%-66s %10s %10s %-10s %7s  %-18s %s\n", "measure", "ours", "bare", "unit", "ratio", "reach",
                "holds");
    for (const Result& result : m_results) {
        const std::string bare = result.bare == 0 ? "-" : shortNumber(result.bare);
        const std::string ratio = result.bare == 0 ? "-" : shortNumber(result.ours / result.bare);
        std::printf("%-66s %10s %10s %-10s %7s  %-18s %s\n", result.measure.c_str(),
                    shortNumber(result.ours).c_str(), bare.c_str(), result.unit.c_str(), ratio.c_str(),
                    result.reach.c_str(), result.holds ? "yes" : "NO");
    }
}

bool Results::write(const std::string& path) const
{
    nlohmann::json rows = nlohmann::json::array();
    for (const Result& result : m_results) {
        const bool compared = result.bare != 0;
        rows.push_back({{"measure", result.measure},
                        {"ours", result.ours},
                        {"bare", compared ? nlohmann::json(result.bare) : nlohmann::json()},
                        {"unit", result.unit},
                        {"ratio", compared ? nlohmann::json(result.ours / result.bare) : nlohmann::json()},
                        {"reach", result.reach},
                        {"holds", result.holds}});
    }
    std::ofstream file(path);
    file << rows.dump(2) << '\n';
    return file.good();
}

bool Results::read(const std::string& path)
{
    const nlohmann::json rows = nlohmann::json::parse(std::ifstream(path), nullptr, false);
    if (!rows.is_array())
        return false;
    for (const auto& row : rows)
        m_results.push_back({row.at("measure"), row.at("ours"),
                             row.at("bare").is_null() ? 0 : row.at("bare").get<double>(), row.at("unit"),
                             row.at("reach"), row.at("holds")});
    return true;
}

double timed(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double timedOnThread(const std::function<void()>& work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

double median(std::vector<double> values)
{
    return percentile(std::move(values), 0.5);
}

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return std::nan("");
    std::sort(values.begin(), values.end());
    const auto last = static_cast<double>(values.size() - 1);
    return values[static_cast<std::size_t>(std::ceil(share * last))];
}

int roundsOf(int usual)
{
    return std::getenv("VIRLO_BENCH_ONCE") != nullptr ? 1 : usual;
}

Pair alternate(int rounds, const std::function<double()>& ours, const std::function<double()>& bare)
{
    std::vector<double> oursValues;
    std::vector<double> bareValues;
    ours();
    bare();
    for (int round = 0; round < roundsOf(rounds); ++round) {
        oursValues.push_back(ours());
        bareValues.push_back(bare());
    }
    return {median(oursValues), median(bareValues)};
}
