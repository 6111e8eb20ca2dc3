#include "om_ui_test_support.h"

#include <om_ui/qchannel_fetcher.h>

#include <ferrin_core/scalar_channel.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

namespace {

class QChannelFetcherTest : public ::testing::Test
{
protected:
    QChannelFetcherTest()
    {
        speed = channels.add(om_ui_test::makeScalar(10.0, {1.0}, "Speed"));
        vector = channels.add(om_ui_test::makeNonScalar("Spectrum"));
        fetcher.setChannelList(&channels.model());
    }

    om_ui_test::ChannelList channels;
    overmap_ui::QChannelFetcher fetcher;
    lum::qchannel::QChannel* speed = nullptr;
    lum::qchannel::QChannel* vector = nullptr;
};

TEST_F(QChannelFetcherTest, FindsScalarChannelsByIdAndName)
{
    uni_testing::LogCapture log;
    EXPECT_EQ(fetcher.findById(speed->ferrinChannel()->getChannelId()), speed->ferrinScalarChannel());
    EXPECT_EQ(fetcher.findByName("Speed"), speed->ferrinScalarChannel());
    EXPECT_EQ(fetcher.findById(vector->ferrinChannel()->getChannelId()), nullptr);
    EXPECT_EQ(fetcher.findByName("Spectrum"), nullptr);
    EXPECT_TRUE(log.none("overmap")) << "another kind of channel is no failure to find";
}

TEST_F(QChannelFetcherTest, MissingChannelsAreLoggedAndEmpty)
{
    uni_testing::LogCapture log;
    EXPECT_EQ(fetcher.findById(channel_config::ChannelID(7, 7)), nullptr);
    EXPECT_EQ(fetcher.findByName("speed"), nullptr) << "names compare with case";
    EXPECT_EQ(log.count("overmap", 5, "Unable to fetch in QChannelFetcher channel #"), 1u);
    EXPECT_TRUE(log.contains("overmap", 5, "Unable to fetch in QChannelFetcher channel speed"));
}

TEST_F(QChannelFetcherTest, LocalIdsTakeTheNodeOfTheExtension)
{
    const channel_config::ChannelID id = speed->ferrinChannel()->getChannelId();
    EXPECT_EQ(fetcher.getChannelByLocalId(id.getLocalId()), nullptr) << "node 0 at first";
    fetcher.setNodeId(id.getNodeId());
    EXPECT_EQ(fetcher.getChannelByLocalId(id.getLocalId()), speed);
    EXPECT_EQ(fetcher.qchannelOf(vector->ferrinChannel().get()), vector);
    EXPECT_EQ(fetcher.qchannelOf(nullptr), nullptr);
}

TEST(QChannelFetcherWithoutList, Asserts)
{
    overmap_ui::QChannelFetcher fetcher;
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(fetcher.findById(channel_config::ChannelID(1, 1)), nullptr);
    EXPECT_EQ(fetcher.findByName("x"), nullptr);
    EXPECT_EQ(fetcher.getChannelByLocalId(1), nullptr);
    EXPECT_EQ(asserts.size(), 3u);
    EXPECT_TRUE(asserts.fired("m_channel_list != nullptr"));
}

} // namespace
