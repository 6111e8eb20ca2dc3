// Nanoseconds per unit lookup and per conversion, with a handle made per call as
// callers do; the first call builds the shared table outside the timed loops.
#include <uni_units/converter.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using units::simple::Converter;

const std::vector<std::string>& spellings()
{
    static const std::vector<std::string> s = {"V",  "mV",     "kHz", "\u00b5A", "kiloOhm",
                                               "Wh", "daBaud", "kVV", "mv"};
    return s;
}

void BM_Lookup(benchmark::State& state)
{
    (void)Converter();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Converter().find(spellings()[i]));
        i = (i + 1) % spellings().size();
    }
}
BENCHMARK(BM_Lookup);

void BM_ConvertDecimal(benchmark::State& state)
{
    (void)Converter();
    const std::string from = "mV";
    const std::string to = "kV";
    double result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Converter().convert(5.0, from, &result, to));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_ConvertDecimal);

void BM_ConvertThroughBase(benchmark::State& state)
{
    (void)Converter();
    const std::string from = "kWh";
    const std::string to = "MJ";
    double result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Converter().convert(5.0, from, &result, to));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_ConvertThroughBase);

void BM_ConvertUnknown(benchmark::State& state)
{
    (void)Converter();
    const std::string from = "kVV";
    const std::string to = "V";
    double result = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(Converter().convert(5.0, from, &result, to));
}
BENCHMARK(BM_ConvertUnknown);

} // namespace

BENCHMARK_MAIN();
