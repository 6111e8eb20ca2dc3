#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/channel_roi_controller.h>
#include <ferrin_core/tick_arithmetic.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using ferrin::NO_TICK;
using ferrin::Tick;
using lum::data::AsyncScalarChannel;
using lum::data::MemoryChannelOptions;
using lum::data::MemoryTimeBase;
using lum::data::SyncScalarChannel;

/// The plain truth the channels are held against: samples sorted by time.
struct Reference
{
    std::vector<Tick> ticks;
    std::vector<double> times;
    std::vector<double> values;

    void add(Tick tick, double value, const ferrin::TimeBase& time_base)
    {
        ticks.push_back(tick);
        times.push_back(ferrin::tickToTime(tick, time_base));
        values.push_back(value);
    }

    /// Index of the sample at or before @p time, or -1.
    long atOrBefore(double time) const
    {
        const auto it = std::upper_bound(times.begin(), times.end(), time);
        return static_cast<long>(it - times.begin()) - 1;
    }

    /// min, max, avg, rms of the samples whose tick lies in [first, last]; NaN for none.
    ferrin::ReducedValue summary(Tick first, Tick last) const
    {
        lum::data::ReducedAccumulator acc;
        for (std::size_t i = 0; i < ticks.size(); ++i)
            if (ticks[i] >= first && ticks[i] <= last)
                acc.add(values[i]);
        return acc.value();
    }
};

void expectSummary(const std::optional<ferrin::ReducedValue>& actual, const ferrin::ReducedValue& expected,
                   const std::string& where)
{
    ASSERT_TRUE(actual) << where;
    if (std::isnan(expected.min)) {
        EXPECT_TRUE(std::isnan(actual->min)) << where;
        return;
    }
    EXPECT_EQ(actual->min, expected.min) << where;
    EXPECT_EQ(actual->max, expected.max) << where;
    EXPECT_NEAR(actual->avg, expected.avg, 1e-9) << where;
    EXPECT_NEAR(actual->rms, expected.rms, 1e-9) << where;
}

ferrin::ChannelSetup setupWith(std::shared_ptr<ferrin::TimeBase> time_base, std::uint32_t local_id)
{
    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(1, local_id);
    setup.time_base = std::move(time_base);
    return setup;
}

class SyncChannelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::mt19937_64 random(7);
        std::normal_distribution<double> step(0.0, 1.0);
        std::vector<double> values;
        double value = 0;
        for (int i = 0; i < 10000; ++i) {
            value += step(random);
            values.push_back(value);
            m_ref.add(i, value, *m_time_base);
        }
        MemoryChannelOptions options;
        options.reduction_block = 16;
        m_channel = SyncScalarChannel::create(setupWith(m_time_base, 1), values, m_regions, 11, options);
    }

    // A rate of 128 Hz keeps every sample time exact in binary, so that a sample's own
    // time finds that sample; the conversion's rounding edges are tested with the tick arithmetic.
    std::shared_ptr<MemoryTimeBase> m_time_base = std::make_shared<MemoryTimeBase>(128.0, 2.0);
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    Reference m_ref;
    std::shared_ptr<SyncScalarChannel> m_channel;
};

TEST_F(SyncChannelTest, ValueAtTimeIsTheSampleAtOrBefore)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> time(1.0, 2.0 + 10000 / 128.0 + 1.0);
    for (int i = 0; i < 5000; ++i) {
        const double t = i % 10 == 0 ? m_ref.times[static_cast<std::size_t>(i)] : time(random);
        const long index = m_ref.atOrBefore(t);
        Tick tick = 12345;
        const double value = m_channel->getValueAtTime(t, &tick);
        if (index < 0) {
            EXPECT_TRUE(std::isnan(value)) << t;
            EXPECT_EQ(tick, NO_TICK);
        } else {
            ASSERT_EQ(value, m_ref.values[static_cast<std::size_t>(index)]) << "time " << t;
            ASSERT_EQ(tick, m_ref.ticks[static_cast<std::size_t>(index)]);
        }
    }
    EXPECT_TRUE(std::isnan(m_channel->getValueAtTime(std::nan(""), nullptr)));
}

