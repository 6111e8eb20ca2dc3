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

// Decimal: both units prefixed forms of one unit; through base: a scaled unit on one side;
// unknown: the lookup fails at the end of the text.
void BM_Convert(benchmark::State& state, const char* from_unit, const char* to_unit)
{
    (void)Converter();
    const std::string from = from_unit;
    const std::string to = to_unit;
    double result = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Converter().convert(5.0, from, &result, to));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK_CAPTURE(BM_Convert, decimal, "mV", "kV");
BENCHMARK_CAPTURE(BM_Convert, through_base, "kWh", "MJ");
BENCHMARK_CAPTURE(BM_Convert, unknown, "kVV", "V");

} // namespace

BENCHMARK_MAIN();
