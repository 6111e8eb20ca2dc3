#include "list_fixture.h"

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QPointer>
#include <QSignalSpy>
#include <QVariantList>

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

using namespace qchannel_list_test;
using channel_config::ChannelID;

class ChannelListTest : public ::testing::Test
{
protected:
    void TearDown() override { flushDeletes(); }

    /// A list with a model tester, deleted at the end of the test.
    QChannelListModel*
    makeList(QChannelListModel::NotificationDelivery delivery = QChannelListModel::DELIVERY_QUEUED,
             bool owning = true)
    {
        m_lists.push_back(std::make_unique<QChannelListModel>(delivery, owning));
        uni_testing::attachModelTester(m_lists.back().get());
        return m_lists.back().get();
    }

    /// A QChannel over a new channel; the list it goes into owns it.
    QChannel* channel(std::uint32_t local, const std::string& name)
    {
        return new QChannel(makeChannel(5, local, name));
    }

    std::vector<std::unique_ptr<QChannelListModel>> m_lists;
};

// ---------------------------------------------------------------------------------------
// Look-ups

TEST_F(ChannelListTest, FindsChannelsByIdIdTextIndexAndName)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "speed");
    QChannel* b = channel(2, "heading");
    QChannel* swapped = new QChannel(makeChannel(9, 7, "swapped"));
    QChannel* wanted = new QChannel(makeChannel(7, 9, "wanted"));
    list->appendChannels({a, b, swapped, wanted});

    EXPECT_EQ(list->getChannelByID(ChannelID(5, 2)), b);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 3)), nullptr);
    EXPECT_EQ(list->getChannelByIDString(QString::number(ChannelID(5, 1).toUInt64())), a);
    EXPECT_EQ(list->getChannelByIndex(1), b);
    EXPECT_EQ(list->getChannelByIndex(-1), nullptr);
    EXPECT_EQ(list->getChannelByIndex(4), nullptr);
    EXPECT_EQ(list->getChannelByName("heading"), b);
    EXPECT_EQ(list->getChannelByName("Heading"), nullptr);
    EXPECT_EQ(list->getAllIDsStr(),
              QStringList({"21474836481", "21474836482", "38654705671", "30064771081"}));
    // The id text is the decimal 64-bit number: node in the high word, local id in the low.
    EXPECT_EQ(list->getChannelByIDString("30064771081"), wanted);
    for (const char* bad : {"abc", "", "-30064771081", "0x70000000009"})
        EXPECT_EQ(list->getChannelByIDString(bad), nullptr) << bad;
}

TEST_F(ChannelListTest, FindsTheFirstChannelWhoseItemEqualsTheValue)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "a");
    QChannel* b = channel(2, "b");
    QChannel* c = channel(3, "c");
    a->ferrinChannel()->getItemStore()->set("Gain", config_items::SingleValueConfigItem<double>(0.1 + 0.2));
    b->ferrinChannel()->getItemStore()->set("Gain",
                                            config_items::SingleValueConfigItem<double>(std::nan("")));
    c->ferrinChannel()->getItemStore()->set("Source",
                                            config_items::SingleValueConfigItem<ChannelID>(ChannelID(5, 1)));
    list->appendChannels({a, b, c});

    EXPECT_EQ(list->getChannelByConfigItem("Ferrin/Name", "b"), b);
    EXPECT_EQ(list->getChannelByConfigItem("Gain", 0.1 + 0.2), a);
    EXPECT_EQ(list->getChannelByConfigItem("Gain", 0.3), nullptr) << "doubles compare exactly, as items do";
    EXPECT_EQ(list->getChannelByConfigItem("Gain", std::nan("")), b) << "NaN matches NaN";
    EXPECT_EQ(list->getChannelByConfigItem("Source", QString::number(ChannelID(5, 1).toUInt64())), c);
    EXPECT_EQ(list->getChannelByConfigItem("Source", "12345"), nullptr) << "another id text";
    EXPECT_EQ(list->getChannelByConfigItem("Used", true), a) << "the first in list order";
    EXPECT_EQ(list->getChannelByConfigItem("Missing", 1), nullptr);
}