TEST_F(SyncChannelTest, MinMaxAndCalculationsMatchBruteForce)
{
    EXPECT_EQ(m_channel->minValue(), *std::min_element(m_ref.values.begin(), m_ref.values.end()));
    EXPECT_EQ(m_channel->maxValue(), *std::max_element(m_ref.values.begin(), m_ref.values.end()));

    // 10 s .. 20 s holds ticks 1024..2304, both ends included.
    const ferrin::ReducedValue span = m_ref.summary(1024, 2304);
    EXPECT_NEAR(m_channel->calculateValue(10.0, 20.0, ferrin::CALC_AVERAGE), span.avg, 1e-9);
    EXPECT_NEAR(m_channel->calculateValue(10.0, 20.0, ferrin::CALC_RMS), span.rms, 1e-9);
    EXPECT_EQ(m_channel->calculateValue(10.0, 20.0, ferrin::CALC_MIN), span.min);
    EXPECT_EQ(m_channel->calculateValue(10.0, 20.0, ferrin::CALC_PEAK2PEAK), span.max - span.min);
    const double ac = std::sqrt(span.rms * span.rms - span.avg * span.avg);
    EXPECT_NEAR(m_channel->calculateValue(10.0, 20.0, ferrin::CALC_ACRMS), ac, 1e-6);
    EXPECT_TRUE(std::isnan(m_channel->calculateValue(20.0, 10.0, ferrin::CALC_AVERAGE))) << "backwards";
    EXPECT_TRUE(std::isnan(m_channel->calculateValue(500.0, 600.0, ferrin::CALC_AVERAGE))) << "after the end";
    EXPECT_TRUE(std::isnan(m_channel->calculateValue(10.0, 20.0, 42))) << "unknown type";
}

TEST_F(SyncChannelTest, ReducedEntriesMatchBruteForce)
{
    for (const std::uint32_t kind : {ferrin::REDUCED_KIND_SAMPLES, ferrin::REDUCED_KIND_TICKS}) {
        for (Tick tick = 0; tick < 10000; tick += 37) {
            const double t = ferrin::tickToTime(tick, *m_time_base) + 0.001;
            const auto reduced = m_channel->getReducedValueAtTime(t, 1, kind, false);
            if (tick < 16) {
                EXPECT_FALSE(reduced) << "no complete entry yet";
                continue;
            }
            const Tick entry = tick / 16 - 1;
            expectSummary(reduced, m_ref.summary(entry * 16, entry * 16 + 15),
                          "tick " + std::to_string(tick));
        }
    }
    // Level 2 entries cover 256 samples; at tick 1280 entry 5 begins, so entry 4 is the last complete one.
    expectSummary(m_channel->getReducedValueAtTime(2.0 + 10.0, 2, ferrin::REDUCED_KIND_SAMPLES, false),
                  m_ref.summary(1024, 1279), "level 2 at tick 1280");
}

TEST_F(SyncChannelTest, RegionsAtEveryLevel)
{
    EXPECT_EQ(m_channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_SAMPLES, 0, false, true),
              (ferrin::DataRegions{{0, 9999}}));
    // 10000 samples make 625 complete entries of 16 and 39 of 256.
    EXPECT_EQ(m_channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_REDUCED, 1, false, false),
              (ferrin::DataRegions{{0, 624}}));
    EXPECT_EQ(m_channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_REDUCED, 2, false, false),
              (ferrin::DataRegions{{0, 38}}));
}

TEST_F(SyncChannelTest, IteratorsFollowTheSeekModes)
{
    auto it = m_channel->getSampleIterator(500, daq::SEEK_AT_OR_BEFORE);
    ASSERT_TRUE(it->isValid());
    EXPECT_EQ(it->getTimestamp(), 500u);
    EXPECT_EQ(*static_cast<const double*>(it->getValue()), m_ref.values[500]);
    ASSERT_TRUE(it->next());
    EXPECT_EQ(*static_cast<const double*>(it->getValue()), m_ref.values[501]);

    EXPECT_EQ(m_channel->getSampleIterator(500, daq::SEEK_BEFORE)->getTimestamp(), 499u);
    EXPECT_EQ(m_channel->getSampleIterator(500, daq::SEEK_AFTER)->getTimestamp(), 501u);
    EXPECT_FALSE(m_channel->getSampleIterator(0, daq::SEEK_BEFORE)->isValid());
    EXPECT_FALSE(m_channel->getSampleIterator(10000, daq::SEEK_EXACT)->isValid());
    EXPECT_EQ(m_channel->getSampleIterator(20000, daq::SEEK_AT_OR_BEFORE)->getTimestamp(), 9999u);
    EXPECT_FALSE(m_channel->getSampleIterator(9999, daq::SEEK_AFTER)->isValid());
    auto last = m_channel->getSampleIterator(9999, daq::SEEK_EXACT);
    EXPECT_FALSE(last->next());
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(last->getValue(), nullptr);
}

