// The name index must agree with a scan of the list after every kind of change.
#include "list_model_fixture.h"

#include <qobject_list_model/qobject_list_model_index_by_name.h>

#include <gtest/gtest.h>

#include <memory>

using list_model_test::Item;
using list_model_test::ListModelFixture;

namespace {

class IndexByName : public ListModelFixture
{
protected:
    /// Every object and every name of the list is found where a scan finds it.
    void expectAgreesWithList()
    {
        const QList<QObject*> objects = model.list();
        for (int row = 0; row < objects.size(); ++row) {
            QObject* object = objects.at(row);
            SCOPED_TRACE("row " + std::to_string(row) + " " + object->objectName().toStdString());
            EXPECT_TRUE(index.contains(object));
            EXPECT_EQ(index.indexOf(object), row);
            EXPECT_EQ(index.indexOfName(object->objectName()), model.indexOfName(object->objectName()));
        }
    }

    QObjectListModelIndexByName index{&model};
};

TEST_F(IndexByName, FollowsInsertionsRemovalsAndMoves)
{
    EXPECT_TRUE(index.enabled());
    fill();
    expectAgreesWithList();
    model.listInsert(1, &d);
    expectAgreesWithList();
    model.append(&e);
    model.move(4, 0);
    expectAgreesWithList();
    model.move(1, 3);
    expectAgreesWithList();
    model.listRemove(1, 2);
    expectAgreesWithList();
    EXPECT_EQ(index.indexOfName("e"), 0);
    EXPECT_EQ(index.indexOfName("nobody"), -1);
    EXPECT_EQ(model.size(), 3);
}

TEST_F(IndexByName, RemovedObjectsAreForgotten)
{
    fill();
    model.removeItem(&b);
    EXPECT_FALSE(index.contains(&b));
    EXPECT_EQ(index.indexOf(&b), -1);
    EXPECT_EQ(index.indexOfName("b"), -1);
    EXPECT_EQ(index.indexOfName("c"), 1);
    // A removed object's later rename must not come back into the index.
    b.setObjectName("c");
    EXPECT_EQ(index.indexOfName("c"), 1);
    EXPECT_FALSE(index.contains(nullptr));
}

TEST_F(IndexByName, RenameRefilesInPlace)
{
    fill();
    b.setObjectName("x");
    EXPECT_EQ(index.indexOfName("b"), -1);
    EXPECT_EQ(index.indexOfName("x"), 1);
    EXPECT_EQ(index.indexOf(&b), 1);
    // Still connected after the re-filing: a second rename is heard too.
    b.setObjectName("y");
    expectAgreesWithList();
    EXPECT_EQ(index.indexOfName("x"), -1);
}

TEST_F(IndexByName, DuplicateNamesMapToTheFirstRow)
{
    fill();
    c.setObjectName("a");
    d.setObjectName("a");
    model.append(&d);
    EXPECT_EQ(index.indexOfName("a"), 0);
    expectAgreesWithList();
    model.listRemove(0);
    EXPECT_EQ(index.indexOfName("a"), 1);
    expectAgreesWithList();
    c.setObjectName("z");
    EXPECT_EQ(index.indexOfName("a"), 2);
    model.move(2, 0);
    expectAgreesWithList();
    model.listInsert(0, &a);
    EXPECT_EQ(index.indexOfName("a"), 0);
    expectAgreesWithList();
}

TEST_F(IndexByName, ResetDropsAndRebuilds)
{
    fill();
    model.setList({&e, &c, &d});
    expectAgreesWithList();
    EXPECT_FALSE(index.contains(&a));
    EXPECT_EQ(index.indexOfName("b"), -1);
    // Objects of the old list no longer re-file themselves.
    a.setObjectName("d");
    EXPECT_EQ(index.indexOfName("d"), 2);
    model.clearList();
    EXPECT_FALSE(index.contains(&e));
    EXPECT_EQ(index.indexOfName("e"), -1);
}

TEST_F(IndexByName, DestroyedTrackedObjectLeavesTheIndex)
{
    model.setTracking(true);
    auto doomed = std::make_unique<Item>("doomed");
    fill();
    model.listInsert(1, doomed.get());
    QObject* gone = doomed.get();
    doomed.reset();
    EXPECT_FALSE(index.contains(gone));
    EXPECT_EQ(index.indexOfName("doomed"), -1);
    expectAgreesWithList();
}

TEST_F(IndexByName, DisablingEmptiesTheIndex)
{
    fill();
    index.setEnabled(false);
    EXPECT_FALSE(index.contains(&a));
    EXPECT_EQ(index.indexOfName("a"), -1);
    a.setObjectName("q");
    EXPECT_EQ(index.indexOfName("q"), -1);
    index.setEnabled(true);
    expectAgreesWithList();
}

TEST_F(IndexByName, ModelAnswersThroughTheIndex)
{
    model.setNameIndex(&index);
    EXPECT_EQ(model.nameIndex(), &index);
    model.setTracking(true);
    auto* doomed = new Item("doomed");
    model.append(QList<QObject*>{&a, doomed, &b, &c});
    EXPECT_TRUE(model.contains(doomed));
    EXPECT_EQ(model.indexOf(&c), 3);
    EXPECT_EQ(model.indexOfName("b"), 2);
    EXPECT_EQ(model.getByName("c"), &c);
    delete doomed;
    EXPECT_EQ(model.size(), 3);
    EXPECT_EQ(model.indexOf(&c), 2);
    model.removeItem(&b);
    EXPECT_EQ(model.list(), (QList<QObject*>{&a, &c}));
    EXPECT_FALSE(model.contains(&b));
    // An index that does not hear removals would go stale: the model scans instead.
    index.setWatchRemovals(false);
    model.listRemove(0);
    EXPECT_FALSE(model.contains(&a));
    EXPECT_EQ(model.indexOfName("c"), 0);
}

} // namespace

namespace {

// An object listed twice used to leave the index with its first removal.
TEST_F(IndexByName, ObjectListedTwiceStaysFound)
{
    model.setNameIndex(&index);
    model.append(QList<QObject*>{&a, &b, &a});
    model.listRemove(0);
    EXPECT_TRUE(model.contains(&a));
    EXPECT_EQ(model.indexOf(&a), 1);
    EXPECT_EQ(model.indexOfName("a"), 1);
    model.setList({&c, &d});
    expectAgreesWithList();
}

} // namespace
