// The order in which views, subclass hooks and observers hear of each change.
#include "list_model_fixture.h"

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>

#include <memory>

using list_model_test::Item;
using list_model_test::RecordingModel;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using ListModelOrder = list_model_test::ListModelFixture;

TEST_F(ListModelOrder, AppendOne)
{
    model.append(&a);
    // The hook runs inside the insertion, with the object already in the list.
    EXPECT_THAT(model.takeLog(), ElementsAre("beginInsert 0 0", "hookInserted 0 0 size 1", "endInsert 0 0",
                                             "count 1", "added a"));
}

TEST_F(ListModelOrder, AppendListIsOneInsertionAndOneCountChange)
{
    model.append(&a);
    model.takeLog();
    model.append(QList<QObject*>{&b, &c, &d});
    EXPECT_THAT(model.takeLog(), ElementsAre("beginInsert 1 3", "hookInserted 1 3 size 4", "endInsert 1 3",
                                             "count 4", "added b", "added c", "added d"));
}

TEST_F(ListModelOrder, AppendWithTrackingTracksInsideTheInsertion)
{
    model.setTracking(true);
    EXPECT_THAT(model.takeLog(), ElementsAre("tracking"));
    model.append(QList<QObject*>{&a, &b});
    EXPECT_THAT(model.takeLog(),
                ElementsAre("beginInsert 0 1", "track a", "track b", "hookInserted 0 1 size 2",
                            "endInsert 0 1", "count 2", "added a", "added b"));
    model.listInsert(1, &c);
    EXPECT_THAT(model.takeLog(), ElementsAre("beginInsert 1 1", "track c", "hookInserted 1 1 size 3",
                                             "endInsert 1 1", "count 3", "added c"));
}

TEST_F(ListModelOrder, ListRemoveRunsTheHookBeforeTheViewHears)
{
    fill();
    model.setTracking(true);
    model.takeLog();
    model.listRemove(1, 2);
    EXPECT_THAT(model.takeLog(), ElementsAre("hookAboutToRemove 1 2 size 3", "beginRemove 1 2", "untrack b",
                                             "aboutToRemove b", "removed b", "untrack c", "aboutToRemove c",
                                             "removed c", "endRemove 1 2", "count 1"));
}

TEST_F(ListModelOrder, TakeAtTellsObserversFirstAndLast)
{
    fill();
    model.setTracking(true);
    model.takeLog();
    EXPECT_EQ(model.takeAt(1), &b);
    EXPECT_THAT(model.takeLog(),
                ElementsAre("aboutToRemove b", "hookAboutToRemove 1 1 size 3", "beginRemove 1 1", "untrack b",
                            "endRemove 1 1", "removed b", "count 2"));
    EXPECT_EQ(model.takeAt(2), nullptr);
    EXPECT_EQ(model.takeAt(-1), nullptr);
    EXPECT_THAT(model.takeLog(), IsEmpty());
}

TEST_F(ListModelOrder, ReplaceIsADataChangeWithoutHooksOrCount)
{
    fill();
    model.setTracking(true);
    model.takeLog();
    model.listReplace(1, &d);
    EXPECT_THAT(model.takeLog(), ElementsAre("aboutToRemove b", "untrack b", "removed b", "track d",
                                             "dataChanged 1 1", "added d"));
    EXPECT_EQ(model.get(1), &d);
}

TEST_F(ListModelOrder, ClearIsAResetWithoutPerObjectSignals)
{
    fill();
    model.setTracking(true);
    model.takeLog();
    model.clearList();
    EXPECT_THAT(model.takeLog(), ElementsAre("hookAboutToRemove 0 2 size 3", "beginReset", "untrack a",
                                             "untrack b", "untrack c", "endReset", "count 0"));
}

TEST_F(ListModelOrder, SetListExchangesInOneReset)
{
    fill();
    model.setTracking(true);
    model.takeLog();
    model.setList(QList<QObject*>{&d, &e});
    EXPECT_THAT(model.takeLog(),
                ElementsAre("hookAboutToRemove 0 2 size 3", "beginReset", "untrack a", "aboutToRemove a",
                            "untrack b", "aboutToRemove b", "untrack c", "aboutToRemove c", "track d",
                            "track e", "hookInserted 0 1 size 2", "endReset", "dataChanged 0 1", "count 2",
                            "added d", "added e"));
}

TEST_F(ListModelOrder, SetListOnAnEmptyListShowsTheHookAnEmptyRange)
{
    model.setList(QList<QObject*>{&a});
    EXPECT_THAT(model.takeLog(),
                ElementsAre("hookAboutToRemove 0 -1 size 0", "beginReset", "hookInserted 0 0 size 1",
                            "endReset", "dataChanged 0 0", "count 1", "added a"));
}

TEST_F(ListModelOrder, SetListOfSameLengthEmitsNoCountChange)
{
    fill();
    model.setList(QList<QObject*>{&c, &d, &e});
    const auto log = model.takeLog();
    EXPECT_THAT(log, ::testing::Contains("dataChanged 0 2"));
    EXPECT_THAT(log, ::testing::Not(::testing::Contains(::testing::StartsWith("count"))));
}

TEST_F(ListModelOrder, SetListToEmptyHasNoDataChange)
{
    fill();
    model.setList({});
    EXPECT_THAT(model.takeLog(), ElementsAre("hookAboutToRemove 0 2 size 3", "beginReset", "aboutToRemove a",
                                             "aboutToRemove b", "aboutToRemove c", "hookInserted 0 -1 size 0",
                                             "endReset", "count 0"));
}

