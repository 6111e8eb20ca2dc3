#include "channel_test_fakes.h"

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using channel_config::ChannelID;
using config_items::GenericEnumConfigItem;
using config_items::SingleValueConfigItem;
using config_items::StringConfigItem;
using ferrin_test::FakeChannel;
using ferrin_test::FakeSource;
using ferrin_test::RecordingConfigManager;

class ChannelConfigTest : public ::testing::Test
{
protected:
    std::shared_ptr<FakeChannel> makeChannel(std::shared_ptr<ferrin::ConfigItemStore> items)
    {
        ferrin::ChannelSetup setup;
        setup.id = ChannelID(3, 7);
        setup.items = std::move(items);
        setup.config_manager = &m_manager;
        return std::make_shared<FakeChannel>(std::move(setup), std::make_shared<FakeSource>());
    }

    void SetUp() override
    {
        m_items->set("Ferrin/Name", StringConfigItem("speed"));
        m_items->set("Ferrin/LongName", StringConfigItem(""));
        m_items->set("Ferrin/PhysicalUnit", StringConfigItem(""));
        m_items->set("Unit", StringConfigItem("km/h"));
        m_items->set("Used", SingleValueConfigItem<bool>(true));
        m_items->set("ChannelType", SingleValueConfigItem<channel_config::DAQChannelType>(
                                        channel_config::DAQChannelType::POSITION_VEL));
        m_items->set("ACTION:Zero", SingleValueConfigItem<bool>(true));
        m_items->set("ACTION:Tare", SingleValueConfigItem<bool>(false));
        m_channel = makeChannel(m_items);
    }

    RecordingConfigManager m_manager;
    std::shared_ptr<ferrin::ConfigItemStore> m_items = std::make_shared<ferrin::ConfigItemStore>();
    std::shared_ptr<FakeChannel> m_channel;
};

TEST_F(ChannelConfigTest, NamesAndUnitsFallBackAsDocumented)
{
    EXPECT_EQ(m_channel->getName(), "speed");
    EXPECT_EQ(m_channel->getLongName(), "speed") << "empty long name";
    EXPECT_EQ(m_channel->getUnit(), "km/h") << "empty physical unit";
    EXPECT_EQ(m_channel->getColor(), "black");
    EXPECT_EQ(m_channel->getDomain(), "");
    m_items->set("Ferrin/PhysicalUnit", StringConfigItem("m/s"));
    m_items->set("Ferrin/LongName", StringConfigItem("vehicle speed"));
    m_items->set("Ferrin/Color", StringConfigItem("#ff0000"));
    EXPECT_EQ(m_channel->getUnit(), "m/s");
    EXPECT_EQ(m_channel->getLongName(), "vehicle speed");
    EXPECT_EQ(m_channel->getColor(), "#ff0000");
}

TEST_F(ChannelConfigTest, ChannelTypeOfAnotherKindIs59)
{
    EXPECT_EQ(m_channel->getChannelType(), 20);
    m_items->set("ChannelType", StringConfigItem("Analog"));
    EXPECT_EQ(m_channel->getChannelType(), 59);
    m_items->remove("ChannelType");
    EXPECT_EQ(m_channel->getChannelType(), 59);
}

TEST_F(ChannelConfigTest, StoredNeedsUsedAndAMatchingEnumeration)
{
    EXPECT_TRUE(m_channel->isStored()) << "used, no enumeration";
    m_items->set("Ferrin/Stored", GenericEnumConfigItem("ChannelStored", "No"));
    EXPECT_FALSE(m_channel->isStored());
    m_items->set("Ferrin/Stored", GenericEnumConfigItem("ChannelStored", "Auto"));
    EXPECT_TRUE(m_channel->isStored());
    m_items->set("Ferrin/Stored", GenericEnumConfigItem("ReducedFormat", "r_r_r"));
    try {
        (void)m_channel->isStored();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "enum type not matching");
    }
    m_items->set("Used", SingleValueConfigItem<bool>(false));
    EXPECT_FALSE(m_channel->isStored()) << "an unused channel is never stored";
    EXPECT_FALSE(m_channel->isUsed());
}

