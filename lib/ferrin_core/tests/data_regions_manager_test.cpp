#include <ferrin_core/data_regions_manager.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

namespace {

using ferrin::DataRegions;
using ferrin::DataRegionsManager;
using ferrin::NO_TICK;
using ferrin::RegionQuery;

constexpr std::uint64_t STREAM = 7;
constexpr std::uint32_t KIND = ferrin::REGION_KIND_SAMPLES;

RegionQuery query(ferrin::Tick first, ferrin::Tick last, bool clip, bool include_open)
{
    return RegionQuery{STREAM, first, last, KIND, clip, include_open};
}

class RegionsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_manager.addRegion(STREAM, KIND, 10, 19);
        m_manager.addRegion(STREAM, KIND, 40, 49);
        m_manager.addRegion(STREAM, KIND, 70, 79);
    }
    DataRegionsManager m_manager;
};

TEST_F(RegionsTest, TickAvailabilityFollowsTheIntervalsOfItsKindOnly)
{
    EXPECT_TRUE(m_manager.isAvailable(STREAM, KIND, 10));
    EXPECT_TRUE(m_manager.isAvailable(STREAM, KIND, 19));
    EXPECT_FALSE(m_manager.isAvailable(STREAM, KIND, 20));
    EXPECT_FALSE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 15));
    EXPECT_FALSE(m_manager.isAvailable(STREAM + 1, KIND, 15));
}

TEST_F(RegionsTest, OpenBoundsStepInwards)
{
    m_manager.addInterval(STREAM, ferrin::REGION_KIND_REDUCED, DataRegionsManager::Interval::open(100, 110));
    EXPECT_FALSE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 100));
    EXPECT_TRUE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 101));
    EXPECT_TRUE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 109));
    EXPECT_FALSE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 110));
    EXPECT_EQ(m_manager.regions(STREAM, ferrin::REGION_KIND_REDUCED), (DataRegions{{101, 109}}));
}

TEST_F(RegionsTest, TouchingRegionsJoinAndRemovalSplits)
{
    m_manager.addRegion(STREAM, KIND, 20, 39);
    EXPECT_EQ(m_manager.regions(STREAM, KIND), (DataRegions{{10, 49}, {70, 79}}));
    m_manager.removeRegion(STREAM, KIND, 30, 31);
    EXPECT_EQ(m_manager.regions(STREAM, KIND), (DataRegions{{10, 29}, {32, 49}, {70, 79}}));
}

TEST_F(RegionsTest, ARangeMustLieInOneInterval)
{
    EXPECT_TRUE(m_manager.isRangeAvailable(STREAM, KIND, 40, 49));
    EXPECT_TRUE(m_manager.isRangeAvailable(STREAM, KIND, 42, 42));
    EXPECT_FALSE(m_manager.isRangeAvailable(STREAM, KIND, 45, 72)) << "spans a gap";
    EXPECT_FALSE(m_manager.isRangeAvailable(STREAM, KIND, 45, 50));
}

TEST_F(RegionsTest, ARangeTheWrongWayRoundIsAFault)
{
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(m_manager.isRangeAvailable(STREAM, KIND, 49, 40));
    EXPECT_TRUE(asserts.fired("false"));
}

TEST_F(RegionsTest, OpenRecordingMakesEverythingFromItsStartAvailable)
{
    m_manager.beginOpenRecording(STREAM, 100);
    EXPECT_FALSE(m_manager.isAvailable(STREAM, KIND, 99));
    EXPECT_TRUE(m_manager.isAvailable(STREAM, KIND, 100));
    EXPECT_TRUE(m_manager.isAvailable(STREAM, ferrin::REGION_KIND_REDUCED, 1000000)) << "any kind";
    EXPECT_TRUE(m_manager.isRangeAvailable(STREAM, KIND, 150, 5000));
    EXPECT_FALSE(m_manager.isRangeAvailable(STREAM, KIND, 90, 150)) << "starts before the recording";

    const auto ended = m_manager.endOpenRecording(STREAM);
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->start_tick, 100u);
    EXPECT_FALSE(m_manager.isAvailable(STREAM, KIND, 100));
}

TEST_F(RegionsTest, QueryWithoutOpenRecording)
{
    EXPECT_EQ(m_manager.getRegions(query(15, 45, false, true)), (DataRegions{{10, 19}, {40, 49}}));
    EXPECT_EQ(m_manager.getRegions(query(15, 45, true, false)), (DataRegions{{15, 19}, {40, 45}}));
    EXPECT_EQ(m_manager.getRegions(query(20, 39, false, false)), DataRegions{});
    EXPECT_EQ(m_manager.getRegions(query(45, 15, false, false)), DataRegions{}) << "last below first";
    EXPECT_EQ(m_manager.getRegions(query(0, NO_TICK, false, false)),
              (DataRegions{{10, 19}, {40, 49}, {70, 79}}));
}

TEST_F(RegionsTest, OpenRecordingAfterTheIntervalsIsALastEntryWithoutEnd)
{
    m_manager.beginOpenRecording(STREAM, 100);
    EXPECT_EQ(m_manager.getRegions(query(0, 200, false, true)),
              (DataRegions{{10, 19}, {40, 49}, {70, 79}, {100, NO_TICK}}));
    EXPECT_EQ(m_manager.getRegions(query(0, 200, true, true)),
              (DataRegions{{10, 19}, {40, 49}, {70, 79}, {100, 200}}));
    EXPECT_EQ(m_manager.getRegions(query(0, 200, false, false)), (DataRegions{{10, 19}, {40, 49}, {70, 79}}));
    EXPECT_EQ(m_manager.getRegions(query(0, 99, false, true)), (DataRegions{{10, 19}, {40, 49}, {70, 79}}))
        << "starts after the range";
}

TEST_F(RegionsTest, OpenRecordingInsideAnIntervalMergesWithIt)
{
    // The writer went on from inside the last interval: one region from 70, open-ended.
    m_manager.beginOpenRecording(STREAM, 75);
    EXPECT_EQ(m_manager.getRegions(query(0, 200, false, true)),
              (DataRegions{{10, 19}, {40, 49}, {70, NO_TICK}}));
    EXPECT_EQ(m_manager.getRegions(query(15, 200, true, true)), (DataRegions{{15, 19}, {40, 49}, {70, 200}}));
}

TEST_F(RegionsTest, OpenRecordingBeforeTheRangeClippedIsOneRegion)
{
    m_manager.beginOpenRecording(STREAM, 30);
    EXPECT_EQ(m_manager.getRegions(query(45, 90, true, true)), (DataRegions{{45, 90}}));
    // Unclipped, the first overlapping interval absorbs the recording and the walk ends.
    EXPECT_EQ(m_manager.getRegions(query(45, 90, false, true)), (DataRegions{{30, NO_TICK}}));
    EXPECT_EQ(m_manager.getRegions(query(50, 65, false, true)), (DataRegions{{30, NO_TICK}}));
}

TEST_F(RegionsTest, ClearStreamForgetsIntervalsAndRecording)
{
    m_manager.beginOpenRecording(STREAM, 500);
    m_manager.clearStream(STREAM);
    EXPECT_EQ(m_manager.getRegions(query(0, NO_TICK, false, true)), DataRegions{});
    EXPECT_FALSE(m_manager.openRecording(STREAM));
}

} // namespace