TEST_F(ChannelListTest, SubListsOfNeededAndDependentChannelsBelongToTheCaller)
{
    QChannelListModel* list = makeList();
    const std::uint64_t b_id = ChannelID(5, 2).toUInt64();
    const std::uint64_t c_id = ChannelID(5, 3).toUInt64();
    const std::uint64_t absent = ChannelID(5, 99).toUInt64();
    auto* a = new QChannel(makeChannel({ChannelID(5, 1), "a", {b_id, c_id, absent}}));
    auto* b = new QChannel(makeChannel({ChannelID(5, 2), "b", {c_id}}));
    auto* c = new QChannel(makeChannel(5, 3, "c"));
    list->appendChannels({a, b, c});

    std::unique_ptr<QChannelListModel> dependent(list->getDependentChannels(a));
    ASSERT_TRUE(dependent);
    uni_testing::attachModelTester(dependent.get());
    const QList<QChannel*> dependent_channels = dependent->typedList();
    EXPECT_EQ(std::set<QChannel*>(dependent_channels.begin(), dependent_channels.end()),
              std::set<QChannel*>({b, c}));
    EXPECT_EQ(dependent->notificationDelivery(), QChannelListModel::DELIVERY_IMMEDIATE);
    EXPECT_FALSE(dependent->deleteChannelsOnDestruction());

    std::unique_ptr<QChannelListModel> needed(list->getNeededChannels(c));
    ASSERT_TRUE(needed);
    EXPECT_EQ(needed->typedList(), QList<QChannel*>({a, b})) << "in list order";
    EXPECT_EQ(needed->getChannelByID(ChannelID(5, 2)), b);

    QPointer<QChannel> kept(b);
    dependent.reset();
    needed.reset();
    EXPECT_TRUE(kept) << "a sub-list does not own its channels";
    EXPECT_EQ(list->getNeededChannels(nullptr), nullptr);
    EXPECT_EQ(list->getDependentChannels(nullptr), nullptr);
}

// ---------------------------------------------------------------------------------------
// List changes

TEST_F(ChannelListTest, InsertsBeforeTheSuccessorAppendsWithoutOneAndRemoves)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "a");
    QChannel* b = channel(2, "b");
    QChannel* c = channel(3, "c");
    QSignalSpy inserted(list, &QAbstractItemModel::rowsInserted);
    ASSERT_TRUE(inserted.isValid());

    list->appendChannel(a);
    list->insertChannel(b, a);
    list->insertChannel(c, nullptr);
    list->appendChannel(a);

    EXPECT_EQ(list->typedList(), QList<QChannel*>({b, a, c}));
    EXPECT_EQ(inserted.count(), 3) << "a channel already in the list is not added twice";
    EXPECT_EQ(inserted.at(1).at(1).toInt(), 0);

    QSignalSpy removed(list, &QAbstractItemModel::rowsRemoved);
    ASSERT_TRUE(removed.isValid());
    list->removeChannel(a);
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 1)), nullptr);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 3)), c);
    delete a;
}

TEST_F(ChannelListTest, SetChannelsLeavesOutEntriesThatAreNoChannels)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "a");
    QChannel* b = channel(2, "b");
    list->appendChannel(a);
    QObject stranger;
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(reset.isValid());

    uni_testing::AssertCapture asserts;
    list->setChannels({QVariant::fromValue(b), QVariant::fromValue(&stranger), QVariant(3)});

    EXPECT_TRUE(asserts.fired("channel"));
    EXPECT_EQ(asserts.size(), 2u);
    EXPECT_EQ(list->typedList(), QList<QChannel*>({b}));
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 1)), nullptr) << "the replaced channel left the id map";
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 2)), b);
    delete a;
}