TEST(SyncChannelLoading, ReadsNeedResidentPagesAndEnsureLoadedBringsThemIn)
{
    auto time_base = std::make_shared<MemoryTimeBase>(10.0, 0.0);
    auto regions = std::make_shared<ferrin::DataRegionsManager>();
    std::vector<double> values(1000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>(i);
    MemoryChannelOptions options;
    options.all_resident = false;
    options.page_size = 100;
    options.resident_pages = 2;
    const auto channel = SyncScalarChannel::create(setupWith(time_base, 2), values, regions, 3, options);
    const auto& loader = channel->memorySource()->sampleLoader();

    Tick tick = 0;
    EXPECT_TRUE(std::isnan(channel->getValueAtTime(5.0, &tick))) << "recorded, not in memory";
    EXPECT_EQ(tick, NO_TICK);
    EXPECT_EQ(channel->getSampleAtTime(5.0), nullptr);
    EXPECT_EQ(channel->getValueAtTimeEnsureLoaded(5.0, &tick), 50.0);
    EXPECT_EQ(tick, 50u);
    EXPECT_EQ(channel->getValueAtTime(5.0, nullptr), 50.0) << "the page stays until squeezed out";
    EXPECT_EQ(loader->reservationCount(ferrin::ChannelRoiController::OWNER), 0u) << "the guard released it";

    // A viewer holds page 0; loading two more pages pushes out only what nobody holds.
    const lum::data::MemoryDataSource& source = *channel->memorySource();
    loader->reserve(source, 0, 99, "viewer", 0);
    EXPECT_EQ(channel->getValueAtTimeEnsureLoaded(25.0, nullptr), 250.0);
    EXPECT_EQ(channel->getValueAtTimeEnsureLoaded(45.0, nullptr), 450.0);
    EXPECT_EQ(channel->getValueAtTime(5.0, nullptr), 50.0);
    EXPECT_TRUE(std::isnan(channel->getValueAtTime(25.0, nullptr)));

    const daq::SamplePtr sample = channel->getSampleAtTimeEnsureLoaded(75.0);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(std::get<double>(sample->value), 750.0);
    EXPECT_EQ(channel->getSampleAtTimeEnsureLoaded(200.0), nullptr) << "tick 2000 lies after the recording";
    EXPECT_EQ(channel->getValueAtTimeEnsureLoaded(200.0, &tick), 999.0)
        << "the value operation takes the last one";
    EXPECT_EQ(tick, 999u);
}

class AsyncChannelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Irregular ticks on a clock of about 1 MHz, with a long pause in the middle.
        std::mt19937_64 random(3);
        std::uniform_int_distribution<Tick> gap(1, 3000);
        std::normal_distribution<double> value(0.0, 10.0);
        Tick tick = 500;
        for (int i = 0; i < 20000; ++i) {
            tick += gap(random) + (i == 10000 ? 5000000 : 0);
            const double v = value(random);
            m_samples.emplace_back(tick, v);
            m_ref.add(tick, v, *m_time_base);
        }
        MemoryChannelOptions options;
        options.reduction_block = 10000;
        m_channel = AsyncScalarChannel::create(setupWith(m_time_base, 4), m_samples, m_regions, 21, options);
    }

    // 2^20 Hz keeps sample times exact in binary (see SyncChannelTest).
    std::shared_ptr<MemoryTimeBase> m_time_base = std::make_shared<MemoryTimeBase>(1048576.0, 100.0);
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    std::vector<AsyncScalarChannel::TimedValue> m_samples;
    Reference m_ref;
    std::shared_ptr<AsyncScalarChannel> m_channel;
};

TEST_F(AsyncChannelTest, ValueAtTimeIsTheSampleAtOrBefore)
{
    std::mt19937_64 random(9);
    std::uniform_real_distribution<double> time(m_ref.times.front() - 0.01, m_ref.times.back() + 0.01);
    for (int i = 0; i < 20000; ++i) {
        const double t = i % 7 == 0 ? m_ref.times[static_cast<std::size_t>(i)] : time(random);
        const long index = m_ref.atOrBefore(t);
        Tick tick = 0;
        const double value = m_channel->getValueAtTime(t, &tick);
        if (index < 0) {
            ASSERT_TRUE(std::isnan(value)) << t;
            ASSERT_EQ(tick, NO_TICK);
        } else {
            ASSERT_EQ(value, m_ref.values[static_cast<std::size_t>(index)]) << "time " << t;
            ASSERT_EQ(tick, m_ref.ticks[static_cast<std::size_t>(index)]);
        }
    }
}

