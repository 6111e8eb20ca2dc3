// The name index must agree with a scan of the list after every kind of change.
#include "list_model_fixture.h"

#include <qobject_list_model/qobject_list_model_index_by_name.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <vector>

using list_model_test::Item;
using list_model_test::ListModelFixture;
using list_model_test::nameOf;

namespace {

class IndexByName : public ListModelFixture
{
protected:
    /// Every object is found where a scan finds it; every name carried by one row only is
    /// found at that row.
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

TEST_F(IndexByName, SharedNameMapsToTheLastFiledAndLeavesWithAnyHolder)
{
    fill();
    c.setObjectName("a");
    d.setObjectName("a");
    model.append(&d);
    EXPECT_EQ(index.indexOfName("a"), 3);
    EXPECT_EQ(index.indexOfName("c"), -1);
    // Objects are still found at their own rows, never at the name's.
    EXPECT_EQ(index.indexOf(&a), 0);
    EXPECT_EQ(index.indexOf(&c), 2);
    model.listRemove(0);
    EXPECT_EQ(index.indexOfName("a"), -1);
    EXPECT_EQ(index.indexOf(&d), 2);
    EXPECT_TRUE(index.contains(&c));
    c.setObjectName("z");
    EXPECT_EQ(index.indexOfName("z"), 1);
    model.listInsert(0, &a);
    EXPECT_EQ(index.indexOfName("a"), 0);
    EXPECT_EQ(index.indexOf(&d), 3);
    model.move(0, 3);
    EXPECT_EQ(index.indexOfName("a"), 3);
    EXPECT_EQ(index.indexOf(&d), 2);
}

TEST_F(IndexByName, NullRowsCountInTheRenumbering)
{
    model.setList({&a, nullptr, &b});
    model.listInsert(2, &c);
    EXPECT_EQ(index.indexOfName("b"), 3);
    EXPECT_EQ(index.indexOfName("c"), 2);
    model.setList({&a, nullptr, nullptr, nullptr, &b});
    model.listRemove(2);
    EXPECT_EQ(index.indexOfName("b"), 3);
    EXPECT_EQ(index.indexOf(&b), 3);
    model.listReplace(1, &d);
    EXPECT_EQ(index.indexOfName("d"), 1);
    EXPECT_TRUE(index.contains(&d));
}

// Random changes over a list with null rows and shared names: after every step the model
// answers as a scan of the list does. A name maps to the object last filed under it and
// leaves with any object that carried it; a reset or a replaced row files the list anew.
TEST_F(IndexByName, RandomChangesAgreeWithAScan)
{
    model.setNameIndex(&index);
    model.setTracking(true);
    const QStringList names{"p", "q", "r"};
    std::vector<std::unique_ptr<Item>> pool;
    for (int i = 0; i < 9; ++i)
        pool.push_back(std::make_unique<Item>(names.at(i % 3)));
    std::map<QString, QObject*> holder;
    auto fileAll = [&] {
        holder.clear();
        for (QObject* object : model.list()) {
            if (object != nullptr)
                holder[object->objectName()] = object;
        }
    };
    std::mt19937 random(16);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(std::max(n, 1))); };
    auto outside = [&]() -> QObject* {
        QObject* object = pool.at(pick(9)).get();
        return model.list().contains(object) ? nullptr : object;
    };
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const int count = model.size();
        QObject* object = nullptr;
        switch (pick(7)) {
        case 0:
            if ((object = outside()) != nullptr) {
                model.listInsert(pick(count + 1), object);
                holder[object->objectName()] = object;
            }
            break;
        case 1:
            if (count > 0) {
                object = model.get(pick(count));
                if (object != nullptr && holder.count(object->objectName()) > 0)
                    holder.erase(object->objectName());
                model.listRemove(model.list().indexOf(object));
            }
            break;
        case 2:
            model.move(pick(count), pick(count));
            break;
        case 3:
            object = pool.at(pick(9)).get();
            if (model.list().contains(object) && object->objectName() != names.at(step % 3)) {
                holder.erase(object->objectName());
                holder[names.at(step % 3)] = object;
            }
            object->setObjectName(names.at(step % 3));
            break;
        case 4:
            if ((object = model.get(pick(count))) != nullptr) {
                holder.erase(object->objectName());
                model.removeItem(object);
                EXPECT_FALSE(model.list().contains(object));
            }
            break;
        case 5:
            if ((object = outside()) != nullptr && count > 0) {
                model.listReplace(pick(count), object);
                fileAll();
            }
            break;
        default:
            if (pick(4) == 0) {
                QList<QObject*> objects;
                for (const auto& item : pool) {
                    if (pick(2) == 0)
                        objects.insert(pick(objects.size() + 1), pick(3) == 0 ? nullptr : item.get());
                }
                model.setList(objects);
                fileAll();
            }
        }
        const QList<QObject*> objects = model.list();
        for (const auto& item : pool) {
            ASSERT_EQ(model.indexOf(item.get()), objects.indexOf(item.get())) << nameOf(item.get());
            ASSERT_EQ(model.contains(item.get()), objects.contains(item.get()));
        }
        for (const QString& name : names) {
            const auto filed = holder.find(name);
            ASSERT_EQ(model.indexOfName(name), filed == holder.end() ? -1 : objects.indexOf(filed->second))
                << name.toStdString();
        }
    }
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
    // Nor does a replaced row file anything while the index is off.
    model.listReplace(1, &d);
    EXPECT_FALSE(index.contains(&d));
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