TEST_F(ChannelListTest, ClearAllAndDestructionDeleteOnlyTheChannelsOfAnOwningList)
{
    QChannelListModel* owning = makeList(QChannelListModel::DELIVERY_QUEUED, true);
    QChannelListModel* viewing = makeList(QChannelListModel::DELIVERY_QUEUED, false);
    QPointer<QChannel> a(channel(1, "a"));
    owning->appendChannel(a);
    viewing->appendChannel(a);

    viewing->clearAll();
    ASSERT_TRUE(a);
    EXPECT_EQ(viewing->size(), 0);
    EXPECT_EQ(owning->size(), 1);

    owning->clearAll();
    EXPECT_FALSE(a);
    EXPECT_EQ(owning->getChannelByID(ChannelID(5, 1)), nullptr);

    // Destruction likewise.
    QPointer<QChannel> owned(channel(2, "owned"));
    QPointer<QChannel> kept(channel(3, "kept"));
    {
        QChannelListModel owner(QChannelListModel::DELIVERY_QUEUED, true);
        QChannelListModel viewer(QChannelListModel::DELIVERY_QUEUED, false);
        owner.appendChannel(owned);
        viewer.appendChannels({owned, kept});
    }
    EXPECT_FALSE(owned);
    ASSERT_TRUE(kept);
    delete kept;
}

TEST_F(ChannelListTest, ADeletedChannelLeavesEveryListItIsIn)
{
    QChannelListModel* list = makeList();
    QChannelListModel* other = makeList(QChannelListModel::DELIVERY_IMMEDIATE, false);
    QChannel* a = channel(1, "a");
    QChannel* b = channel(2, "b");
    list->appendChannels({a, b});
    other->appendChannel(a);
    QSignalSpy removed(list, &QAbstractItemModel::rowsRemoved);
    ASSERT_TRUE(removed.isValid());

    delete a;

    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(list->typedList(), QList<QChannel*>({b}));
    EXPECT_EQ(other->size(), 0);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 1)), nullptr);
}

// ---------------------------------------------------------------------------------------
// Batches

TEST_F(ChannelListTest, NestedBatchesGiveOneResetOnlyForAChangeAndNoRowSignals)
{
    QChannelListModel* list = makeList();
    ViewCounter view(list);
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    QSignalSpy count(list, &QObjectListModel::countChanged);
    ASSERT_TRUE(reset.isValid() && count.isValid());

    list->beginBatchOperation();
    list->appendChannel(channel(1, "a"));
    list->beginBatchOperation();
    list->appendChannel(channel(2, "b"));
    list->endBatchOperation();
    EXPECT_EQ(reset.count(), 0) << "the outer batch is still open";
    list->appendChannel(channel(3, "c"));
    list->endBatchOperation();

    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(view.row_signals, 0);
    EXPECT_EQ(view.rows, 3);
    EXPECT_EQ(count.count(), 1);

    // A batch that ends with the same channels gives no reset.
    QChannel* d = channel(4, "d");
    list->beginBatchOperation();
    list->appendChannel(d);
    list->removeChannel(d);
    list->endBatchOperation();
    EXPECT_EQ(reset.count(), 1);
    delete d;

    uni_testing::AssertCapture asserts;
    list->endBatchOperation();
    EXPECT_TRUE(asserts.fired("m_num_of_batch_operations > 0"));
    EXPECT_EQ(reset.count(), 1);
    EXPECT_FALSE(list->signalsBlocked());
}

TEST_F(ChannelListTest, AReplacedFerrinChannelInABatchGivesAReset)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "a");
    list->appendChannel(a);
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    QSignalSpy changed(list, &QChannelListModel::ferrinChannelChanged);
    ASSERT_TRUE(reset.isValid() && changed.isValid());

    list->beginBatchOperation();
    a->updateFerrinChannel(makeChannel(5, 1, "a2"));
    list->endBatchOperation();

    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(changed.count(), 0) << "blocked inside the batch";
    a->updateFerrinChannel(makeChannel(5, 1, "a3"));
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ChannelListTest, BatchesOfAWorkerThreadHopIntoTheModelThread)
{
    QChannelListModel* list = makeList();
    ViewCounter view(list);
    std::atomic<bool> done{false};
    std::thread worker([&] {
        list->beginBatchOperation();
        for (std::uint32_t local = 1; local <= 20; ++local)
            list->appendChannel(new QChannel(makeChannel(6, local, "w")));
        list->endBatchOperation();
        done = true;
    });
    ASSERT_TRUE(spinUntil([&] { return done.load(); }));
    worker.join();

    EXPECT_EQ(list->size(), 20);
    EXPECT_EQ(view.rows, 20);
    EXPECT_EQ(view.resets, 1);
    EXPECT_EQ(view.row_signals, 0);
    EXPECT_EQ(list->getChannelByIndex(0)->thread(), list->thread());
}

