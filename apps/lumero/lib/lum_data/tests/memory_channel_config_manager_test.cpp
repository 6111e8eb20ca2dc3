#include <lum_data/memory_channel_config_manager.h>

#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

namespace {

using channel_config::ChannelID;
using config_items::SingleValueConfigItem;
using config_items::StringConfigItem;
using lum::data::MemoryChannelConfigManager;

/// A channel with configuration only.
class ConfigOnlyChannel : public ferrin::Channel
{
public:
    using Channel::Channel;
    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return nullptr; }
    daq::SamplePtr getSampleAtTime(double) const override { return nullptr; }
};

class ListRecorder : public ferrin::ChannelListModelObserver
{
public:
    void notify(ferrin::NotificationType type, std::shared_ptr<ferrin::Channel> channel) override
    {
        events.push_back(std::to_string(type) + (channel ? " " + channel->getChannelId().toString() : ""));
    }
    std::vector<std::string> events;
};

class ConfigManagerTest : public ::testing::Test
{
protected:
    std::shared_ptr<ConfigOnlyChannel> makeChannel(std::uint32_t local_id)
    {
        auto items = std::make_shared<ferrin::ConfigItemStore>();
        items->set("Ferrin/Name", StringConfigItem("ch" + std::to_string(local_id)));
        items->set("Used", SingleValueConfigItem<bool>(false));
        ferrin::ChannelSetup setup;
        setup.id = ChannelID(1, local_id);
        setup.items = items;
        setup.config_manager = &m_manager;
        return std::make_shared<ConfigOnlyChannel>(std::move(setup));
    }

    void SetUp() override
    {
        m_manager.addChannel(m_a);
        m_manager.addChannel(m_b);
        m_a->registerObserver(this, [this](ChannelID id, const std::string& key) {
            m_changes.push_back(id.toString() + " " + key);
        });
    }
    void TearDown() override { m_a->registerObserver(this, {}); }

    MemoryChannelConfigManager m_manager;
    std::shared_ptr<ConfigOnlyChannel> m_a = makeChannel(1);
    std::shared_ptr<ConfigOnlyChannel> m_b = makeChannel(2);
    std::vector<std::string> m_changes;
};

TEST_F(ConfigManagerTest, ARequestThroughTheChannelChangesTheItemAndTellsTheObservers)
{
    EXPECT_TRUE(m_a->setConfigItem("Ferrin/Name", StringConfigItem("speed")));
    EXPECT_EQ(m_a->getName(), "speed");
    EXPECT_EQ(m_changes, std::vector<std::string>{ChannelID(1, 1).toString() + " Ferrin/Name"});
    EXPECT_EQ(m_manager.appliedRequestCount(), 1u);
}

TEST_F(ConfigManagerTest, ABatchIsAppliedWhollyOrNotAtAll)
{
    uni_testing::LogCapture log;
    const ferrin_config::ConfigRequests batch{{ChannelID(1, 1), "Ferrin/Name", StringConfigItem("x")},
                                              {ChannelID(1, 2), "Used", StringConfigItem("true")}};
    EXPECT_FALSE(m_manager.applyConfigRequests(batch, 0, true, false, false));
    EXPECT_TRUE(log.contains("lum_data", SEV_ERROR, "key Used holds Bool, not String"));
    EXPECT_EQ(m_a->getName(), "ch1") << "the valid first request was not applied either";
    EXPECT_TRUE(m_changes.empty());

    EXPECT_FALSE(m_manager.applyConfigRequests({{ChannelID(1, 9), "Used", SingleValueConfigItem<bool>(true)}},
                                               0, true, false, false));
    EXPECT_TRUE(log.contains("lum_data", SEV_ERROR, "no channel " + ChannelID(1, 9).toString()));
    EXPECT_FALSE(m_manager.applyConfigRequests({{ChannelID(1, 1), "New/Key", StringConfigItem("v")}}, 0, true,
                                               false, false));
    EXPECT_FALSE(m_manager.applyConfigRequests(
        {{ChannelID(1, 1), "Used", config_items::InvalidConfigItem("broken")}}, 0, true, false, true))
        << "an invalid item is never stored, not even by force";
}