TEST_F(ChannelConfigTest, FlagsWithoutItems)
{
    const auto bare = makeChannel(std::make_shared<ferrin::ConfigItemStore>());
    EXPECT_FALSE(bare->isUsed());
    EXPECT_FALSE(bare->isHidden());
    EXPECT_TRUE(bare->isNameUnique());
    EXPECT_FALSE(bare->getMetadataChannelOf());
    m_items->set("Visibility", GenericEnumConfigItem("", "NONE"));
    EXPECT_TRUE(m_channel->isHidden());
    m_items->set("MetadataChannelOf", SingleValueConfigItem<ChannelID>(ChannelID(3, 1)));
    EXPECT_EQ(m_channel->getMetadataChannelOf(), ChannelID(3, 1));
}

TEST_F(ChannelConfigTest, RangeReadersThrowAndTheCallerGetsNaN)
{
    EXPECT_THROW((void)m_channel->readRange(), ferrin::InvalidRangeException);
    EXPECT_TRUE(std::isnan(m_channel->getRangeMinimum()));
    m_items->set("Range", StringConfigItem("-5 .. 5"));
    EXPECT_THROW((void)m_channel->readRange(), ferrin::InvalidRangeException) << "not a range item";
    m_items->set("Range", config_items::RangeConfigItem<double>(-5.0, 5.0, "V", "V"));
    EXPECT_EQ(m_channel->getRangeMinimum(), -5.0);
    EXPECT_EQ(m_channel->getRangeMaximum(), 5.0);
}

TEST_F(ChannelConfigTest, MissingItemsAreInvalidItems)
{
    const ferrin::ConfigItem missing = m_channel->getConfigItem("No/Such");
    EXPECT_TRUE(std::holds_alternative<config_items::InvalidConfigItem>(missing));
    EXPECT_FALSE(m_channel->hasConfigItem("No/Such"));

    ferrin::ChannelSetup setup;
    const auto storeless = std::make_shared<FakeChannel>(std::move(setup), std::make_shared<FakeSource>());
    EXPECT_TRUE(std::holds_alternative<config_items::InvalidConfigItem>(storeless->getConfigItem("Used")));
    EXPECT_FALSE(storeless->hasConfigItem("Used"));
    EXPECT_TRUE(storeless->getConstraints("Used").empty());
    EXPECT_TRUE(storeless->getConfigKeys().empty());
    EXPECT_EQ(storeless->getName(), "");
    EXPECT_EQ(m_channel->getConfigKeys().front(), "Ferrin/Name") << "store order";
}

TEST_F(ChannelConfigTest, SetConfigItemSendsOneRequestWithTheFixedArguments)
{
    EXPECT_TRUE(m_channel->setConfigItem("Unit", StringConfigItem("mph")));
    ASSERT_EQ(m_manager.batches.size(), 1u);
    ASSERT_EQ(m_manager.batches[0].size(), 1u);
    EXPECT_EQ(m_manager.batches[0][0].channel_id, ChannelID(3, 7));
    EXPECT_EQ(m_manager.batches[0][0].key, "Unit");
    EXPECT_EQ(channel_config::toString(m_manager.batches[0][0].item), "mph");
    EXPECT_EQ(m_manager.arguments[0].timeout_ms, 0u);
    EXPECT_TRUE(m_manager.arguments[0].notify);
    EXPECT_FALSE(m_manager.arguments[0].validate_only);
    EXPECT_FALSE(m_manager.arguments[0].force);
    EXPECT_EQ(m_channel->getUnit(), "km/h") << "the channel never writes its items itself";

    EXPECT_FALSE(m_channel->setConfigItem("No/Such", StringConfigItem("x")));
    EXPECT_EQ(m_manager.batches.size(), 1u) << "nothing sent for an unknown key";

    m_manager.answer = false;
    EXPECT_FALSE(m_channel->setConfigItem("Unit", StringConfigItem("mph")));
}