TEST_F(ChannelListTest, InsertionFromAWorkerNeedsASuccessor)
{
    QChannelListModel* list = makeList();
    QChannel* a = channel(1, "a");
    list->appendChannel(a);
    uni_testing::AssertCapture asserts;
    std::atomic<bool> done{false};
    std::thread worker([&] {
        list->insertChannel(new QChannel(makeChannel(6, 1, "before a")), a);
        auto* orphan = new QChannel(makeChannel(6, 2, "orphan"));
        list->insertChannel(orphan, nullptr);
        delete orphan;
        done = true;
    });
    ASSERT_TRUE(spinUntil([&] { return done.load(); }));
    worker.join();

    EXPECT_TRUE(asserts.fired("successor"));
    ASSERT_EQ(list->size(), 2);
    EXPECT_EQ(list->getChannelByIndex(0)->name(), "before a");
    EXPECT_EQ(list->getChannelByIndex(1), a);
}

// ---------------------------------------------------------------------------------------
// Messages of the acquisition core

TEST_F(ChannelListTest, ImmediateDeliveryAppliesAtOnceAsOneReset)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_IMMEDIATE);
    ViewCounter view(list);

    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
    // A channel with the internal flag gets no QChannel.
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel({ChannelID(5, 2), "internal", {}, true}));

    ASSERT_EQ(list->size(), 1);
    EXPECT_EQ(list->getChannelByName("a"), list->getChannelByIndex(0));
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 2)), nullptr);
    EXPECT_EQ(view.resets, 1);
    EXPECT_EQ(view.row_signals, 0);
    EXPECT_FALSE(list->hasPendingChannelNotifications());
}

TEST_F(ChannelListTest, ARemovalAfterAnAdditionInOnePassLeavesNoRowAndNoReset)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_QUEUED);
    ViewCounter view(list);
    const ChannelPtr a = makeChannel(5, 1, "a");

    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, a);
    list->notify(ferrin::NOTIFY_CHANNEL_REMOVED, a);
    EXPECT_TRUE(list->hasPendingChannelNotifications());
    list->applyPendingChannelNotifications();

    EXPECT_EQ(list->size(), 0);
    EXPECT_EQ(view.resets, 0);
    EXPECT_EQ(view.row_signals, 0);
    EXPECT_FALSE(list->hasPendingChannelNotifications());
}

TEST_F(ChannelListTest, QueuedDeliveryIsAppliedByTheTimer)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_QUEUED);
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(reset.isValid());

    for (std::uint32_t local = 1; local <= 5; ++local)
        list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, local, "q"));
    EXPECT_EQ(list->size(), 0) << "nothing before the timer";

    ASSERT_TRUE(spinUntil([&] { return list->size() == 5; }));
    EXPECT_EQ(reset.count(), 1);
}

/// A channel whose every replacement makes the core send another one: a flood that
/// never ends on its own.
QMetaObject::Connection floodOnReplacement(QChannelListModel* list, QChannel* channel, int& replacements)
{
    return QObject::connect(channel, &QChannel::ferrinChannelChanged, list, [list, &replacements] {
        ++replacements;
        list->notify(ferrin::NOTIFY_CHANNEL_CHANGED, makeChannel(5, 1, "flood"));
    });
}

TEST_F(ChannelListTest, AFloodIsCutAfterNinePassesAndTheRestWaitsForTheTimer)
{
    for (const auto delivery : {QChannelListModel::DELIVERY_QUEUED, QChannelListModel::DELIVERY_IMMEDIATE}) {
        SCOPED_TRACE(delivery);
        QChannelListModel* list = makeList(delivery);
        QChannel* a = channel(1, "a");
        list->appendChannel(a);
        int replacements = 0;
        const QMetaObject::Connection flood = floodOnReplacement(list, a, replacements);

        list->notify(ferrin::NOTIFY_CHANNEL_CHANGED, makeChannel(5, 1, "first"));
        if (delivery == QChannelListModel::DELIVERY_QUEUED)
            list->applyPendingChannelNotifications();

        EXPECT_EQ(replacements, 9);
        EXPECT_TRUE(list->hasPendingChannelNotifications());
        QObject::disconnect(flood);
        ASSERT_TRUE(spinUntil([&] { return !list->hasPendingChannelNotifications(); }));
        EXPECT_EQ(a->name(), "flood");
    }
}

