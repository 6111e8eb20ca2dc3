#include "setup_fixture.h"
#include "test_support.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_path.h>

#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <lum_data/recording_channels.h>
#include <lum_import/importers.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

using overmap::ObjectManager;
using overmap::XmlReadWriter;

TEST(XmlRoundTrip, GeneratedSetupsWriteTheSameTextAfterAReadAndReadWithoutComplaint)
{
    om_test::RecordingChannels recording;
    om_test::ListChannelFetcher fetcher;
    fetcher.channels = recording.channels();
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        ObjectManager original;
        om_test::generateSetup(original, seed, recording.channels());
        const std::string first = om_test::writeSetup(original);

        uni_testing::LogCapture log;
        ObjectManager copy;
        ASSERT_TRUE(XmlReadWriter(&copy, &fetcher).read(first)) << "seed " << seed << "\n" << first;
        EXPECT_EQ(log.count("overmap", SEV_NOTE, ""), 0u) << "seed " << seed;
        EXPECT_EQ(copy.objectCount(), original.objectCount()) << "seed " << seed;
        EXPECT_EQ(copy.calculationCount(), original.calculationCount()) << "seed " << seed;
        const std::string second = om_test::writeSetup(copy);
        ASSERT_EQ(second, first) << "seed " << seed;
    }
}

TEST(XmlRoundTrip, ReadObjectsKeepTheirChannelsReferencesAndLocator)
{
    om_test::RecordingChannels recording(3);
    om_test::ListChannelFetcher fetcher;
    fetcher.channels = recording.channels();
    ObjectManager original;
    om_test::generateSetup(original, 7, recording.channels());
    ObjectManager copy;
    ASSERT_TRUE(XmlReadWriter(&copy, &fetcher).read(om_test::writeSetup(original)));

    ASSERT_EQ(copy.objectCount(), original.objectCount());
    for (std::size_t i = 0; i < copy.objectCount(); ++i) {
        const auto theirs = std::dynamic_pointer_cast<overmap::PositionObject>(original.objectAt(i));
        const auto ours = std::dynamic_pointer_cast<overmap::PositionObject>(copy.objectAt(i));
        ASSERT_EQ(theirs == nullptr, ours == nullptr) << i;
        EXPECT_EQ(copy.objectAt(i)->getId(), original.objectAt(i)->getId());
        if (!ours)
            continue;
        // Same channel objects, found again by id.
        EXPECT_EQ(ours->getLatitudeChannel(), theirs->getLatitudeChannel()) << i;
        EXPECT_EQ(ours->getHeadingChannel(), theirs->getHeadingChannel()) << i;
        ASSERT_EQ(ours->getReferenceObject() == nullptr, theirs->getReferenceObject() == nullptr) << i;
        if (ours->getReferenceObject()) {
            EXPECT_EQ(ours->getReferenceObject()->getId(), theirs->getReferenceObject()->getId());
            EXPECT_EQ(ours->getReferenceObject(),
                      copy.findPositionObjectById(ours->getReferenceObject()->getId()));
        }
        EXPECT_LT(om_test::metres(ours->getGeoPosition(), theirs->getGeoPosition()), 1e-6) << i;
    }
    ASSERT_NE(copy.getLocator(), nullptr);
    const auto locator = std::dynamic_pointer_cast<overmap::Locator>(copy.getLocator());
    ASSERT_NE(locator, nullptr);
    ASSERT_EQ(locator->getQualityPositions().size(), 3u);
    EXPECT_EQ(locator->getQualityPositions()[2].lowerLimit, 2.0);
    EXPECT_EQ(locator->getQualityPositions()[2].upperLimit, 2.5);
    EXPECT_EQ(locator->getQualityPositions()[2].channel, recording.byName("fix_quality"));
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The channels of both example recordings, car 1 on node 1 and car 2 on node 2, as the
/// replay tool makes them.
class ExampleChannels
{
public:
    ExampleChannels()
    {
        for (std::uint32_t node : {1u, 2u}) {
            const auto imported =
                lum::import::importCsv(std::string(LUMERO_EXAMPLES_DIR) + "/recordings/car" +
                                       std::to_string(node) + "_drive_100hz.csv");
            EXPECT_TRUE(imported) << imported.error;
            lum::data::RecordingChannelOptions options;
            options.node_id = node;
            options.first_stream_id = node * 100;
            for (const auto& channel :
                 lum::data::makeRecordingChannels(imported.recording, m_config, m_regions, options))
                fetcher.channels.push_back(channel);
        }
    }
    om_test::ListChannelFetcher fetcher;

private:
    lum::data::MemoryChannelConfigManager m_config;
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
};

TEST(XmlExample, TheProvingGroundReadsOnTheExampleRecordingsAndWritesBackUnchanged)
{
    const std::string text = readFile(std::string(LUMERO_EXAMPLES_DIR) + "/setups/proving_ground.xml");
    ASSERT_FALSE(text.empty());
    ExampleChannels channels;
    uni_testing::LogCapture log;
    ObjectManager manager;
    ASSERT_TRUE(XmlReadWriter(&manager, &channels.fetcher).read(text));
    EXPECT_EQ(log.count("overmap", SEV_NOTE, "Can't find channel"), 0u);
    EXPECT_EQ(om_test::writeSetup(manager), text);

    const auto car2 = std::dynamic_pointer_cast<overmap::Car>(manager.findObjectById(2));
    ASSERT_NE(car2, nullptr);
    ASSERT_NE(car2->getLatitudeChannel(), nullptr);
    EXPECT_EQ(car2->getLatitudeChannel()->getChannelId(), channel_config::ChannelID(2, 1));
    EXPECT_GT(car2->getContour().size(), 8u);
    const auto locator = std::dynamic_pointer_cast<overmap::Locator>(manager.getLocator());
    ASSERT_NE(locator, nullptr);
    ASSERT_EQ(locator->getQualityPositions().size(), 3u);
    for (const overmap::QualityPosition& range : locator->getQualityPositions()) {
        ASSERT_NE(range.channel, nullptr);
        EXPECT_EQ(range.channel->getName(), "fix_quality");
        EXPECT_EQ(range.channel->getChannelId(), channel_config::ChannelID(1, 6));
    }
    std::size_t cones = 0;
    std::size_t vertices = 0;
    for (const auto& object : manager.getObjects()) {
        cones += std::dynamic_pointer_cast<overmap::Cone>(object) != nullptr;
        if (const auto path = std::dynamic_pointer_cast<overmap::TrackPath>(object))
            vertices = path->getPositions().size();
    }
    EXPECT_EQ(cones, 13u);
    EXPECT_GT(vertices, 2000u);
    EXPECT_EQ(manager.calculationCount(), 6u);
}

} // namespace
