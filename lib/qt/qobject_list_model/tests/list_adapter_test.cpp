// Per-object calls and signals of the list adapters.
#include "list_model_fixture.h"

#include <qobject_list_model/qobject_list_model_adapter_signal.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>

#include <string>
#include <vector>

using list_model_test::Item;
using list_model_test::ListModelFixture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// Writes every per-object call as "insert|remove index name size".
class RecordingAdapter : public QObjectListModelAdapter
{
public:
    using QObjectListModelAdapter::QObjectListModelAdapter;

    std::vector<std::string> calls;

protected:
    void insert(int index, QObject* obj, int size) override { record("insert", index, obj, size); }
    void remove(int index, QObject* obj, int size) override { record("remove", index, obj, size); }

private:
    void record(const char* what, int index, QObject* obj, int size)
    {
        calls.push_back(std::string(what) + " " + std::to_string(index) + " " + list_model_test::nameOf(obj) +
                        " " + std::to_string(size));
    }
};

class ListAdapter : public ListModelFixture
{
protected:
    std::vector<std::string> take()
    {
        std::vector<std::string> result;
        result.swap(adapter.calls);
        return result;
    }

    RecordingAdapter adapter{&model};
};

TEST_F(ListAdapter, EnablingLoadsGrowingAndDisablingUnloadsShrinking)
{
    fill();
    QSignalSpy enabled(&adapter, &QObjectListModelAdapter::enabledChanged);
    ASSERT_TRUE(enabled.isValid());
    EXPECT_EQ(adapter.property("listModel").value<QObjectListModel*>(), &model);

    adapter.setEnabled(true);
    EXPECT_THAT(take(), ElementsAre("insert 0 a 1", "insert 1 b 2", "insert 2 c 3"));
    adapter.setEnabled(true);
    EXPECT_EQ(enabled.count(), 1);
    EXPECT_THAT(take(), IsEmpty());

    adapter.setProperty("enabled", false);
    EXPECT_THAT(take(), ElementsAre("remove 2 c 3", "remove 1 b 2", "remove 0 a 1"));
    EXPECT_EQ(enabled.count(), 2);

    // Disabled, the adapter hears nothing of the model.
    model.append(&d);
    model.listRemove(0);
    model.setList({&e});
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(ListAdapter, RowChangesReportTheCurrentSize)
{
    model.append(QList<QObject*>{&a, &b});
    adapter.setEnabled(true);
    take();

    model.append(QList<QObject*>{&c, &d});
    EXPECT_THAT(take(), ElementsAre("insert 2 c 4", "insert 3 d 4"));
    model.listInsert(1, &e);
    EXPECT_THAT(take(), ElementsAre("insert 1 e 5"));
    // Removals are reported before the rows go, upward.
    model.listRemove(1, 2);
    EXPECT_THAT(take(), ElementsAre("remove 1 e 5", "remove 2 b 5"));
    // A move is not a change of membership.
    model.move(0, 2);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(ListAdapter, ResetUnloadsAllThenLoadsAll)
{
    fill();
    adapter.setEnabled(true);
    take();
    model.setList({&d, &a});
    EXPECT_THAT(take(),
                ElementsAre("remove 2 c 3", "remove 1 b 2", "remove 0 a 1", "insert 0 d 1", "insert 1 a 2"));
    model.clearList();
    EXPECT_THAT(take(), ElementsAre("remove 1 a 2", "remove 0 d 1"));
}

TEST_F(ListAdapter, WatchFlagsChooseWhatIsHeard)
{
    QSignalSpy insertions(&adapter, &QObjectListModelAdapter::watchInsertionsChanged);
    QSignalSpy removals(&adapter, &QObjectListModelAdapter::watchRemovalsChanged);
    ASSERT_TRUE(insertions.isValid());
    ASSERT_TRUE(removals.isValid());
    EXPECT_TRUE(adapter.watchInsertions());
    EXPECT_TRUE(adapter.watchRemovals());

    adapter.setWatchInsertions(false);
    adapter.setWatchInsertions(false);
    adapter.setEnabled(true);
    model.append(&a);
    EXPECT_THAT(take(), IsEmpty());
    model.listRemove(0);
    EXPECT_THAT(take(), ElementsAre("remove 0 a 1"));

    adapter.setWatchRemovals(false);
    adapter.setWatchInsertions(true);
    model.append(&b);
    model.listRemove(0);
    EXPECT_THAT(take(), ElementsAre("insert 0 b 1"));
    EXPECT_EQ(insertions.count(), 2);
    EXPECT_EQ(removals.count(), 1);
}

TEST_F(ListAdapter, ExchangingTheModelMovesTheLoad)
{
    fill();
    QObjectListModel other;
    uni_testing::attachModelTester(&other);
    other.append(&d);
    adapter.setEnabled(true);
    take();
    QSignalSpy changed(&adapter, &QObjectListModelAdapter::listModelChanged);
    ASSERT_TRUE(changed.isValid());

    adapter.setListModel(&other);
    EXPECT_THAT(take(), ElementsAre("remove 2 c 3", "remove 1 b 2", "remove 0 a 1", "insert 0 d 1"));
    EXPECT_EQ(changed.count(), 1);
    model.append(&e);
    other.append(&e);
    EXPECT_THAT(take(), ElementsAre("insert 1 e 2"));
}

TEST_F(ListAdapter, SignalAdapterEmitsIndexAndObject)
{
    QObjectListModelAdapterSignal signaller(&model);
    QSignalSpy inserted(&signaller, qOverload<int, QObject*>(&QObjectListModelAdapterSignal::insert));
    QSignalSpy removed(&signaller, qOverload<int, QObject*>(&QObjectListModelAdapterSignal::remove));
    ASSERT_TRUE(inserted.isValid());
    ASSERT_TRUE(removed.isValid());

    model.append(&a);
    signaller.setEnabled(true);
    model.listInsert(0, &b);
    model.listRemove(1);
    ASSERT_EQ(inserted.count(), 2);
    EXPECT_EQ(inserted.at(0), (QList<QVariant>{0, QVariant::fromValue<QObject*>(&a)}));
    EXPECT_EQ(inserted.at(1), (QList<QVariant>{0, QVariant::fromValue<QObject*>(&b)}));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0), (QList<QVariant>{1, QVariant::fromValue<QObject*>(&a)}));
}

} // namespace