TEST_F(ChannelListTest, AReplacementKeepsTheQChannelAndIsFoundByIdAndNewName)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_IMMEDIATE);
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "old"));
    QChannel* before = list->getChannelByID(ChannelID(5, 1));
    ASSERT_TRUE(before);
    QSignalSpy changed(list, &QChannelListModel::ferrinChannelChanged);
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(changed.isValid() && reset.isValid());

    const ChannelPtr replacement = makeChannel(5, 1, "new");
    list->notify(ferrin::NOTIFY_CHANNEL_CHANGED, replacement);

    EXPECT_EQ(list->getChannelByID(ChannelID(5, 1)), before);
    EXPECT_EQ(before->ferrinChannel(), replacement);
    EXPECT_EQ(list->getChannelByName("new"), before);
    EXPECT_EQ(list->getChannelByName("old"), nullptr);
    EXPECT_EQ(list->size(), 1);
    EXPECT_EQ(reset.count(), 1) << "a replacement during the batch counts as a change";

    // An addition under a known id is a replacement as well, never a second row.
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "newer"));
    EXPECT_EQ(list->size(), 1);
    EXPECT_EQ(list->getChannelByName("newer"), before);

    // A replacement under another id moves the id entry.
    before->updateFerrinChannel(makeChannel(5, 42, "a"));
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 42)), before);
    EXPECT_EQ(list->getChannelByID(ChannelID(5, 1)), nullptr);
}

TEST_F(ChannelListTest, ClearDeletesTheChannelsButKeepsWhatCameAfterIt)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_QUEUED);
    QPointer<QChannel> own(channel(7, "own"));
    list->appendChannel(own);
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
    list->applyPendingChannelNotifications();
    QPointer<QChannel> added(list->getChannelByID(ChannelID(5, 1)));
    ASSERT_TRUE(added);

    list->notify(ferrin::NOTIFY_CLEAR, nullptr);
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 2, "b"));
    list->applyPendingChannelNotifications();

    EXPECT_FALSE(own);
    EXPECT_FALSE(added);
    ASSERT_EQ(list->size(), 1);
    EXPECT_EQ(list->getChannelByIndex(0)->name(), "b");
}

TEST_F(ChannelListTest, MessagesForUnknownIdsTypesOrWithoutDeliveryChangeNothing)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_IMMEDIATE);
    list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
    QSignalSpy reset(list, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(reset.isValid());

    list->notify(ferrin::NOTIFY_CHANNEL_REMOVED, makeChannel(5, 2, "ghost"));
    list->notify(ferrin::NOTIFY_CHANNEL_CHANGED, makeChannel(5, 3, "ghost"));
    list->notify(ferrin::NOTIFY_CHANNEL_REMOVED, nullptr);
    list->notify(static_cast<ferrin::NotificationType>(7), makeChannel(5, 4, "odd"));

    EXPECT_EQ(list->size(), 1);
    EXPECT_EQ(reset.count(), 0);
    EXPECT_FALSE(list->hasPendingChannelNotifications());

    QChannelListModel* undelivered = makeList(QChannelListModel::DELIVERY_NONE);
    uni_testing::AssertCapture asserts;
    undelivered->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
    EXPECT_TRUE(asserts.fired("", "Should never happen!"));
    EXPECT_FALSE(undelivered->hasPendingChannelNotifications());
    EXPECT_EQ(undelivered->size(), 0);
}

TEST_F(ChannelListTest, ImmediateDeliveryFromAWorkerReturnsAfterTheListChanged)
{
    QChannelListModel* list = makeList(QChannelListModel::DELIVERY_IMMEDIATE);
    std::atomic<bool> found_after_return{false};
    std::atomic<bool> done{false};
    std::thread worker([&] {
        list->notify(ferrin::NOTIFY_CHANNEL_ADDED, makeChannel(5, 1, "a"));
        found_after_return = list->getChannelByID(ChannelID(5, 1)) != nullptr;
        done = true;
    });
    ASSERT_TRUE(spinUntil([&] { return done.load(); }));
    worker.join();

    EXPECT_TRUE(found_after_return);
}

} // namespace