TEST_F(ListModelOrder, MoveIsOnlyAMove)
{
    fill();
    model.move(0, 2);
    EXPECT_THAT(model.takeLog(), ElementsAre("moved 0 3"));
    EXPECT_EQ(model.typedList(), (QList<Item*>{&b, &c, &a}));
    model.move(2, 0);
    EXPECT_THAT(model.takeLog(), ElementsAre("moved 2 0"));
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b, &c}));
    model.move(1, 2);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &c, &b}));
    model.takeLog();
}

TEST_F(ListModelOrder, MoveThatQtRefusesOrOutOfRangeDoesNothing)
{
    fill();
    model.move(1, 1);
    model.move(-1, 0);
    model.move(0, 3);
    model.move(3, 0);
    EXPECT_THAT(model.takeLog(), IsEmpty());
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b, &c}));
}

TEST_F(ListModelOrder, NotifyResetIsAResetAndACount)
{
    fill();
    model.notifyReset();
    EXPECT_THAT(model.takeLog(), ElementsAre("beginReset", "endReset", "count 3"));
}

TEST_F(ListModelOrder, NothingEmitsTheResortRequest)
{
    fill();
    model.move(0, 1);
    model.listRemove(0);
    model.setList({&d});
    model.clearList();
    EXPECT_THAT(model.takeLog(), ::testing::Not(::testing::Contains("resort")));
}

// Tracking

TEST_F(ListModelOrder, TrackedObjectThatDiesLeavesTheListWithoutADisconnect)
{
    model.setTracking(true);
    auto dying = std::make_unique<Item>("x");
    model.append(QList<QObject*>{&a, dying.get(), &b});
    model.takeLog();
    QSignalSpy removed(&model, &QObjectListModel::objectRemoved);
    ASSERT_TRUE(removed.isValid());
    QObject* raw = dying.get();
    dying.reset();
    EXPECT_THAT(model.takeLog(), ElementsAre("aboutToRemove x", "hookAboutToRemove 1 1 size 3",
                                             "beginRemove 1 1", "endRemove 1 1", "removed x", "count 2"));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(list_model_test::pointerIn(removed.at(0).at(0)), raw);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b}));
    EXPECT_TRUE(model.tracking()) << "the flag is restored";
}

TEST_F(ListModelOrder, TrackedObjectInTheListTwiceLeavesBothPlaces)
{
    model.setTracking(true);
    auto dying = std::make_unique<Item>("x");
    model.append(QList<QObject*>{dying.get(), &a, dying.get()});
    dying.reset();
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a}));
    model.takeLog();
}

TEST_F(ListModelOrder, RemovingOneOfTwoPlacesKeepsTheObjectTracked)
{
    model.setTracking(true);
    auto twice = std::make_unique<Item>("x");
    model.append(QList<QObject*>{twice.get(), &a, twice.get()});
    model.listRemove(0);
    twice.reset();
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a}));
    model.takeLog();
}

TEST_F(ListModelOrder, ObjectsAddedBeforeTrackingStayUntracked)
{
    auto before = std::make_unique<Item>("before");
    model.append(before.get());
    model.setTracking(true);
    auto during = std::make_unique<Item>("during");
    model.append(during.get());
    model.setTracking(false);
    model.takeLog();

    // Added while tracking was on: stays connected after it went off.
    during.reset();
    EXPECT_EQ(model.size(), 1);
    EXPECT_EQ(model.get(0), before.get());

    // Added before: a dangling pointer stays in the list, which is why lists of
    // objects with other owners switch tracking on.
    QObject* raw = before.get();
    before.reset();
    ASSERT_EQ(model.size(), 1);
    EXPECT_EQ(model.list().at(0), raw);
    // A reset drops it without reading it.
    model.clearList();
    EXPECT_EQ(model.size(), 0);
    model.takeLog();
}

TEST_F(ListModelOrder, TrackingPropertyWritesTheFlagOnce)
{
    QSignalSpy tracking(&model, &QObjectListModel::trackingChanged);
    ASSERT_TRUE(tracking.isValid());
    EXPECT_TRUE(model.setProperty("trackObjects", true));
    model.setTracking(true);
    EXPECT_EQ(tracking.count(), 1);
    EXPECT_TRUE(model.property("trackObjects").toBool());
    model.setTracking(false);
    EXPECT_EQ(tracking.count(), 2);
    model.takeLog();
}

TEST_F(ListModelOrder, RemovedObjectIsNoLongerTracked)
{
    model.setTracking(true);
    auto x = std::make_unique<Item>("x");
    model.append(QList<QObject*>{&a, x.get()});
    model.removeItem(x.get());
    model.takeLog();
    x.reset();
    EXPECT_THAT(model.takeLog(), IsEmpty());
    EXPECT_EQ(model.size(), 1);
}

TEST_F(ListModelOrder, DestructionOfTheModelEmitsNoListSignal)
{
    auto other = std::make_unique<QObjectListModel>();
    other->setTracking(true);
    other->append(&a);
    QSignalSpy count(other.get(), &QObjectListModel::countChanged);
    QSignalSpy removed(other.get(), &QObjectListModel::objectRemoved);
    ASSERT_TRUE(count.isValid() && removed.isValid());
    other.reset();
    EXPECT_EQ(count.count(), 0);
    EXPECT_EQ(removed.count(), 0);
    // a stays alive and its destroyed signal no longer reaches the dead model.
}

} // namespace