// Reads in time order, as a replay makes them, start from the last answer: each sample's
// own time, a time between two samples and one past the end, forwards and then back.
TEST_F(AsyncChannelTest, ValuesReadInOrderAndBackMatchTheReference)
{
    std::vector<double> times;
    for (std::size_t i = 0; i + 1 < m_ref.times.size(); ++i) {
        times.push_back(m_ref.times[i]);
        times.push_back((m_ref.times[i] + m_ref.times[i + 1]) / 2.0);
    }
    times.push_back(m_ref.times.back() + 1.0);
    for (const bool backwards : {false, true}) {
        for (std::size_t k = 0; k < times.size(); ++k) {
            const double t = times[backwards ? times.size() - 1 - k : k];
            const auto index = static_cast<std::size_t>(m_ref.atOrBefore(t));
            Tick tick = 0;
            ASSERT_EQ(m_channel->getValueAtTime(t, &tick), m_ref.values[index]) << "time " << t;
            ASSERT_EQ(tick, m_ref.ticks[index]) << "time " << t;
        }
    }
}

TEST_F(AsyncChannelTest, MinMaxCalculationsAndReducedEntriesMatchBruteForce)
{
    EXPECT_EQ(m_channel->minValue(), *std::min_element(m_ref.values.begin(), m_ref.values.end()));
    EXPECT_EQ(m_channel->maxValue(), *std::max_element(m_ref.values.begin(), m_ref.values.end()));

    const double start = 100.0 + 1.25;
    const double end = 100.0 + 9.75;
    const ferrin::ReducedValue span = m_ref.summary(1310720, 10223616);
    EXPECT_NEAR(m_channel->calculateValue(start, end, ferrin::CALC_AVERAGE), span.avg, 1e-9);
    EXPECT_EQ(m_channel->calculateValue(start, end, ferrin::CALC_MAX), span.max);

    for (Tick tick = 5000; tick < m_ref.ticks.back(); tick += 77777) {
        const auto reduced = m_channel->getReducedValueAtTime(ferrin::tickToTime(tick, *m_time_base), 1,
                                                              ferrin::REDUCED_KIND_TICKS, false);
        if (tick < 10000) {
            EXPECT_FALSE(reduced);
            continue;
        }
        const Tick entry = tick / 10000 - 1;
        expectSummary(reduced, m_ref.summary(entry * 10000, entry * 10000 + 9999),
                      "tick " + std::to_string(tick));
    }
    EXPECT_FALSE(m_channel->getReducedValueAtTime(150.0, 1, ferrin::REDUCED_KIND_SAMPLES, false))
        << "blocks of samples have no place on the tick axis";
}

TEST(AsyncChannelSparse, ReducedEntriesOfLoneSamplesAndGapsMatchBruteForce)
{
    // A receiver at about 1 Hz on a 1 MHz clock, with gaps of minutes: nearly every block
    // of ticks holds one sample or none, some hold two.
    auto time_base = std::make_shared<MemoryTimeBase>(1048576.0, 0.0);
    std::vector<AsyncScalarChannel::TimedValue> samples;
    Reference ref;
    Tick tick = 70;
    for (int i = 0; i < 600; ++i) {
        tick += i % 100 == 99 ? 600000000 : (i % 7 == 0 ? 3 : 1048576);
        samples.emplace_back(tick, std::sin(i) * 50.0);
        ref.add(tick, samples.back().second, *time_base);
    }
    const auto channel = AsyncScalarChannel::create(setupWith(time_base, 9), samples,
                                                    std::make_shared<ferrin::DataRegionsManager>(), 22);
    for (const std::uint32_t level : {1u, 2u}) {
        const Tick factor = level == 1 ? 64 : 4096;
        std::vector<Tick> probes;
        for (std::size_t i = 0; i < samples.size(); i += 5)
            for (const Tick offset : {Tick{0}, factor, factor * 3 + 1, Tick{300000000}})
                probes.push_back(samples[i].first + offset);
        for (const Tick probe : probes) {
            const auto reduced = channel->getReducedValueAtTime(ferrin::tickToTime(probe, *time_base), level,
                                                                ferrin::REDUCED_KIND_TICKS, false);
            if (probe < factor || probe / factor - 1 >= tick / factor) {
                EXPECT_FALSE(reduced) << "no complete entry before " << probe;
                continue;
            }
            const Tick entry = probe / factor - 1;
            expectSummary(reduced, ref.summary(entry * factor, entry * factor + factor - 1),
                          "level " + std::to_string(level) + " tick " + std::to_string(probe));
        }
    }
}