TEST_F(ConfigManagerTest, ForceTakesNewKeysAndOtherTypes)
{
    EXPECT_TRUE(m_manager.applyConfigRequests({{ChannelID(1, 1), "New/Key", StringConfigItem("v")},
                                               {ChannelID(1, 1), "Used", StringConfigItem("yes")}},
                                              0, true, false, true));
    EXPECT_EQ(channel_config::toString(m_a->getConfigItem("New/Key")), "v");
    EXPECT_EQ(m_a->getConfigKeys().back(), "New/Key");
    EXPECT_EQ(m_changes.size(), 2u);
}

TEST_F(ConfigManagerTest, ValidateOnlyAndSilentChanges)
{
    EXPECT_TRUE(m_manager.applyConfigRequests({{ChannelID(1, 1), "Ferrin/Name", StringConfigItem("x")}}, 0,
                                              true, true, false));
    EXPECT_EQ(m_a->getName(), "ch1");
    EXPECT_TRUE(m_changes.empty());
    EXPECT_TRUE(m_manager.applyConfigRequests({{ChannelID(1, 1), "Ferrin/Name", StringConfigItem("x")}}, 0,
                                              false, false, false));
    EXPECT_EQ(m_a->getName(), "x");
    EXPECT_TRUE(m_changes.empty()) << "notify off";
}

TEST_F(ConfigManagerTest, AnObserverMayChangeItemsItself)
{
    // No lock is held while observers run, so a dependent change from inside works.
    m_b->registerObserver(this, [this](ChannelID, const std::string& key) {
        if (key == "Ferrin/Name")
            m_b->setConfigItem("Used", SingleValueConfigItem<bool>(true));
    });
    EXPECT_TRUE(m_b->setConfigItem("Ferrin/Name", StringConfigItem("y")));
    EXPECT_TRUE(m_b->isUsed());
    m_b->registerObserver(this, {});
}

TEST_F(ConfigManagerTest, ListObserversSeeAddReplaceRemoveAndClear)
{
    ListRecorder recorder;
    m_manager.addListObserver(&recorder);
    m_manager.addChannel(makeChannel(3));
    m_manager.addChannel(makeChannel(3));
    EXPECT_TRUE(m_manager.removeChannel(ChannelID(1, 3)));
    EXPECT_FALSE(m_manager.removeChannel(ChannelID(1, 3)));
    m_manager.clear();
    m_manager.removeListObserver(&recorder);
    m_manager.addChannel(makeChannel(4));
    const std::string id3 = ChannelID(1, 3).toString();
    EXPECT_EQ(recorder.events, (std::vector<std::string>{"0 " + id3, "2 " + id3, "1 " + id3, "3"}));
    EXPECT_EQ(m_manager.channels().size(), 1u);
}

TEST_F(ConfigManagerTest, ChannelActionsRunTheirHandler)
{
    uni_testing::LogCapture log;
    EXPECT_FALSE(m_manager.applyChannelAction("ACTION:Zero", {ChannelID(1, 1)}, 1.0));
    EXPECT_TRUE(log.contains("lum_data", SEV_ERROR, "no handler for channel action ACTION:Zero"));

    std::vector<ChannelID> seen;
    double seen_time = 0;
    m_manager.setActionHandler("ACTION:Zero", [&](const std::vector<ChannelID>& channels, double time) {
        seen = channels;
        seen_time = time;
        return true;
    });
    m_a->getItemStore()->set("Used", SingleValueConfigItem<bool>(true));
    m_a->getItemStore()->set("ACTION:Zero", SingleValueConfigItem<bool>(true));
    EXPECT_TRUE(m_a->applyChannelAction("ACTION:Zero", 4.5));
    EXPECT_EQ(seen, std::vector<ChannelID>{ChannelID(1, 1)});
    EXPECT_EQ(seen_time, 4.5);
}

} // namespace
