#include <lum_data/memory_data_source.h>
#include <lum_data/reduction_builder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using lum::data::MemoryReducedStream;
using lum::data::ReductionBuilder;

ferrin::ReducedValue readEntry(const MemoryReducedStream& stream, std::uint64_t index)
{
    std::uint8_t bytes[ferrin::REDUCED_ENTRY_SIZE];
    if (!stream.readEntry(index, bytes)) {
        ADD_FAILURE() << "entry " << index << " not readable";
        return ferrin::ReducedValue{};
    }
    return *ferrin::decodeReducedEntry(bytes, sizeof(bytes));
}

/// Brute force over the samples whose position lies in [first, last].
ferrin::ReducedValue expected(const std::vector<std::pair<std::uint64_t, double>>& samples,
                              std::uint64_t first, std::uint64_t last)
{
    lum::data::ReducedAccumulator acc;
    for (const auto& [position, value] : samples)
        if (position >= first && position <= last)
            acc.add(value);
    return acc.value();
}

void expectSame(const ferrin::ReducedValue& a, const ferrin::ReducedValue& b, const std::string& where)
{
    if (std::isnan(b.min)) {
        EXPECT_TRUE(std::isnan(a.min) && std::isnan(a.max) && std::isnan(a.avg) && std::isnan(a.rms))
            << where;
        return;
    }
    EXPECT_EQ(a.min, b.min) << where;
    EXPECT_EQ(a.max, b.max) << where;
    EXPECT_NEAR(a.avg, b.avg, 1e-9 * (1 + std::abs(b.avg))) << where;
    EXPECT_NEAR(a.rms, b.rms, 1e-9 * (1 + std::abs(b.rms))) << where;
}

TEST(ReducedAccumulator, SummarisesMinMaxAverageAndRms)
{
    lum::data::ReducedAccumulator acc;
    for (double v : {3.0, -4.0, 5.0, 0.0})
        acc.add(v);
    const ferrin::ReducedValue value = acc.value();
    EXPECT_EQ(value.min, -4.0);
    EXPECT_EQ(value.max, 5.0);
    EXPECT_DOUBLE_EQ(value.avg, 1.0);
    EXPECT_DOUBLE_EQ(value.rms, std::sqrt(50.0 / 4.0));
    EXPECT_TRUE(std::isnan(lum::data::ReducedAccumulator{}.value().avg)) << "empty block";
}

TEST(ReductionBuilder, OnlyCompleteBlocksAreWritten)
{
    auto level1 = std::make_shared<MemoryReducedStream>();
    level1->loader().loadAll();
    ReductionBuilder builder(10, {level1});
    for (std::uint64_t i = 0; i < 25; ++i)
        builder.add(i, static_cast<double>(i));
    EXPECT_EQ(level1->entryCount(), 2u) << "the block of 20..24 is not complete";
    EXPECT_EQ(builder.coveredEnd(), 20u);
    builder.completeUpTo(30);
    EXPECT_EQ(level1->entryCount(), 3u);
    expectSame(readEntry(*level1, 2),
               ferrin::ReducedValue{20, 24, 22, std::sqrt((400. + 441 + 484 + 529 + 576) / 5)},
               "partly filled block once declared final");
}

TEST(ReductionBuilder, LevelsAgreeWithBruteForceOnIrregularData)
{
    // Irregular positions with gaps, as an asynchronous channel's ticks are.
    std::mt19937_64 random(42);
    std::uniform_int_distribution<std::uint64_t> step(1, 30);
    std::normal_distribution<double> value(5.0, 3.0);
    std::vector<std::pair<std::uint64_t, double>> samples;
    std::uint64_t position = 3;
    for (int i = 0; i < 20000; ++i) {
        samples.emplace_back(position, value(random));
        position += step(random) * (i % 997 == 0 ? 50 : 1);
    }

    std::vector<std::shared_ptr<MemoryReducedStream>> streams;
    for (int level = 0; level < 3; ++level) {
        streams.push_back(std::make_shared<MemoryReducedStream>());
        streams.back()->loader().loadAll();
    }
    ReductionBuilder builder(16, streams);
    for (const auto& [p, v] : samples)
        builder.add(p, v);
    builder.completeUpTo(samples.back().first + 1);

    for (std::uint32_t level = 1; level <= 3; ++level) {
        const std::uint64_t factor = builder.factor(level);
        ASSERT_EQ(factor, std::uint64_t{1} << (4 * level));
        const MemoryReducedStream& stream = *streams[level - 1];
        EXPECT_EQ(stream.entryCount(), (samples.back().first + 1) / factor);
        for (std::uint64_t e = 0; e < stream.entryCount(); e += 1 + e / 8) {
            expectSame(readEntry(stream, e), expected(samples, e * factor, (e + 1) * factor - 1),
                       "level " + std::to_string(level) + " entry " + std::to_string(e));
        }
    }
    EXPECT_EQ(builder.factor(4), 0u);
}

