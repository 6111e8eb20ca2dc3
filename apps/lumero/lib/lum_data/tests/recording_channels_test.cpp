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
    lum::data::RecordingChannelOptions options;
    options.time_origin = recording.start_time;
    const auto channels = makeRecordingChannels(recording, manager, regions, options);
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
    lum::data::RecordingChannelOptions options;
    options.time_origin = imported.recording.start_time;
    const auto channels = makeRecordingChannels(imported.recording, manager, nullptr, options);
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

TEST(RecordingChannels, EachBundledRecordingGetsIdsNamesUnitsAndItsAbsoluteStart)
{
    const char* const files[] = {"car1_drive_100hz.csv", "car2_drive_100hz.csv", "car1_drive.nmea",
                                 "car1_drive.gpx"};
    std::uint32_t node = 0;
    for (const char* file : files) {
        SCOPED_TRACE(file);
        const auto imported =
            lum::import::importRecording(std::string(LUMERO_EXAMPLES_DIR "/recordings/") + file);
        ASSERT_TRUE(imported) << imported.error;
        const lum::import::Recording& recording = imported.recording;
        ASSERT_TRUE(std::isfinite(recording.start_time));
        lum::data::MemoryChannelConfigManager manager;
        lum::data::RecordingChannelOptions options;
        options.node_id = ++node;
        options.qualified_long_names = true;
        const auto channels = makeRecordingChannels(recording, manager, nullptr, options);
        ASSERT_EQ(channels.size(), recording.channels.size());
        const std::string stem = std::string(file).substr(0, std::string(file).rfind('.'));
        for (std::size_t i = 0; i < channels.size(); ++i) {
            const lum::import::ImportedChannel& imported_channel = recording.channels[i];
            const auto& channel = channels[i];
            EXPECT_EQ(channel->getChannelId(),
                      channel_config::ChannelID(node, static_cast<std::uint32_t>(i + 1)));
            EXPECT_EQ(channel->getName(), imported_channel.name);
            EXPECT_EQ(channel->getLongName(), stem + "." + imported_channel.name);
            EXPECT_EQ(channel->getUnit(), imported_channel.unit);
            // Tick 0 stands at the absolute time of the channel's first sample.
            EXPECT_DOUBLE_EQ(channel->getTimeBase()->getStartTime(),
                             recording.start_time +
                                 (channel->getSampleOccurrence() == ferrin::OCCURRENCE_ASYNC
                                      ? 0.0
                                      : imported_channel.times.front()));
            const double first = recording.start_time + imported_channel.times.front();
            EXPECT_EQ(channel->getValueAtTime(first + 1e-3, nullptr), imported_channel.values.front());
            EXPECT_TRUE(std::isnan(channel->getValueAtTime(first - 1.0, nullptr)));
        }
    }
    EXPECT_EQ(node, 4u);
}

TEST(RecordingChannels, LongNamesComeFromTheFileStem)
{
    {
        lum::import::Recording recording;
        recording.source = "/data/car_a.csv";
        recording.channels.push_back({"speed", "m/s", {0.0, 0.1}, {1.0, 2.0}});
        lum::data::MemoryChannelConfigManager manager;
        const auto channels = makeRecordingChannels(recording, manager, nullptr);
        ASSERT_EQ(channels.size(), 1u);
        EXPECT_EQ(channels[0]->getLongName(), "speed") << "unqualified by default";
    }
    lum::import::Recording recording;
    recording.source = "/data/run.1/car_a.csv";
    EXPECT_EQ(lum::data::recordingLongName(recording, "speed"), "car_a.speed");
    recording.source = "C:\\runs\\b";
    EXPECT_EQ(lum::data::recordingLongName(recording, "speed"), "b.speed");
    recording.source = "";
    EXPECT_EQ(lum::data::recordingLongName(recording, "speed"), "speed");
}

} // namespace
