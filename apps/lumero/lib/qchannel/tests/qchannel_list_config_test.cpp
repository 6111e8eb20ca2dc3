#include "list_fixture.h"

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using namespace qchannel_list_test;
using channel_config::ChannelID;

/// Records what the list sends; an action can be held until released.
class RecordingManager : public ferrin_config::IfChannelConfigManager
{
public:
    bool applyConfigRequests(const ferrin_config::ConfigRequests& requests, std::uint32_t timeout_ms,
                             bool notify, bool validate_only, bool force) override
    {
        calls.push_back(requests);
        EXPECT_EQ(timeout_ms, 0u);
        EXPECT_TRUE(notify);
        EXPECT_FALSE(validate_only);
        EXPECT_FALSE(force);
        return accept;
    }

    bool applyChannelAction(const std::string& key, const std::vector<ChannelID>& channels,
                            double time) override
    {
        std::unique_lock lock(m_mutex);
        actions.push_back({key, channels, time});
        m_released.wait(lock, [this] { return !m_hold; });
        return true;
    }

    void hold()
    {
        std::lock_guard lock(m_mutex);
        m_hold = true;
    }
    void release()
    {
        {
            std::lock_guard lock(m_mutex);
            m_hold = false;
        }
        m_released.notify_all();
    }
    std::size_t actionCount()
    {
        std::lock_guard lock(m_mutex);
        return actions.size();
    }

    struct Action
    {
        std::string key;
        std::vector<ChannelID> channels;
        double time;
    };
    std::vector<ferrin_config::ConfigRequests> calls;
    std::vector<Action> actions;
    bool accept = true;

private:
    std::mutex m_mutex;
    std::condition_variable m_released;
    bool m_hold = false;
};

class ChannelListConfigTest : public ::testing::Test
{
protected:
    ChannelListConfigTest() : list(QChannelListModel::DELIVERY_IMMEDIATE, true)
    {
        uni_testing::attachModelTester(&list);
        list.setChannelConfigManager(&manager);
    }
    ~ChannelListConfigTest() override { list.waitForChannelActionFinished(); }

    QChannel* add(std::uint32_t local, const std::string& name)
    {
        auto* channel = new QChannel(makeChannel({ChannelID(5, local), name, {}, false, &manager}));
        list.appendChannel(channel);
        return channel;
    }
    void setFlag(QChannel* channel, const std::string& key, bool value)
    {
        channel->ferrinChannel()->getItemStore()->set(key, config_items::SingleValueConfigItem<bool>(value));
    }

    RecordingManager manager;
    QChannelListModel list;
};

// ---------------------------------------------------------------------------------------
// Configuration of the whole list

TEST_F(ChannelListConfigTest, SetConfigItemSendsOneRequestPerChannelInOneCall)
{
    add(1, "a");
    add(2, "b");

    EXPECT_TRUE(list.setConfigItem("Ferrin/Color", "blue"));

    ASSERT_EQ(manager.calls.size(), 1u);
    const ferrin_config::ConfigRequests& requests = manager.calls.front();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].channel_id, ChannelID(5, 1));
    EXPECT_EQ(requests[1].channel_id, ChannelID(5, 2));
    EXPECT_EQ(requests[1].key, "Ferrin/Color");
    EXPECT_EQ(channel_config::toString(requests[1].item), "blue");

    manager.accept = false;
    EXPECT_FALSE(list.setConfigItem("Ferrin/Color", "red"));
}

struct UniqueListRow
{
    const char* name;
    int max_results;
    QStringList texts;
};

void PrintTo(const UniqueListRow& row, std::ostream* out)
{
    *out << row.name;
}

class UniqueListForProperty : public ChannelListConfigTest,
                              public ::testing::WithParamInterface<UniqueListRow>
{};

