// Reading asynchronous sample streams: seeking by time against a binary search over a
// plain vector of the same timestamps, and stepping sample by sample.
#include "bench_ratio.h"

#include <daq/async_sample_iterator.h>
#include <daq_writer/async_sample_writer.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr std::size_t SAMPLES = 10'000'000;
constexpr std::size_t TARGETS = 1 << 16;

// Ten million samples of an 8-byte timestamp and a double, in page-sized blocks of
// 4096 - 48 bytes, at irregular times; the same timestamps in a plain vector; and
// random seek targets over the whole range.
struct Recording
{
    std::shared_ptr<daq::AsyncSampleStream> stream =
        std::make_shared<daq::AsyncSampleStream>(daq::AsyncSampleLayout::fixedSize(8, sizeof(double)));
    std::vector<std::uint64_t> timestamps;
    std::vector<std::uint64_t> targets;

    Recording()
    {
        std::mt19937_64 rng(42);
        timestamps.reserve(SAMPLES);
        daq::AsyncSampleWriter writer(stream, 4096 - 48);
        std::uint64_t t = 1000;
        for (std::size_t i = 0; i < SAMPLES; ++i) {
            t += 1 + rng() % 20;
            writer.append(t, double(i));
            timestamps.push_back(t);
        }
        writer.finish();
        for (std::size_t i = 0; i < TARGETS; ++i)
            targets.push_back(rng() % (t + 100));
    }
};

const Recording& recording()
{
    static const Recording r;
    return r;
}

void BM_StreamSeekAtOrBefore(benchmark::State& state)
{
    const Recording& r = recording();
    daq::AsyncSampleIterator it(r.stream);
    std::size_t i = 0;
    for (auto _ : state) {
        it.seek(r.targets[i++ % TARGETS], daq::SEEK_AT_OR_BEFORE);
        benchmark::DoNotOptimize(it.currentSample());
    }
}
BENCHMARK(BM_StreamSeekAtOrBefore);

void BM_VectorUpperBound(benchmark::State& state)
{
    const Recording& r = recording();
    std::size_t i = 0;
    for (auto _ : state) {
        auto found = std::upper_bound(r.timestamps.begin(), r.timestamps.end(), r.targets[i++ % TARGETS]);
        const std::uint64_t* at_or_before = found == r.timestamps.begin() ? nullptr : &*(found - 1);
        benchmark::DoNotOptimize(at_or_before);
    }
}
BENCHMARK(BM_VectorUpperBound);

// One iteration is one sample; the walk starts over when the stream ends.
void BM_StreamNext(benchmark::State& state)
{
    const Recording& r = recording();
    daq::AsyncSampleIterator it = daq::createIterator(r.stream, 0, daq::SEEK_AT_OR_AFTER);
    for (auto _ : state) {
        if (!it.next())
            it = daq::createIterator(r.stream, 0, daq::SEEK_AT_OR_AFTER);
        benchmark::DoNotOptimize(it.currentSample());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StreamNext);

void BM_StreamNextWithTimestamp(benchmark::State& state)
{
    const Recording& r = recording();
    daq::AsyncSampleIterator it = daq::createIterator(r.stream, 0, daq::SEEK_AT_OR_AFTER);
    for (auto _ : state) {
        if (!it.next())
            it = daq::createIterator(r.stream, 0, daq::SEEK_AT_OR_AFTER);
        benchmark::DoNotOptimize(it.getTimestamp());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StreamNextWithTimestamp);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv, {{"BM_StreamSeekAtOrBefore", "BM_VectorUpperBound", 3.0}});
}
