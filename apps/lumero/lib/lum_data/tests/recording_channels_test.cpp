#include <lum_data/async_scalar_channel.h>
#include <lum_data/recording_channels.h>
#include <lum_data/sync_scalar_channel.h>

#include <lum_import/importers.h>

#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using lum::data::makeRecordingChannels;

TEST(RecordingChannels, AnEvenCsvBecomesSynchronousChannelsWithItsValues)
{
    const auto imported = lum::import::importCsv(LUMERO_EXAMPLES_DIR "/recordings/car1_drive_100hz.csv");
    ASSERT_TRUE(imported) << imported.error;
    const lum::import::Recording& recording = imported.recording;
    lum::data::MemoryChannelConfigManager manager;
    auto regions = std::make_shared<ferrin::DataRegionsManager>();
    const auto channels = makeRecordingChannels(recording, manager, regions);
    ASSERT_EQ(channels.size(), recording.channels.size());
    EXPECT_EQ(manager.channels().size(), channels.size());

    const lum::import::ImportedChannel& speed = *recording.channel("speed");
    const auto& channel = channels[4];
    ASSERT_NE(std::dynamic_pointer_cast<lum::data::SyncScalarChannel>(channel), nullptr);
    EXPECT_EQ(channel->getName(), "speed");
    EXPECT_EQ(channel->getUnit(), "km/h");
    EXPECT_EQ(channel->getChannelType(), static_cast<int>(channel_config::DAQChannelType::POSITION_VEL));
    EXPECT_TRUE(channel->isStored());
    for (std::size_t i = 0; i < speed.times.size(); i += 97) {
        // Half a period after a sample still reads that sample.
        EXPECT_EQ(channel->getValueAtTime(speed.times[i] + 0.005, nullptr), speed.values[i])
            << "sample " << i;
    }
    EXPECT_TRUE(std::isnan(channel->getValueAtTime(-0.5, nullptr)));
}

TEST(RecordingChannels, AGpxTrackReadsBackAtItsPointTimes)
{
    const auto imported = lum::import::importGpx(LUMERO_EXAMPLES_DIR "/recordings/car1_drive.gpx");
    ASSERT_TRUE(imported) << imported.error;
    lum::data::MemoryChannelConfigManager manager;
    const auto channels = makeRecordingChannels(imported.recording, manager, nullptr);
    ASSERT_FALSE(channels.empty());
    const lum::import::ImportedChannel& latitude = *imported.recording.channel("latitude");
    const auto& channel = channels.front();
    EXPECT_EQ(channel->getChannelType(), static_cast<int>(channel_config::DAQChannelType::POSITION_LAT));
    for (std::size_t i = 0; i < latitude.times.size(); i += 13)
        EXPECT_EQ(channel->getValueAtTime(latitude.times[i] + 1e-5, nullptr), latitude.values[i]) << i;
    EXPECT_EQ(channel->maxValue(), *std::max_element(latitude.values.begin(), latitude.values.end()));
}

TEST(RecordingChannels, AChannelWithoutSamplesIsLeftOutAndReported)
{
    lum::import::Recording recording;
    recording.channels.push_back({"empty", "", {}, {}});
    recording.channels.push_back({"x", "m", {0.0, 0.1, 0.35}, {1.0, 2.0, 3.0}});
    lum::data::MemoryChannelConfigManager manager;
    uni_testing::LogCapture log;
    const auto channels = makeRecordingChannels(recording, manager, nullptr);
    EXPECT_TRUE(log.contains("lum_data", SEV_ERROR, "channel empty of  has no usable samples"));
    ASSERT_EQ(channels.size(), 1u);
    EXPECT_EQ(channels[0]->getChannelId(), channel_config::ChannelID(1, 2))
        << "ids keep the recording's order";
    EXPECT_EQ(channels[0]->getValueAtTime(0.3, nullptr), 2.0);
    EXPECT_EQ(channels[0]->getSampleOccurrence(), ferrin::OCCURRENCE_ASYNC);
}

} // namespace
