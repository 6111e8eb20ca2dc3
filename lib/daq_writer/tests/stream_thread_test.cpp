// One thread appends and publishes while others seek and step (run under ThreadSanitizer):
// no reader sees a sample past the published ones, timestamps never go backwards, and a
// stepping reader misses nothing, even as blocks are closed and recycled under it.
#include <daq/async_sample_iterator.h>
#include <daq_writer/async_sample_writer.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

using daq::AsyncSampleIterator;
using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::AsyncSampleWriter;

constexpr std::uint64_t SAMPLES = 100000;

// Sample n has timestamp 3n + 7 and value n.
std::uint64_t timestampOf(std::uint64_t n)
{
    return 3 * n + 7;
}

struct Shared
{
    std::shared_ptr<AsyncSampleStream> stream =
        std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, sizeof(std::uint64_t)));
    /// Raised before each publish: no visible sample may lie above it.
    std::atomic<std::uint64_t> announced{0};
    std::atomic<bool> done{false};
};

struct Check
{
    std::uint64_t samples_seen = 0;
    std::uint64_t failures = 0;
};

// Checks the current sample against the writer's rule and the announced bound.
bool plausible(const AsyncSampleIterator& it, const Shared& shared)
{
    std::uint64_t n = 0;
    std::memcpy(&n, it.GetValue(), sizeof(n));
    return it.getTimestamp() == timestampOf(n) && it.getTimestamp() <= shared.announced.load();
}

void stepper(Shared& shared, Check& check)
{
    // Follows the stream from the start, picking up where it stopped each time it ends.
    std::uint64_t expected_next = 0;
    while (expected_next < SAMPLES) {
        const bool finished = shared.done.load();
        AsyncSampleIterator it =
            expected_next == 0
                ? daq::createIterator(shared.stream, 0, daq::SEEK_AT_OR_AFTER)
                : daq::createIterator(shared.stream, timestampOf(expected_next - 1), daq::SEEK_AFTER);
        for (bool ok = it.isValid(); ok; ok = it.next()) {
            std::uint64_t n = 0;
            std::memcpy(&n, it.GetValue(), sizeof(n));
            if (n != expected_next || !plausible(it, shared))
                ++check.failures;
            expected_next = n + 1;
            ++check.samples_seen;
        }
        if (finished && expected_next < SAMPLES) {
            ++check.failures; // everything was published, yet the reader stopped short
            return;
        }
        std::this_thread::yield();
    }
}

void seeker(Shared& shared, Check& check, std::uint64_t seed)
{
    std::mt19937_64 rng(seed);
    // Until the writer is done, and on until something was seen: a reader that starts late on
    // a busy machine still checks the finished stream.
    for (int late = 0; !shared.done.load() || (check.samples_seen == 0 && late < 1000);
         late += shared.done.load() ? 1 : 0) {
        const std::uint64_t bound = shared.announced.load() + 10;
        const auto mode = static_cast<daq::SeekMode>(rng() % 5);
        AsyncSampleIterator it = daq::createIterator(shared.stream, rng() % bound, mode);
        std::uint64_t previous = 0;
        for (int step = 0; step < 50 && it.isValid(); ++step, it.next()) {
            if (!plausible(it, shared) || it.getTimestamp() < previous)
                ++check.failures;
            previous = it.getTimestamp();
            ++check.samples_seen;
        }
    }
}

TEST(StreamThreads, ReadersSeeOnlyPublishedSamplesInOrder)
{
    Shared shared;
    std::vector<Check> checks(3);
    std::vector<std::thread> readers;
    readers.emplace_back(stepper, std::ref(shared), std::ref(checks[0]));
    readers.emplace_back(seeker, std::ref(shared), std::ref(checks[1]), 1);
    readers.emplace_back(seeker, std::ref(shared), std::ref(checks[2]), 2);

    {
        // Page-sized blocks of 253 samples, so that blocks close, and get recycled, while being read.
        constexpr std::uint32_t capacity = 4096 - 48;
        constexpr std::uint64_t per_block = capacity / (8 + sizeof(std::uint64_t));
        AsyncSampleWriter writer(shared.stream, capacity);
        std::mt19937_64 rng(3);
        for (std::uint64_t n = 0; n < SAMPLES; ++n) {
            if (n > 0 && n % per_block == 0)
                shared.announced.store(timestampOf(n - 1)); // this append closes the full block
            ASSERT_TRUE(writer.append<std::uint64_t>(timestampOf(n), n));
            if (rng() % 16 == 0) {
                shared.announced.store(timestampOf(n));
                writer.publish();
            }
        }
        shared.announced.store(timestampOf(SAMPLES - 1));
        writer.finish();
    }
    shared.done.store(true);
    for (auto& reader : readers)
        reader.join();

    for (std::size_t i = 0; i < checks.size(); ++i) {
        EXPECT_EQ(checks[i].failures, 0u) << "reader " << i;
        EXPECT_GT(checks[i].samples_seen, 0u) << "reader " << i;
    }
    EXPECT_GE(checks[0].samples_seen, SAMPLES) << "the stepping reader saw every sample";
}

} // namespace