TEST(ReductionBuilder, AHugeGapIsCountedButNotStored)
{
    auto level1 = std::make_shared<MemoryReducedStream>();
    auto level2 = std::make_shared<MemoryReducedStream>();
    level1->loader().loadAll();
    level2->loader().loadAll();
    ReductionBuilder builder(10, {level1, level2});
    const std::uint64_t far = std::uint64_t{1} << 62;
    for (std::uint64_t position : {0, 1, 15, 16, 25})
        builder.add(position, 1.0);
    builder.add(far, 2.0);
    builder.add(far + 1, 4.0);
    builder.completeUpTo(far + 10);
    EXPECT_EQ(level1->entryCount(), far / 10 + 1);
    EXPECT_EQ(level2->entryCount(), far / 100);
    EXPECT_EQ(level1->storedCount(), 4u) << "only blocks holding samples";
    EXPECT_EQ(level2->storedCount(), 1u) << "the last block of level 2 is not complete";
    expectSame(readEntry(*level1, far / 20), expected({}, 0, 0), "inside the gap");
    expectSame(readEntry(*level2, far / 200), expected({}, 0, 0), "inside the gap, level 2");
    expectSame(readEntry(*level1, far / 10), ferrin::ReducedValue{2, 4, 3, std::sqrt(10.0)}, "after it");
    expectSame(readEntry(*level2, 0), ferrin::ReducedValue{1, 1, 1, 1}, "before it");
}

TEST(ReductionBuilder, BlocksBelowTheLeastCountComeFromTheFallback)
{
    auto level1 = std::make_shared<MemoryReducedStream>();
    level1->loader().loadAll();
    level1->setFallback([](std::uint64_t index) {
        const double marker = static_cast<double>(index);
        return ferrin::ReducedValue{marker, marker, marker, marker};
    });
    ReductionBuilder builder(10, {level1}, 2);
    for (std::uint64_t position : {3, 12, 17, 45})
        builder.add(position, 8.0);
    builder.completeUpTo(50);
    EXPECT_EQ(level1->storedCount(), 1u);
    EXPECT_EQ(readEntry(*level1, 0).max, 0.0) << "one sample: the fallback";
    EXPECT_EQ(readEntry(*level1, 1).max, 8.0) << "two samples: stored";
    EXPECT_EQ(readEntry(*level1, 3).max, 3.0) << "no sample: the fallback";
}

TEST(MemoryReducedStream, EntriesAreReadableOnlyWhileResident)
{
    auto stream = std::make_shared<MemoryReducedStream>(4, 1);
    for (int i = 0; i < 12; ++i)
        stream->append(ferrin::ReducedValue{double(i), double(i), double(i), double(i)});
    EXPECT_EQ(stream->loader().extent(), 12u);
    std::uint8_t bytes[ferrin::REDUCED_ENTRY_SIZE];
    EXPECT_FALSE(stream->readEntry(5, bytes));
    lum::data::MemoryDataSource source(1, nullptr, nullptr);
    ASSERT_TRUE(stream->load(source, 5, 5));
    EXPECT_EQ(readEntry(*stream, 5).max, 5.0);
    ASSERT_TRUE(stream->load(source, 9, 9));
    EXPECT_FALSE(stream->readEntry(5, bytes)) << "budget of one page";
    EXPECT_FALSE(stream->readEntry(12, bytes)) << "beyond the end";
}

} // namespace
