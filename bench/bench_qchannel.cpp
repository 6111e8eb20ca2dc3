// QChannel's value reads against the channel's own, on the same channels in one run.

#include "bench_ratio.h"

#include <qchannel/qchannel.h>

#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/tick_arithmetic.h>

#include <memory>
#include <random>
#include <vector>

namespace {

constexpr std::size_t SAMPLES = 1000000;
constexpr std::size_t QUERIES = 1 << 14;

struct Fixture
{
    std::shared_ptr<lum::data::SyncScalarChannel> sync;
    std::shared_ptr<lum::data::AsyncScalarChannel> async;
    std::unique_ptr<lum::qchannel::QChannel> sync_q;
    std::unique_ptr<lum::qchannel::QChannel> async_q;
    std::vector<double> sync_queries, async_queries;

    Fixture()
    {
        std::mt19937_64 random(2024);
        std::normal_distribution<double> noise(0.0, 1.0);
        auto regions = std::make_shared<ferrin::DataRegionsManager>();

        std::vector<double> values(SAMPLES);
        for (double& value : values)
            value = noise(random);
        ferrin::ChannelSetup sync_setup;
        sync_setup.id = channel_config::ChannelID(1, 1);
        sync_setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(1000.0, 10.0);
        sync = lum::data::SyncScalarChannel::create(sync_setup, std::move(values), regions, 1);

        std::uniform_int_distribution<ferrin::Tick> gap(1, 2000);
        std::vector<lum::data::AsyncScalarChannel::TimedValue> samples;
        ferrin::Tick tick = 0;
        for (std::size_t i = 0; i < SAMPLES; ++i) {
            tick += gap(random);
            samples.emplace_back(tick, noise(random));
        }
        ferrin::ChannelSetup async_setup;
        async_setup.id = channel_config::ChannelID(1, 2);
        async_setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(1e6, 10.0);
        async_setup.sample_occurrence = ferrin::OCCURRENCE_ASYNC;
        async = lum::data::AsyncScalarChannel::create(async_setup, samples, regions, 2);

        sync_q = std::make_unique<lum::qchannel::QChannel>(sync);
        async_q = std::make_unique<lum::qchannel::QChannel>(async);

        std::uniform_real_distribution<double> sync_time(10.0, 10.0 + SAMPLES / 1000.0);
        std::uniform_real_distribution<double> async_time(10.0, 10.0 + tick / 1e6);
        for (std::size_t i = 0; i < QUERIES; ++i) {
            sync_queries.push_back(sync_time(random));
            async_queries.push_back(async_time(random));
        }
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

/// Runs @p read over the prepared query times, one per iteration.
template <typename Read>
void runQueries(benchmark::State& state, const std::vector<double>& queries, Read read)
{
    std::size_t i = 0;
    for (auto _ : state) {
        auto value = read(queries[i++ & (QUERIES - 1)]);
        benchmark::DoNotOptimize(value);
    }
}

void BM_QChannelValueAtTimeSync(benchmark::State& state)
{
    Fixture& f = fixture();
    runQueries(state, f.sync_queries, [&f](double time) { return f.sync_q->valueAtTime(time); });
}
BENCHMARK(BM_QChannelValueAtTimeSync);

void BM_ScalarGetValueAtTimeSync(benchmark::State& state)
{
    Fixture& f = fixture();
    runQueries(state, f.sync_queries, [&f](double time) { return f.sync->getValueAtTime(time, nullptr); });
}
BENCHMARK(BM_ScalarGetValueAtTimeSync);

void BM_QChannelValueAtTimeAsync(benchmark::State& state)
{
    Fixture& f = fixture();
    runQueries(state, f.async_queries, [&f](double time) { return f.async_q->valueAtTime(time); });
}
BENCHMARK(BM_QChannelValueAtTimeAsync);

void BM_ScalarGetValueAtTimeAsync(benchmark::State& state)
{
    Fixture& f = fixture();
    runQueries(state, f.async_queries, [&f](double time) { return f.async->getValueAtTime(time, nullptr); });
}
BENCHMARK(BM_ScalarGetValueAtTimeAsync);

// One near search per call on an asynchronous channel of a million samples.
void BM_QChannelValueNearTimeAsync(benchmark::State& state)
{
    Fixture& f = fixture();
    runQueries(state, f.async_queries, [&f](double time) { return f.async_q->valueNearTime(time); });
}
BENCHMARK(BM_QChannelValueNearTimeAsync);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv,
                                {{"BM_QChannelValueAtTimeSync", "BM_ScalarGetValueAtTimeSync", 1.5},
                                 {"BM_QChannelValueAtTimeAsync", "BM_ScalarGetValueAtTimeAsync", 1.5}});
}