TEST_F(AsyncChannelTest, IteratorWalksTheStreamInOrder)
{
    auto it = m_channel->getSampleIterator(m_ref.ticks[100] + 1, daq::SEEK_AT_OR_AFTER);
    for (std::size_t i = 101; i < 400; ++i) {
        ASSERT_TRUE(it->isValid());
        ASSERT_EQ(it->getTimestamp(), m_ref.ticks[i]);
        ASSERT_EQ(*static_cast<const double*>(it->getValue()), m_ref.values[i]);
        it->next();
    }
    EXPECT_FALSE(m_channel->getSampleIterator(0, daq::SEEK_BEFORE)->isValid());
}

TEST(AsyncChannelLive, ReadsAcrossClosedBlocksAndTheGrowingOne)
{
    auto time_base = std::make_shared<MemoryTimeBase>(1000.0, 0.0);
    const auto channel = AsyncScalarChannel::create(setupWith(time_base, 6), nullptr, 8);
    // 16-byte samples: a page-sized block holds 253, so 1000 samples close three blocks.
    constexpr Tick PER_BLOCK = 253;
    for (Tick tick = 1; tick <= 1000; ++tick) {
        channel->append(tick * 3, static_cast<double>(tick));
        if (tick % 100 == 0)
            channel->publish();
        if (tick % 37 != 0)
            continue;
        // Readers see what was published, and what a closed block published by closing.
        const Tick visible = std::max(tick / 100 * 100, tick / PER_BLOCK * PER_BLOCK);
        for (Tick probe = 3; probe <= visible * 3 + 2; probe += 29) {
            Tick found = 0;
            const double value = channel->getValueAtTime(probe / 1000.0 + 1e-7, &found);
            ASSERT_EQ(found, probe / 3 * 3) << "probe " << probe << " after " << tick;
            ASSERT_EQ(value, static_cast<double>(probe / 3));
        }
        Tick found = 0;
        channel->getValueAtTime((visible * 3 + 3) / 1000.0 + 1e-7, &found);
        ASSERT_EQ(found, visible == 0 ? NO_TICK : visible * 3)
            << "unpublished samples stay unseen, after " << tick;
    }
    EXPECT_EQ(channel->stream()->closedBlockCount(), 3u);
}

TEST(AsyncChannelLive, AnOpenRecordingIsOpenEndedUntilFinished)
{
    auto time_base = std::make_shared<MemoryTimeBase>(1000.0, 0.0);
    auto regions = std::make_shared<ferrin::DataRegionsManager>();
    MemoryChannelOptions options;
    options.reduction_block = 10;
    const auto channel = AsyncScalarChannel::create(setupWith(time_base, 5), regions, 8, options);
    EXPECT_TRUE(std::isnan(channel->minValue()));

    for (Tick tick = 100; tick < 200; tick += 2)
        ASSERT_TRUE(channel->append(tick, static_cast<double>(tick)));
    EXPECT_TRUE(std::isnan(channel->getValueAtTime(0.15, nullptr))) << "not published yet";
    channel->publish();
    EXPECT_EQ(channel->getValueAtTime(0.15, nullptr), 150.0);
    EXPECT_EQ(channel->maxValue(), 198.0);
    EXPECT_EQ(channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 0, false, true),
              (ferrin::DataRegions{{100, NO_TICK}}));
    EXPECT_TRUE(channel->isDataAvailable(5000, ferrin::REGION_KIND_SAMPLES, 0)) << "open recording";
    EXPECT_EQ(channel->getSampleAtTimeEnsureLoaded(5.0)->timestamp, 198u);

    channel->finish();
    EXPECT_EQ(channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 0, false, true),
              (ferrin::DataRegions{{100, 198}}));
    EXPECT_FALSE(channel->isDataAvailable(5000, ferrin::REGION_KIND_SAMPLES, 0));
    EXPECT_EQ(channel->getSampleAtTimeEnsureLoaded(5.0), nullptr) << "beyond the recording";
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(channel->append(150, 1.0)) << "backwards";
    EXPECT_EQ(channel->maxValue(), 198.0);
}

} // namespace
