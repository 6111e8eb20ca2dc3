#pragma once

// A console reporter that also prints, after the table, the ratio of one benchmark's
// time to its baseline's, both measured in the same run:
//
//   int main(int argc, char** argv) {
//       return bench::runWithRatios(argc, argv, {{"BM_CsvImport", "BM_CsvFloor", 3.0}});
//   }
//
// Names are matched as prefixes of the reported run names (so arguments may follow).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

struct Ratio
{
    std::string measured;
    std::string baseline;
    double target = 0.0; ///< the ratio the measured run must not exceed; 0 for none
};

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    explicit RatioReporter(std::vector<Ratio> ratios) : ConsoleReporter(OO_None), m_ratios(std::move(ratios))
    {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                m_times[run.benchmark_name()] = run.GetAdjustedRealTime() * timeScale(run.time_unit);
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const Ratio& r : m_ratios) {
            const double a = find(r.measured);
            const double b = find(r.baseline);
            if (a <= 0.0 || b <= 0.0)
                continue;
            std::printf("ratio %s / %s = %.2f", r.measured.c_str(), r.baseline.c_str(), a / b);
            if (r.target > 0.0)
                std::printf(" (target <= %.2f: %s)", r.target, a / b <= r.target ? "met" : "NOT met");
            std::printf("\n");
        }
    }

private:
    static double timeScale(benchmark::TimeUnit unit)
    {
        switch (unit) {
        case benchmark::kSecond:
            return 1e9;
        case benchmark::kMillisecond:
            return 1e6;
        case benchmark::kMicrosecond:
            return 1e3;
        default:
            return 1.0;
        }
    }

    double find(const std::string& prefix) const
    {
        for (const auto& [name, ns] : m_times)
            if (name.compare(0, prefix.size(), prefix) == 0)
                return ns;
        return 0.0;
    }

    std::vector<Ratio> m_ratios;
    std::map<std::string, double> m_times;
};

inline int runWithRatios(int argc, char** argv, std::vector<Ratio> ratios)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter(std::move(ratios));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

} // namespace bench
