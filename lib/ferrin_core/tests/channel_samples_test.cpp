#include "channel_test_fakes.h"

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

namespace {

using ferrin::DataRegions;
using ferrin::NO_TICK;
using ferrin_test::FakeChannel;
using ferrin_test::FakeSource;

class FixedTimeBase : public ferrin::TimeBase
{
public:
    double getFrequency() const override { return 10.0; }
    double getStartTime() const override { return 0.0; }
};

class ChannelSamplesTest : public ::testing::Test
{
protected:
    std::shared_ptr<FakeChannel> makeChannel(std::int32_t occurrence)
    {
        ferrin::ChannelSetup setup;
        setup.time_base = std::make_shared<FixedTimeBase>();
        setup.sample_occurrence = occurrence;
        setup.regions_manager = m_regions;
        return std::make_shared<FakeChannel>(std::move(setup), m_source);
    }

    void SetUp() override
    {
        // Samples at ticks 0..99 and 200..299; reduced data (factor 10) covers 0..99.
        m_regions->addRegion(5, ferrin::REGION_KIND_SAMPLES, 0, 99);
        m_regions->addRegion(5, ferrin::REGION_KIND_SAMPLES, 200, 299);
        m_regions->addRegion(5, ferrin::REGION_KIND_REDUCED, 0, 99);
        m_channel = makeChannel(ferrin::OCCURRENCE_ASYNC);
    }

    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    std::shared_ptr<FakeSource> m_source = std::make_shared<FakeSource>();
    std::shared_ptr<FakeChannel> m_channel;
};

TEST_F(ChannelSamplesTest, AvailabilityOfTicksAndOfReducedEntries)
{
    EXPECT_TRUE(m_channel->isDataAvailable(99, ferrin::REGION_KIND_SAMPLES, 0));
    EXPECT_FALSE(m_channel->isDataAvailable(100, ferrin::REGION_KIND_SAMPLES, 0));
    // Entry 9 covers ticks 90..99, entry 10 ticks 100..109.
    EXPECT_TRUE(m_channel->isDataAvailable(9, ferrin::REDUCED_KIND_SAMPLES, 1));
    EXPECT_FALSE(m_channel->isDataAvailable(10, ferrin::REDUCED_KIND_SAMPLES, 1));
    EXPECT_FALSE(m_channel->isDataAvailable(25, ferrin::REDUCED_KIND_SAMPLES, 1))
        << "entries are looked up among the reduced regions, not the sample regions";
    m_source->factor_kind1 = 0;
    EXPECT_FALSE(m_channel->isDataAvailable(1, ferrin::REDUCED_KIND_TICKS, 1)) << "no such level";
    EXPECT_TRUE(m_channel->isDataAvailable(50, 7, 1)) << "an unknown kind has factor 1";
    EXPECT_FALSE(m_channel->isDataAvailable(NO_TICK / 2, ferrin::REDUCED_KIND_SAMPLES, 1)) << "overflow";
}

TEST_F(ChannelSamplesTest, NoRegionsManagerOrSourceMeansNothingAvailable)
{
    ferrin::ChannelSetup setup;
    setup.time_base = std::make_shared<FixedTimeBase>();
    const auto lonely = std::make_shared<FakeChannel>(std::move(setup), m_source);
    EXPECT_FALSE(lonely->isDataAvailable(5, ferrin::REGION_KIND_SAMPLES, 0));
    EXPECT_TRUE(lonely->getDataRegions(0, 1000, 0, 0, false, true).empty());
    m_regions.reset();
    EXPECT_FALSE(m_channel->isDataAvailable(5, ferrin::REGION_KIND_SAMPLES, 0)) << "the manager went away";
}

TEST_F(ChannelSamplesTest, DataRegionsAtLevelZeroAreTheManagers)
{
    EXPECT_EQ(m_channel->getDataRegions(50, 250, ferrin::REGION_KIND_SAMPLES, 0, true, false),
              (DataRegions{{50, 99}, {200, 250}}));
    m_regions->beginOpenRecording(5, 400);
    EXPECT_EQ(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 0, false, true),
              (DataRegions{{0, 99}, {200, 299}, {400, NO_TICK}}));
    EXPECT_EQ(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 0, true, true),
              (DataRegions{{0, 99}, {200, 299}, {400, 1000}}));
}

TEST_F(ChannelSamplesTest, DataRegionsAtALevelAreWholeReducedEntries)
{
    // Ticks 0..99 are entries 0..9, ticks 200..299 entries 20..29.
    EXPECT_EQ(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 1, false, false),
              (DataRegions{{0, 9}, {20, 29}}));
    // A region starting inside an entry leaves that entry out.
    m_regions->addRegion(5, ferrin::REGION_KIND_SAMPLES, 405, 449);
    EXPECT_EQ(m_channel->getDataRegions(400, 460, ferrin::REGION_KIND_SAMPLES, 1, false, false),
              (DataRegions{{41, 44}}));
    // Clipped to [ceil(first / 10), ceil(last / 10)].
    EXPECT_EQ(m_channel->getDataRegions(35, 225, ferrin::REGION_KIND_SAMPLES, 1, true, false),
              (DataRegions{{4, 9}, {20, 23}}));
    m_source->factor_kind0 = 0;
    EXPECT_TRUE(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 1, false, false).empty());
}

