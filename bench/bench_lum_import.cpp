// Import of a one-hour 100 Hz CSV drive against the floor of reading the same file and
// converting its numbers with std::from_chars, side by side.
#include "bench_ratio.h"

#include <lum_import/importers.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

const std::string& csvPath()
{
    static const std::string path = [] {
        const auto p = std::filesystem::temp_directory_path() / "overmap_bench_drive_1h.csv";
        std::ofstream out(p, std::ios::binary);
        out << "time [s],latitude [deg],longitude [deg],heading [deg],speed [km/h],yaw_rate [deg/s]\n";
        fmt::memory_buffer buf;
        for (int i = 0; i < 360000; ++i) {
            const double t = i * 0.01;
            fmt::format_to(std::back_inserter(buf), "{:.2f},{:.9f},{:.9f},{:.3f},{:.3f},{:.4f}\n", t,
                           48.0 + 1e-6 * i * 0.3, 11.0 + 1e-6 * i * 0.2, std::fmod(t * 3.0, 360.0),
                           80.0 + 10.0 * std::sin(t), std::cos(t));
        }
        out.write(buf.data(), static_cast<std::streamsize>(buf.size()));
        return p.string();
    }();
    return path;
}

void BM_CsvImport(benchmark::State& state)
{
    const std::string& path = csvPath();
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    for (auto _ : state) {
        auto result = lum::import::importCsv(path);
        if (!result)
            state.SkipWithError(result.error.c_str());
        benchmark::DoNotOptimize(result);
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_CsvImport)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The floor: the file into memory, every number through std::from_chars, summed.
void BM_CsvFloorReadAndFromChars(benchmark::State& state)
{
    const std::string& path = csvPath();
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream ss;
        ss << in.rdbuf();
        const std::string text = std::move(ss).str();
        const char* p = text.data() + text.find('\n') + 1;
        const char* end = text.data() + text.size();
        double sum = 0.0;
        while (p < end) {
            double v = 0.0;
            const auto r = std::from_chars(p, end, v);
            sum += v;
            p = r.ptr + 1; // skip the separator or newline
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_CsvFloorReadAndFromChars)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv, {{"BM_CsvImport", "BM_CsvFloorReadAndFromChars", 3.0}});
}
