// getValueAtTime of in-memory channels against a plain binary search over the same
// sample times, both measured in one run.

#include "bench_ratio.h"

#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/tick_arithmetic.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr std::size_t SAMPLES = 1000000;
constexpr std::size_t QUERIES = 1 << 14;

struct Fixture
{
    std::shared_ptr<lum::data::MemoryTimeBase> sync_time_base =
        std::make_shared<lum::data::MemoryTimeBase>(1000.0, 10.0);
    std::shared_ptr<lum::data::MemoryTimeBase> async_time_base =
        std::make_shared<lum::data::MemoryTimeBase>(1e6, 10.0);
    std::shared_ptr<lum::data::SyncScalarChannel> sync;
    std::shared_ptr<lum::data::AsyncScalarChannel> async;
    // The same samples as plain sorted vectors: time in seconds and value.
    std::vector<double> sync_times, sync_values, async_times, async_values;
    std::vector<double> sync_queries, async_queries;

    Fixture()
    {
        std::mt19937_64 random(2024);
        std::normal_distribution<double> noise(0.0, 1.0);
        auto regions = std::make_shared<ferrin::DataRegionsManager>();

        std::vector<double> values(SAMPLES);
        for (std::size_t i = 0; i < SAMPLES; ++i) {
            values[i] = noise(random);
            sync_times.push_back(ferrin::tickToTime(i, *sync_time_base));
        }
        sync_values = values;
        ferrin::ChannelSetup sync_setup;
        sync_setup.id = channel_config::ChannelID(1, 1);
        sync_setup.time_base = sync_time_base;
        sync = lum::data::SyncScalarChannel::create(sync_setup, std::move(values), regions, 1);

        std::uniform_int_distribution<ferrin::Tick> gap(1, 2000);
        std::vector<lum::data::AsyncScalarChannel::TimedValue> samples;
        ferrin::Tick tick = 0;
        for (std::size_t i = 0; i < SAMPLES; ++i) {
            tick += gap(random);
            const double value = noise(random);
            samples.emplace_back(tick, value);
            async_times.push_back(ferrin::tickToTime(tick, *async_time_base));
            async_values.push_back(value);
        }
        ferrin::ChannelSetup async_setup;
        async_setup.id = channel_config::ChannelID(1, 2);
        async_setup.time_base = async_time_base;
        async = lum::data::AsyncScalarChannel::create(async_setup, samples, regions, 2);

        std::uniform_real_distribution<double> sync_time(sync_times.front(), sync_times.back());
        std::uniform_real_distribution<double> async_time(async_times.front(), async_times.back());
        for (std::size_t i = 0; i < QUERIES; ++i) {
            sync_queries.push_back(sync_time(random));
            async_queries.push_back(async_time(random));
        }
    }
};

Fixture& fixture()
{
    static Fixture f;
    return f;
}

double upperBoundValue(const std::vector<double>& times, const std::vector<double>& values, double time)
{
    const auto it = std::upper_bound(times.begin(), times.end(), time);
    return it == times.begin() ? std::nan("") : values[static_cast<std::size_t>(it - times.begin()) - 1];
}

void BM_SyncGetValueAtTime(benchmark::State& state)
{
    const Fixture& f = fixture();
    std::size_t i = 0;
    for (auto _ : state) {
        ferrin::Tick tick;
        benchmark::DoNotOptimize(f.sync->getValueAtTime(f.sync_queries[i++ & (QUERIES - 1)], &tick));
    }
}

void BM_SyncUpperBound(benchmark::State& state)
{
    const Fixture& f = fixture();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            upperBoundValue(f.sync_times, f.sync_values, f.sync_queries[i++ & (QUERIES - 1)]));
}

void BM_AsyncGetValueAtTime(benchmark::State& state)
{
    const Fixture& f = fixture();
    std::size_t i = 0;
    for (auto _ : state) {
        ferrin::Tick tick;
        benchmark::DoNotOptimize(f.async->getValueAtTime(f.async_queries[i++ & (QUERIES - 1)], &tick));
    }
}

void BM_AsyncUpperBound(benchmark::State& state)
{
    const Fixture& f = fixture();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            upperBoundValue(f.async_times, f.async_values, f.async_queries[i++ & (QUERIES - 1)]));
}

BENCHMARK(BM_SyncGetValueAtTime);
BENCHMARK(BM_SyncUpperBound);
BENCHMARK(BM_AsyncGetValueAtTime);
BENCHMARK(BM_AsyncUpperBound);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv,
                                {{"BM_SyncGetValueAtTime", "BM_SyncUpperBound", 3.0},
                                 {"BM_AsyncGetValueAtTime", "BM_AsyncUpperBound", 3.0}});
}
