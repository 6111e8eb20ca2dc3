// Copying a 100,000 x 10 table to the clipboard formats in one pass through the
// dispatcher, each format alone, and the floor of printing the same numbers once.
#include "bench_ratio.h"

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/spreadsheet_export.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t ROWS = 100000;
constexpr std::uint32_t COLUMNS = 10;

/// A time column as text, then nine measured values.
struct Table
{
    std::vector<std::string> labels;
    std::vector<double> values;
};

const Table& table()
{
    static const Table data = [] {
        Table t;
        t.labels.reserve(ROWS);
        t.values.reserve(static_cast<std::size_t>(ROWS) * (COLUMNS - 1));
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            t.labels.push_back("t=" + std::to_string(row * 0.01));
            for (std::uint32_t col = 1; col < COLUMNS; ++col)
                t.values.push_back(std::sin(row * 0.001 * col) *
                                   std::pow(10.0, static_cast<double>(col) - 4));
        }
        return t;
    }();
    return data;
}

void writeTable(lum_utils::IfSimpleSpreadsheetBuilder& builder)
{
    const Table& t = table();
    builder.startTable("Channels", COLUMNS, ROWS);
    const double* value = t.values.data();
    for (std::uint32_t row = 0; row < ROWS; ++row) {
        builder.beginRow();
        builder.addCell(t.labels[row]);
        for (std::uint32_t col = 1; col < COLUMNS; ++col)
            builder.addCell(*value++);
        builder.endRow();
    }
    builder.endTable();
}

void BM_AllFormats(benchmark::State& state)
{
    table();
    std::int64_t bytes = 0;
    for (auto _ : state) {
        lum_utils::SpreadsheetExport all;
        writeTable(all.builder());
        bytes += static_cast<std::int64_t>(all.xml().size() + all.csv().size() + all.txt().size() +
                                           all.dif().size());
        benchmark::DoNotOptimize(all.xml().data());
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_AllFormats)->Unit(benchmark::kMillisecond);

template <typename Builder>
void BM_OneFormat(benchmark::State& state)
{
    table();
    std::int64_t bytes = 0;
    for (auto _ : state) {
        Builder builder;
        writeTable(builder);
        bytes += static_cast<std::int64_t>(builder.size());
        benchmark::DoNotOptimize(builder.data());
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK_TEMPLATE(BM_OneFormat, lum_utils::SpreadsheetMLBuilder)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_OneFormat, lum_utils::CSVBuilder)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_OneFormat, lum_utils::TXTBuilder)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_OneFormat, lum_utils::DIFBuilder)->Unit(benchmark::kMillisecond);

/// The floor: each number printed once with "%.20g" into a preallocated string.
void BM_PrintFloor(benchmark::State& state)
{
    const Table& t = table();
    std::string out;
    for (auto _ : state) {
        out.clear();
        char cell[64];
        for (const double value : t.values) {
            const int n = std::snprintf(cell, sizeof(cell), "%.20g\t", value);
            out.append(cell, static_cast<std::size_t>(n));
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(out.size()) * state.iterations());
}
BENCHMARK(BM_PrintFloor)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv, {{"BM_AllFormats", "BM_PrintFloor", 0.0}});
}
