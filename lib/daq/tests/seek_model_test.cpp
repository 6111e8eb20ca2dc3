// Model-based test: every seek mode, and stepping, on many generated streams, against
// the same question asked of a plain sorted vector of the visible timestamps.
#include <daq/async_sample_iterator.h>
#include <daq_writer/async_sample_writer.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using daq::AsyncSampleIterator;
using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::AsyncSampleWriter;

constexpr std::size_t NONE = ~std::size_t{0};

struct Generated
{
    std::shared_ptr<AsyncSampleStream> stream;
    std::vector<std::uint64_t> timestamps; ///< visible ones, sorted; sample i carries ordinal i
    /// Kept to the end of the round, so that what it has not published stays unseen.
    std::unique_ptr<AsyncSampleWriter> writer;
};

// One random stream: a timestamp field of 2, 3, 4 or 8 bytes, fixed or variable
// samples, small random block sizes, gaps, runs of equal timestamps, and often a
// live block of which only a part is published.
Generated generate(std::mt19937_64& rng)
{
    const std::uint32_t timestamp_size = std::vector<std::uint32_t>{2, 3, 4, 8}[rng() % 4];
    const bool fixed = rng() % 2 == 0;
    const std::uint32_t size_field = 1 + static_cast<std::uint32_t>(rng() % 4);
    const AsyncSampleLayout layout = fixed ? AsyncSampleLayout::fixedSize(timestamp_size, 4)
                                           : AsyncSampleLayout::variableSize(timestamp_size, size_field);
    Generated g;
    g.stream = std::make_shared<AsyncSampleStream>(layout);
    const std::uint32_t capacity = 24 + static_cast<std::uint32_t>(rng() % 300);
    auto writer = std::make_unique<AsyncSampleWriter>(g.stream, capacity);

    const std::uint64_t mask = layout.timestampMask();
    const bool near_zero = timestamp_size < 8 || rng() % 2;
    std::uint64_t t = near_zero ? rng() % 3 : rng() >> 8;
    const std::uint64_t largest_step = timestamp_size == 2 ? 60 : 5000;
    const std::size_t samples = rng() % 300;
    const bool leave_unpublished = rng() % 2;

    std::vector<std::uint64_t> appended;
    // Equal timestamps that do not fit into the current block are refused; nothing else may be.
    uni_testing::AssertCapture capture;
    for (std::size_t i = 0; i < samples; ++i) {
        const std::uint32_t roll = static_cast<std::uint32_t>(rng() % 24);
        if (roll == 0)
            writer->finish(); // a block boundary
        if (roll == 1)
            writer->publish();
        if (roll == 2 && !appended.empty())
            t += largest_step * 7; // a wide gap
        else if (roll > 5 || i == 0)
            t += rng() % 2 ? 1 : 1 + rng() % largest_step;
        // else: the same timestamp again
        if (t > mask)
            break;
        const std::uint32_t ordinal = static_cast<std::uint32_t>(appended.size());
        std::uint8_t value[16] = {};
        std::memcpy(value, &ordinal, 4);
        const std::uint32_t value_size = fixed ? 4 : 4 + static_cast<std::uint32_t>(rng() % 12);
        if (writer->appendValue(t, value, value_size))
            appended.push_back(t);
    }
    for (const auto& record : capture.records())
        EXPECT_NE(record.message.find("do not fit into one block"), std::string::npos) << record.message;

    if (!leave_unpublished)
        writer->finish();
    const std::uint64_t visible = writer->visibleCount();
    EXPECT_LE(visible, appended.size());
    g.timestamps.assign(appended.begin(), appended.begin() + static_cast<std::ptrdiff_t>(visible));
    g.writer = std::move(writer);
    return g;
}

std::size_t expected(const std::vector<std::uint64_t>& ts, std::uint64_t t, daq::SeekMode mode)
{
    const std::size_t n = ts.size();
    const std::size_t lower = std::size_t(std::lower_bound(ts.begin(), ts.end(), t) - ts.begin());
    const std::size_t upper = std::size_t(std::upper_bound(ts.begin(), ts.end(), t) - ts.begin());
    const bool at = lower < n && ts[lower] == t;
    switch (mode) {
    case daq::SEEK_EXACT:
        return at ? lower : NONE;
    case daq::SEEK_BEFORE:
        return lower == 0 ? NONE : lower - 1;
    case daq::SEEK_AFTER:
        return upper < n ? upper : NONE;
    case daq::SEEK_AT_OR_BEFORE:
        return at ? lower : (lower == 0 ? NONE : lower - 1);
    case daq::SEEK_AT_OR_AFTER:
        return lower < n ? lower : NONE;
    }
    return NONE;
}

std::size_t ordinalOf(const AsyncSampleIterator& it)
{
    if (!it.isValid())
        return NONE;
    std::uint32_t ordinal = 0;
    std::memcpy(&ordinal, it.GetValue(), 4);
    return ordinal;
}

TEST(SeekModel, EverySeekModeAndStepMatchesASortedVector)
{
    std::mt19937_64 rng(20261123);
    for (int round = 0; round < 150; ++round) {
        Generated g = generate(rng);
        SCOPED_TRACE("stream " + std::to_string(round));
        const std::vector<std::uint64_t>& ts = g.timestamps;

        std::set<std::uint64_t> targets = {0, 1, daq::NO_TICK, daq::NO_TICK - 1, g.stream->timestampMask()};
        for (std::uint64_t t : ts)
            targets.insert({t - 1, t, t + 1});
        for (int i = 0; i < 20; ++i)
            targets.insert(ts.empty() ? rng() : ts.front() + rng() % (ts.back() - ts.front() + 10));

        AsyncSampleIterator walk = daq::createIterator(g.stream, 0, daq::SEEK_AT_OR_AFTER);
        std::size_t n = 0;
        for (bool ok = walk.isValid(); ok; ok = walk.next(), ++n) {
            ASSERT_LT(n, ts.size()) << "a sample past the visible ones";
            ASSERT_EQ(ordinalOf(walk), n);
        }
        EXPECT_EQ(n, ts.size());
        for (std::uint64_t t : targets) {
            for (int m = daq::SEEK_EXACT; m <= daq::SEEK_AT_OR_AFTER; ++m) {
                const auto mode = static_cast<daq::SeekMode>(m);
                const std::size_t want = expected(ts, t, mode);
                AsyncSampleIterator it = daq::createIterator(g.stream, t, mode);
                ASSERT_EQ(ordinalOf(it), want) << "target " << t << " mode " << m;
                if (want == NONE) {
                    EXPECT_TRUE(it.isEnded());
                    continue;
                }
                ASSERT_EQ(it.getTimestamp(), ts[want]);
                // One step on, across a block boundary where there is one.
                it.next();
                ASSERT_EQ(ordinalOf(it), want + 1 < ts.size() ? want + 1 : NONE) << "step from " << want;
            }
        }
    }
}

} // namespace