TEST_F(ChannelConfigTest, SetConfigItemsChecksEveryChannelId)
{
    EXPECT_TRUE(m_channel->setConfigItems({}));
    EXPECT_TRUE(m_manager.batches.empty());

    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(m_channel->setConfigItems({{ChannelID(3, 7), "Unit", StringConfigItem("a")},
                                            {ChannelID(3, 8), "Unit", StringConfigItem("b")}}));
    EXPECT_TRUE(
        asserts.fired("request.channel_id == m_id", "SetConfigItems request contains invalid channel id"));
    EXPECT_TRUE(m_manager.batches.empty()) << "nothing sent";

    EXPECT_TRUE(m_channel->setConfigItems({{ChannelID(3, 7), "Unit", StringConfigItem("a")},
                                           {ChannelID(3, 7), "Ferrin/Name", StringConfigItem("b")}}));
    ASSERT_EQ(m_manager.batches.size(), 1u) << "one call for all";
    EXPECT_EQ(m_manager.batches[0].size(), 2u);
}

TEST_F(ChannelConfigTest, WithoutConfigManagerTheFaultIsReported)
{
    ferrin::ChannelSetup setup;
    setup.items = m_items;
    const auto orphan = std::make_shared<FakeChannel>(std::move(setup), std::make_shared<FakeSource>());
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(orphan->setConfigItem("Unit", StringConfigItem("mph")));
    EXPECT_TRUE(asserts.fired("m_channel_config_manager != nullptr", "ChannelConfigManager is not set!"));
}

TEST_F(ChannelConfigTest, ActionsNeedATrueFlagAndAUsedChannel)
{
    EXPECT_TRUE(m_channel->isChannelActionAvailable("ACTION:Zero"));
    EXPECT_FALSE(m_channel->isChannelActionAvailable("ACTION:Tare"));
    EXPECT_FALSE(m_channel->isChannelActionAvailable("Unit")) << "not a bool";
    EXPECT_FALSE(m_channel->applyChannelAction("ACTION:Tare", 1.0));
    EXPECT_TRUE(m_channel->applyChannelAction("ACTION:Zero", 2.5));
    ASSERT_EQ(m_manager.actions.size(), 1u);
    EXPECT_EQ(m_manager.actions[0].key, "ACTION:Zero");
    EXPECT_EQ(m_manager.actions[0].channels, std::vector<ChannelID>{ChannelID(3, 7)});
    EXPECT_EQ(m_manager.actions[0].time, 2.5);

    m_items->set("Used", SingleValueConfigItem<bool>(false));
    EXPECT_FALSE(m_channel->isChannelActionAvailable("ACTION:Zero"));
}

TEST_F(ChannelConfigTest, ObserversAreKeyedByOwnerAndRemovedByAnEmptyFunction)
{
    std::vector<std::string> seen;
    int owner_a = 0;
    int owner_b = 0;
    m_channel->registerObserver(&owner_a, [&](ChannelID id, const std::string& key) {
        seen.push_back("a " + id.toString() + " " + key);
    });
    m_channel->registerObserver(&owner_b,
                                [&](ChannelID, const std::string& key) { seen.push_back("b " + key); });
    m_channel->registerObserver(&owner_b,
                                [&](ChannelID, const std::string& key) { seen.push_back("B " + key); });
    m_channel->notifyConfigItemChanged("Unit");
    EXPECT_EQ(seen.size(), 2u) << "one entry per owner";
    EXPECT_NE(std::find(seen.begin(), seen.end(), "a " + ChannelID(3, 7).toString() + " Unit"), seen.end());
    EXPECT_NE(std::find(seen.begin(), seen.end(), "B Unit"), seen.end());

    seen.clear();
    m_channel->registerObserver(&owner_a, {});
    m_channel->notifyConfigItemChanged("Used");
    EXPECT_EQ(seen, std::vector<std::string>{"B Used"});
}

TEST_F(ChannelConfigTest, AnObserverMayUnregisterWhileBeingCalled)
{
    int calls = 0;
    int owner = 0;
    m_channel->registerObserver(&owner, [&](ChannelID, const std::string&) {
        ++calls;
        m_channel->registerObserver(&owner, {});
    });
    m_channel->notifyConfigItemChanged("Unit");
    m_channel->notifyConfigItemChanged("Unit");
    EXPECT_EQ(calls, 1);
}

} // namespace
