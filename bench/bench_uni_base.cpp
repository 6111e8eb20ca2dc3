// The cost of the checks that stay compiled in: a passing assertion should be free.
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <benchmark/benchmark.h>

namespace {

void BM_PassingAssert(benchmark::State& state)
{
    int value = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        const bool ok = UNI_ASSERT(value > 0);
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_PassingAssert);

void BM_PlainCompare(benchmark::State& state)
{
    int value = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        const bool ok = value > 0;
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_PlainCompare);

void BM_LogRecordFilteredOut(benchmark::State& state)
{
    static const bool init = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)init;
    for (auto _ : state)
        uni::log("overmap", SEV_DETAIL, "setup format complaint");
}
BENCHMARK(BM_LogRecordFilteredOut);

} // namespace

BENCHMARK_MAIN();