TEST_P(UniqueListForProperty, DistinctCapitalisedTextsInListOrder)
{
    const char* units[] = {"volt", "", "ampere", "Volt", "volt", "bar", "m/s"};
    std::uint32_t local = 0;
    for (const char* unit : units)
        add(++local, "c")->ferrinChannel()->getItemStore()->set("Unit", config_items::StringConfigItem(unit));
    const QStringList texts = GetParam().max_results < 0
                                  ? list.uniqueListForProperty("Unit")
                                  : list.uniqueListForProperty("Unit", GetParam().max_results);
    EXPECT_EQ(texts, GetParam().texts);
    EXPECT_TRUE(list.uniqueListForProperty("Nope", GetParam().max_results).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Limits, UniqueListForProperty,
    ::testing::Values(UniqueListRow{"two_of_five", 2, {"Volt", "Ampere"}},
                      UniqueListRow{"zero_is_no_limit", 0, {"Volt", "Ampere", "Bar", "M/s"}},
                      UniqueListRow{"without_limit", -1, {"Volt", "Ampere", "Bar", "M/s"}},
                      UniqueListRow{"limit_above_count", 9, {"Volt", "Ampere", "Bar", "M/s"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ChannelListConfigTest, FewerValuesThanKeysRepeatAndNullValuesSkipTheirKey)
{
    add(1, "a");
    uni_testing::AssertCapture asserts;

    EXPECT_TRUE(list.setConfigItems({"k0", "k1", "k2"}, {QString("first"), QString("second")}));

    EXPECT_TRUE(asserts.fired("keys.count() <= values.count()"));
    ASSERT_EQ(manager.calls.size(), 1u);
    const ferrin_config::ConfigRequests& requests = manager.calls.front();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(channel_config::toString(requests[0].item), "first");
    EXPECT_EQ(channel_config::toString(requests[1].item), "second");
    EXPECT_EQ(requests[2].key, "k2");
    EXPECT_EQ(channel_config::toString(requests[2].item), "first");

    manager.calls.clear();
    EXPECT_TRUE(list.setConfigItems({"k0", "k1"}, {QVariant::fromValue(nullptr), QString("x")}));
    ASSERT_EQ(manager.calls.size(), 1u);
    ASSERT_EQ(manager.calls.front().size(), 1u);
    EXPECT_EQ(manager.calls.front().front().key, "k1");
}

TEST_F(ChannelListConfigTest, WithoutConfigManagerOrWithAnInvalidValueNothingIsSent)
{
    add(1, "a");
    list.setChannelConfigManager(nullptr);
    setFlag(list.getChannelByIndex(0), "ACTION:Zero", true);
    uni_testing::AssertCapture asserts;

    EXPECT_FALSE(list.setConfigItem("Ferrin/Color", "blue"));
    list.applyChannelAction("ACTION:Zero", 1.0);

    EXPECT_TRUE(asserts.fired("m_channel_config_manager != nullptr", "ChannelConfigManager is not set!"));
    EXPECT_EQ(asserts.size(), 2u);
    EXPECT_FALSE(list.channelActionInProgress());

    list.setChannelConfigManager(&manager);
    EXPECT_FALSE(list.setConfigItem("Ferrin/Color", QVariant()));
    EXPECT_TRUE(
        asserts.fired("value.isValid()", "setConfigItem: called with value 'invalid' for key Ferrin/Color"));
    EXPECT_TRUE(manager.calls.empty());
}

// ---------------------------------------------------------------------------------------
// Actions over the whole list

TEST_F(ChannelListConfigTest, ActionIsAvailableWhenEveryChannelOrItsMetadataSourceOffersIt)
{
    EXPECT_FALSE(list.isChannelActionAvailable("ACTION:Zero")) << "an empty list offers nothing";
    QChannel* a = add(1, "a");
    QChannel* b = add(2, "b");
    setFlag(a, "ACTION:Zero", true);
    EXPECT_FALSE(list.isChannelActionAvailable("ACTION:Zero"));
    setFlag(b, "ACTION:Zero", true);
    EXPECT_TRUE(list.isChannelActionAvailable("ACTION:Zero"));

    // A metadata channel follows its listed source, unless it does not block it.
    QChannel* metadata = add(3, "metadata");
    metadata->ferrinChannel()->getItemStore()->set(
        "MetadataChannelOf", config_items::SingleValueConfigItem<ChannelID>(ChannelID(5, 1)));
    EXPECT_FALSE(list.isChannelActionAvailable("ACTION:Zero"));
    setFlag(metadata, "ACTION:NotBlockingMetadataSourceActions", true);
    EXPECT_TRUE(list.isChannelActionAvailable("ACTION:Zero"));
    metadata->ferrinChannel()->getItemStore()->set(
        "MetadataChannelOf", config_items::SingleValueConfigItem<ChannelID>(ChannelID(5, 77)));
    EXPECT_FALSE(list.isChannelActionAvailable("ACTION:Zero")) << "its source is not in the list";

    QChannelListModel queued(QChannelListModel::DELIVERY_QUEUED, true);
    uni_testing::attachModelTester(&queued);
    queued.notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(queued.isChannelActionAvailable("ACTION:Zero"));
    EXPECT_TRUE(asserts.fired("!hasPendingChannelNotifications()")) << "an answer about a stale list";
    queued.applyPendingChannelNotifications();
}

TEST_F(ChannelListConfigTest, ActionRunsOnThePoolForAllChannelsAndOneAtATime)
{
    QChannel* a = add(1, "a");
    QChannel* b = add(2, "b");
    setFlag(a, "ACTION:Zero", true);
    setFlag(b, "ACTION:Zero", true);
    QSignalSpy progress(&list, &QChannelListModel::channelActionInProgressChanged);
    ASSERT_TRUE(progress.isValid());
    uni_testing::LogCapture log;
    list.applyChannelAction("ACTION:Other", 1.0);
    EXPECT_TRUE(log.contains("QCHANNEL", 5, "ChannelAction ACTION:Other not available!"));
    EXPECT_FALSE(list.channelActionInProgress());

    manager.hold();
    list.applyChannelAction("ACTION:Zero", 2.5);
    EXPECT_TRUE(list.channelActionInProgress());
    EXPECT_EQ(progress.count(), 1);
    ASSERT_TRUE(spinUntil([&] { return manager.actionCount() == 1; }));

    list.applyChannelAction("ACTION:Zero", 3.0);
    EXPECT_TRUE(log.contains(
        "QCHANNEL", 5,
        "Skipping ChannelAction ACTION:Zero because there is already another action in progress!"));

    manager.release();
    list.waitForChannelActionFinished();
    ASSERT_TRUE(spinUntil([&] { return progress.count() == 2; }));
    EXPECT_FALSE(list.channelActionInProgress());
    ASSERT_EQ(manager.actionCount(), 1u);
    EXPECT_EQ(manager.actions[0].key, "ACTION:Zero");
    EXPECT_EQ(manager.actions[0].channels, (std::vector<ChannelID>{ChannelID(5, 1), ChannelID(5, 2)}));
    EXPECT_DOUBLE_EQ(manager.actions[0].time, 2.5);
}

// ---------------------------------------------------------------------------------------
// Item changes of listed channels

TEST_F(ChannelListConfigTest, ItemChangesReachTheListAndTheRowsOfTheirChannels)
{
    add(1, "a");
    QChannel* b = add(2, "b");
    QSignalSpy in_list(&list, &QChannelListModel::configItemInListChanged);
    QSignalSpy data(&list, &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(in_list.isValid() && data.isValid());

    b->onChannelConfigItemChanged(ChannelID(5, 2), "Ferrin/Color");
    b->onChannelConfigItemChanged(ChannelID(5, 2), "Used");

    ASSERT_EQ(in_list.count(), 2);
    EXPECT_EQ(in_list.at(0).at(0).value<ChannelID>(), ChannelID(5, 2));
    EXPECT_EQ(in_list.at(1).at(1).toString(), "Used");
    ASSERT_EQ(data.count(), 1) << "a change of Used leaves the rows alone";
    EXPECT_EQ(data.at(0).at(0).toModelIndex().row(), 1);

    list.setConfigItemDirty(ChannelID(5, 1));
    ASSERT_EQ(data.count(), 2);
    EXPECT_EQ(data.at(1).at(0).toModelIndex().row(), 0);
    EXPECT_EQ(in_list.count(), 2);
}

TEST(ChannelListItemChanges, AChangeMadeOnTheCoresThreadArrivesOnTheModelsThread)
{
    lum::data::MemoryChannelConfigManager manager;
    QChannelListModel list(QChannelListModel::DELIVERY_QUEUED, true);
    uni_testing::attachModelTester(&list);
    const ChannelPtr channel = makeChannel({ChannelID(5, 1), "a", {}, false, &manager});
    manager.addChannel(channel);
    list.appendChannel(new QChannel(channel));
    QSignalSpy in_list(&list, &QChannelListModel::configItemInListChanged);
    ASSERT_TRUE(in_list.isValid());

    std::thread core([&] {
        ferrin_config::ConfigRequests requests{
            {ChannelID(5, 1), "Ferrin/Name", config_items::StringConfigItem("b")}};
        EXPECT_TRUE(manager.applyConfigRequests(requests, 0, true, false, false));
    });
    core.join();
    EXPECT_EQ(in_list.count(), 0) << "queued to the model's thread";

    ASSERT_TRUE(spinUntil([&] { return in_list.count() == 1; }));
    EXPECT_EQ(in_list.at(0).at(0).value<ChannelID>(), ChannelID(5, 1));
    EXPECT_EQ(in_list.at(0).at(1).toString(), "Ferrin/Name");
    EXPECT_EQ(list.getChannelByName("b"), list.getChannelByIndex(0));
}

} // namespace
