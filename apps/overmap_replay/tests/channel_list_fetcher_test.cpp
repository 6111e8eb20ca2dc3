#include <overmap_replay/channel_list_fetcher.h>

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/recording_channels.h>

#include <ferrin_core/scalar_channel.h>

#include <gtest/gtest.h>

namespace {

using channel_config::ChannelID;

lum::import::Recording recording(const std::string& source)
{
    lum::import::Recording result;
    result.source = source;
    result.channels.push_back({"latitude", "deg", {0.0, 0.1}, {48.0, 48.1}});
    result.channels.push_back({"longitude", "deg", {0.0, 0.1}, {10.0, 10.1}});
    return result;
}

class ChannelListFetcherTest : public ::testing::Test
{
protected:
    ChannelListFetcherTest()
    {
        lum::data::RecordingChannelOptions options;
        options.qualified_long_names = true;
        m_car1 = lum::data::makeRecordingChannels(recording("/d/car1.csv"), m_manager, nullptr, options);
        options.node_id = 2;
        options.first_stream_id = 10;
        m_car2 = lum::data::makeRecordingChannels(recording("/d/car2.csv"), m_manager, nullptr, options);
    }

    lum::data::MemoryChannelConfigManager m_manager;
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> m_car1;
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> m_car2;
    overmap_replay::ChannelListFetcher m_fetcher{m_manager};
};

TEST_F(ChannelListFetcherTest, FindsByIdThenByLongNameThenByShortName)
{
    EXPECT_EQ(m_fetcher.findById(ChannelID(2, 2)), m_car2[1]);
    EXPECT_EQ(m_fetcher.findByName("car2.latitude"), m_car2[0]);
    EXPECT_EQ(m_fetcher.findByName("longitude"), m_car1[1]) << "a short name takes the first recording's";
    EXPECT_EQ(m_fetcher.findByName("Car2.latitude"), nullptr) << "names are case-sensitive";
    ASSERT_EQ(m_fetcher.unresolved().size(), 1u);
    EXPECT_EQ(m_fetcher.unresolved()[0].describe(), "long name \"Car2.latitude\"");
}

TEST_F(ChannelListFetcherTest, AMissedIdRescuedByItsLongNameIsNotUnresolved)
{
    EXPECT_EQ(m_fetcher.findById(ChannelID(7, 1)), nullptr);
    EXPECT_EQ(m_fetcher.findByName("car1.latitude"), m_car1[0]);
    EXPECT_TRUE(m_fetcher.unresolved().empty());

    EXPECT_EQ(m_fetcher.findById(ChannelID(7, 2)), nullptr);
    EXPECT_EQ(m_fetcher.findByName("car7.latitude"), nullptr);
    EXPECT_EQ(m_fetcher.findById(ChannelID(3, 1)), nullptr);
    EXPECT_EQ(m_fetcher.findById(ChannelID(1, 1)), m_car1[0]);
    const auto unresolved = m_fetcher.unresolved();
    ASSERT_EQ(unresolved.size(), 2u);
    EXPECT_EQ(unresolved[0].describe(), "7/2 (long name \"car7.latitude\")");
    EXPECT_EQ(unresolved[1].describe(), "3/1");
    m_fetcher.clearUnresolved();
    EXPECT_TRUE(m_fetcher.unresolved().empty());
}

TEST_F(ChannelListFetcherTest, AnIdLeftWithoutANameLookupCountsAtTheEnd)
{
    EXPECT_EQ(m_fetcher.findById(ChannelID(1, 9)), nullptr);
    ASSERT_EQ(m_fetcher.unresolved().size(), 1u);
    EXPECT_EQ(m_fetcher.unresolved()[0].describe(), "1/9");
}

} // namespace