TEST_F(ChannelSamplesTest, DataRegionsAtALevelKeepAnOpenEndOpen)
{
    m_regions->beginOpenRecording(5, 500);
    EXPECT_EQ(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 1, false, false),
              (DataRegions{{0, 9}, {20, 29}, {50, NO_TICK}}))
        << "reduced levels always take the open recording";
    EXPECT_EQ(m_channel->getDataRegions(0, 1000, ferrin::REGION_KIND_SAMPLES, 1, true, false),
              (DataRegions{{0, 9}, {20, 29}, {50, 100}}));
    EXPECT_EQ(m_channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_SAMPLES, 1, false, false).back(),
              (ferrin::DataRegion{50, NO_TICK}))
        << "no overflow at the end of the tick range";
}

TEST_F(ChannelSamplesTest, EnsureLoadedReadsUnderAReservation)
{
    // 2.5 s is tick 25: recorded but not loaded.
    EXPECT_EQ(m_channel->getSampleAtTime(2.5), nullptr);
    const daq::SamplePtr sample = m_channel->getSampleAtTimeEnsureLoaded(2.5);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->timestamp, 25u);
    EXPECT_EQ(m_source->samples->calls,
              (std::vector<std::string>{"reserve 25..25 ChannelRoiController", "load 25..25",
                                        "release 25..25 ChannelRoiController"}));
}

TEST_F(ChannelSamplesTest, EnsureLoadedOnASynchronousChannelTriesWithoutLoadingFirst)
{
    const auto sync = makeChannel(ferrin::OCCURRENCE_SYNC);
    sync->always_there = true;
    ASSERT_NE(sync->getSampleAtTimeEnsureLoaded(2.5), nullptr);
    EXPECT_TRUE(m_source->samples->calls.empty()) << "the sample was there";
    EXPECT_EQ(sync->sample_reads, 1);

    sync->always_there = false;
    ASSERT_NE(sync->getSampleAtTimeEnsureLoaded(3.5), nullptr);
    EXPECT_EQ(sync->sample_reads, 3) << "once without, once under the reservation";
}

TEST_F(ChannelSamplesTest, EnsureLoadedGivesNothingOutsideTheRegions)
{
    EXPECT_EQ(m_channel->getSampleAtTimeEnsureLoaded(15.0), nullptr) << "tick 150 lies in the gap";
    EXPECT_EQ(m_channel->getSampleAtTimeEnsureLoaded(-1.0), nullptr);
    EXPECT_EQ(m_channel->sample_reads, 0);
    EXPECT_TRUE(m_source->samples->calls.empty());
}

TEST_F(ChannelSamplesTest, ReducedValueIsTheLastCompleteEntryBeforeTheTime)
{
    // 5.55 s is tick 55, inside entry 5: entry 4 is the last complete one.
    EXPECT_FALSE(m_channel->getReducedValueAtTime(5.55, 1, ferrin::REDUCED_KIND_SAMPLES, false))
        << "not loaded";
    const auto value = m_channel->getReducedValueAtTime(5.55, 1, ferrin::REDUCED_KIND_SAMPLES, true);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->min, 4.0);
    EXPECT_EQ(value->max, 5.0);
    EXPECT_EQ(value->avg, 4.5);
    EXPECT_EQ(value->rms, 4.25);
    EXPECT_EQ(m_source->reduced->recorder.calls,
              (std::vector<std::string>{"reserve 4..4 ChannelRoiController", "load 4..4",
                                        "release 4..4 ChannelRoiController"}));
}

TEST_F(ChannelSamplesTest, ReducedValueNeedsACompleteEntryAndAvailableData)
{
    EXPECT_FALSE(m_channel->getReducedValueAtTime(0.95, 1, ferrin::REDUCED_KIND_SAMPLES, true))
        << "tick 9 lies below the factor";
    EXPECT_FALSE(m_channel->getReducedValueAtTime(25.0, 1, ferrin::REDUCED_KIND_SAMPLES, true))
        << "entry 24 is not among the reduced regions";
    EXPECT_FALSE(m_channel->getReducedValueAtTime(-1.0, 1, ferrin::REDUCED_KIND_SAMPLES, true));
    EXPECT_FALSE(m_channel->getReducedValueAtTime(5.0, 2, ferrin::REDUCED_KIND_SAMPLES, true))
        << "no level 2";
    EXPECT_TRUE(m_source->reduced->recorder.calls.empty());

    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(m_channel->getReducedValueAtTime(5.0, 0, ferrin::REDUCED_KIND_SAMPLES, true));
    EXPECT_TRUE(asserts.fired("level > 0"));
}

} // namespace
