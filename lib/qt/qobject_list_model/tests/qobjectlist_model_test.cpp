// What each entry point does to the list, its bounds and its assertions.
#include "list_model_fixture.h"

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractListModel>
#include <QCoreApplication>
#include <QPointer>
#include <QQmlEngine>
#include <QSignalSpy>

#include <memory>

using list_model_test::Item;
using list_model_test::RecordingModel;
using list_model_test::Stranger;

namespace {

class ListModel : public ::testing::Test
{
protected:
    ListModel() : a("a"), b("b"), c("c"), d("d"), e("e")
    {
        // Tests that spy keep the recording model's log; nobody reads it here.
        uni_testing::attachModelTester(&plain);
    }

    void fillFive() { model.append(QList<QObject*>{&a, &b, &c, &d, &e}); }

    Item a, b, c, d, e;
    RecordingModel model;
    QObjectListModel plain;
};

TEST_F(ListModel, RolesAndData)
{
    model.append(&a);
    const QModelIndex index = model.index(0, 0);
    EXPECT_EQ(model.data(index, Qt::DisplayRole).toString(), "a");
    EXPECT_EQ(model.data(index, QObjectListModel::OBJECT_ROLE).value<QObject*>(), &a);
    EXPECT_EQ(model.dataByRole(0, 257).value<QObject*>(), &a);
    EXPECT_FALSE(model.data(index, Qt::EditRole).isValid());
    EXPECT_FALSE(model.dataByRole(1, 257).isValid());
    EXPECT_EQ(model.roleNames(), (QHash<int, QByteArray>{{257, "object"}}));
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(model.rowCount(index), 0);
}

TEST_F(ListModel, CountAndLengthProperties)
{
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(count.isValid());
    fillFive();
    EXPECT_EQ(count.count(), 1);
    EXPECT_EQ(model.property("count").toInt(), 5);
    EXPECT_EQ(model.property("length").toInt(), 5);
    EXPECT_EQ(model.size(), 5);
}

TEST_F(ListModel, AppendSignalsCarryTheObject)
{
    QSignalSpy added(&model, &QObjectListModel::objectAdded);
    ASSERT_TRUE(added.isValid());
    model.append(&a);
    model.append(QList<QObject*>{&b, &c});
    ASSERT_EQ(added.count(), 3);
    EXPECT_EQ(added.at(0).at(0).value<QObject*>(), &a);
    EXPECT_EQ(added.at(1).at(0).value<QObject*>(), &b);
    EXPECT_EQ(added.at(2).at(0).value<QObject*>(), &c);
}

TEST_F(ListModel, NullsAreKeptOut)
{
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(count.isValid());
    model.append(static_cast<QObject*>(nullptr));
    model.append(QList<QObject*>{});
    model.listAppend(static_cast<QObject*>(nullptr));
    model.listInsert(0, nullptr);
    model.insert(0, nullptr);
    EXPECT_EQ(model.size(), 0);
    EXPECT_EQ(count.count(), 0);

    uni_testing::AssertCapture asserts;
    model.listAppend(QList<QObject*>{&a, nullptr, &b});
    EXPECT_TRUE(asserts.fired("obj"));
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b}));
}

TEST_F(ListModel, TypedListRefusesOtherClasses)
{
    Stranger stranger;
    uni_testing::AssertCapture asserts;
    model.append(&stranger);
    EXPECT_TRUE(asserts.fired("isObjectCompatible(object)"));
    EXPECT_NE(asserts.records().at(0).file.find("lib/qt/qobject_list_model/src/qobjectlist_model"),
              std::string::npos);
    EXPECT_EQ(model.size(), 0);
    EXPECT_FALSE(model.isObjectCompatible(&stranger));
    EXPECT_TRUE(model.isObjectCompatible(&a));
    EXPECT_FALSE(model.isObjectCompatible(nullptr));
    EXPECT_TRUE(plain.isObjectCompatible(&stranger));

    // listInsert does not ask.
    asserts.clear();
    model.listInsert(0, &stranger);
    EXPECT_EQ(asserts.size(), 0u);
    EXPECT_EQ(model.size(), 1);
    EXPECT_EQ(model.at(0), nullptr) << "the typed accessor does not hand out a stranger";
    EXPECT_TRUE(model.typedList().isEmpty());
}

TEST_F(ListModel, GetIsBoundedAndHandsOwnershipToNativeCode)
{
    model.append(QList<QObject*>{&a, &b});
    QQmlEngine::setObjectOwnership(&a, QQmlEngine::JavaScriptOwnership);
    QQmlEngine::setObjectOwnership(&b, QQmlEngine::JavaScriptOwnership);
    EXPECT_EQ(model.get(-1), nullptr);
    EXPECT_EQ(model.get(2), nullptr);
    EXPECT_EQ(model.get(0), &a);
    EXPECT_EQ(QQmlEngine::objectOwnership(&a), QQmlEngine::CppOwnership);
    EXPECT_EQ(QQmlEngine::objectOwnership(&b), QQmlEngine::JavaScriptOwnership) << "append leaves it alone";
    EXPECT_EQ(model.getByName("b"), &b);
    EXPECT_EQ(QQmlEngine::objectOwnership(&b), QQmlEngine::CppOwnership);
    EXPECT_EQ(model.getByName("z"), nullptr);
}

TEST_F(ListModel, ListEntryPointsHandOwnershipToNativeCode)
{
    for (Item* item : {&a, &b, &c, &d})
        QQmlEngine::setObjectOwnership(item, QQmlEngine::JavaScriptOwnership);
    model.listAppend(&a);
    model.listAppend(QList<QObject*>{&b});
    model.listInsert(0, &c);
    model.listReplace(0, &d);
    for (Item* item : {&a, &b, &c, &d})
        EXPECT_EQ(QQmlEngine::objectOwnership(item), QQmlEngine::CppOwnership)
            << item->objectName().toStdString();
    model.insert(0, &e);
    QQmlEngine::setObjectOwnership(&e, QQmlEngine::JavaScriptOwnership);
    model.insert(0, &e);
    EXPECT_EQ(QQmlEngine::objectOwnership(&e), QQmlEngine::JavaScriptOwnership);
}

TEST_F(ListModel, ListInsertBounds)
{
    model.append(QList<QObject*>{&a, &b});
    model.listInsert(2, &c);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b, &c})) << "count appends";
    model.listInsert(4, &d);
    model.listInsert(-1, &d);
    EXPECT_EQ(model.size(), 3);
    model.listInsert(0, &d);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&d, &a, &b, &c}));
}

TEST_F(ListModel, InsertOutsideTheListIsAsserted)
{
    uni_testing::AssertCapture asserts;
    model.insert(1, &a);
    EXPECT_EQ(asserts.size(), 1u);
    EXPECT_EQ(model.size(), 0);
    model.insert(0, &a);
    EXPECT_EQ(model.size(), 1);
}

TEST_F(ListModel, ListReplaceBounds)
{
    model.append(QList<QObject*>{&a, &b});
    QSignalSpy removed(&model, &QObjectListModel::objectRemoved);
    QSignalSpy about(&model, &QObjectListModel::objectAboutToBeRemoved);
    QSignalSpy added(&model, &QObjectListModel::objectAdded);
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(removed.isValid() && about.isValid() && added.isValid() && count.isValid());
    // count passes the bound test but there is no row: nothing, and no crash.
    model.listReplace(2, &c);
    model.listReplace(3, &c);
    model.listReplace(-1, &c);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b}));
    EXPECT_EQ(added.count(), 0);

    model.listReplace(1, &c);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &c}));
    ASSERT_EQ(about.count(), 1);
    EXPECT_EQ(about.at(0).at(0).value<QObject*>(), &b);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(0).value<QObject*>(), &b);
    ASSERT_EQ(added.count(), 1);
    EXPECT_EQ(added.at(0).at(0).value<QObject*>(), &c);
    EXPECT_EQ(count.count(), 0);
}

TEST_F(ListModel, ListRemoveCutsAtTheEndInOneRemoval)
{
    fillFive();
    QSignalSpy about_rows(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
    QSignalSpy removed(&model, &QObjectListModel::objectRemoved);
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(about_rows.isValid() && removed.isValid() && count.isValid());
    model.listRemove(2, 100);
    ASSERT_EQ(about_rows.count(), 1);
    EXPECT_EQ(about_rows.at(0).at(1).toInt(), 2);
    EXPECT_EQ(about_rows.at(0).at(2).toInt(), 4);
    ASSERT_EQ(removed.count(), 3);
    EXPECT_EQ(removed.at(0).at(0).value<QObject*>(), &c);
    EXPECT_EQ(removed.at(2).at(0).value<QObject*>(), &e);
    EXPECT_EQ(count.count(), 1);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b}));
}

TEST_F(ListModel, ListRemoveOutOfRangeDoesNothing)
{
    fillFive();
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(count.isValid());
    model.listRemove(-1);
    model.listRemove(5);
    model.listRemove(0, 0);
    model.listRemove(0, -3);
    EXPECT_EQ(count.count(), 0);
    EXPECT_EQ(model.size(), 5);
    model.listRemove(4);
    EXPECT_EQ(model.size(), 4);
}

TEST_F(ListModel, ClearOfAnEmptyListDeletesAndEmitsNothing)
{
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(count.isValid() && reset.isValid());
    model.clearList(true);
    EXPECT_EQ(count.count(), 0);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(ListModel, ClearDeletesOnlyWhenAsked)
{
    QPointer<Item> x = new Item("x");
    QPointer<Item> y = new Item("y");
    model.append(QList<QObject*>{x, y});
    QSignalSpy removed(&model, &QObjectListModel::objectRemoved);
    QSignalSpy about(&model, &QObjectListModel::objectAboutToBeRemoved);
    QSignalSpy count(&model, &QObjectListModel::countChanged);
    ASSERT_TRUE(removed.isValid() && about.isValid() && count.isValid());
    model.clearList();
    EXPECT_FALSE(x.isNull());
    model.append(QList<QObject*>{x, y});
    model.clearList(true);
    EXPECT_TRUE(x.isNull()) << "deleted at once, not later";
    EXPECT_TRUE(y.isNull());
    EXPECT_EQ(removed.count(), 0);
    EXPECT_EQ(about.count(), 0);
    EXPECT_EQ(count.count(), 3);
}

TEST_F(ListModel, IndexOfAndFriends)
{
    fillFive();
    model.append(&a);
    EXPECT_EQ(model.indexOf(&a), 0);
    EXPECT_EQ(model.indexOf(&a, 1), 5);
    EXPECT_EQ(model.indexOf(&a, -1), 5) << "negative counts from the end";
    EXPECT_EQ(model.indexOf(&b, -1), -1);
    EXPECT_EQ(model.indexOf(&b, -100), 1) << "clamped to the start";
    EXPECT_EQ(model.indexOf(&a, 6), -1);
    EXPECT_EQ(model.indexOf(nullptr), -1);
    EXPECT_EQ(model.indexOfName("c"), 2);
    EXPECT_EQ(model.indexOfName("z"), -1);
    EXPECT_TRUE(model.contains(&e));
    EXPECT_FALSE(model.contains(nullptr));
    Item other("other");
    EXPECT_FALSE(model.contains(&other));
}

TEST_F(ListModel, RemoveItemsWorksOnACopy)
{
    fillFive();
    QList<QObject*> gone{&b, &d, &b};
    model.removeItems(gone);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &c, &e}));
    model.removeItem(nullptr);
    Item other("other");
    model.removeItem(&other);
    EXPECT_EQ(model.size(), 3);
    // The list handed in is the model's own (shared) list: the walk is over a copy.
    model.removeItems(model.list());
    EXPECT_EQ(model.size(), 0);
}

TEST_F(ListModel, DeleteItemDeletesLater)
{
    QPointer<Item> x = new Item("x");
    model.append(QList<QObject*>{&a, x});
    EXPECT_FALSE(model.deleteItem(nullptr));
    EXPECT_FALSE(model.deleteItem(&b));
    EXPECT_TRUE(model.deleteItem(x));
    EXPECT_EQ(model.size(), 1);
    EXPECT_FALSE(x.isNull());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(x.isNull());
}

TEST_F(ListModel, SetAndAppendFromAnotherListModel)
{
    plain.append(QList<QObject*>{&c, &d});
    model.append(&a);
    model.listAppendFromObjectListModel(&plain);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &c, &d}));
    model.listSetFromObjectListModel(&plain);
    EXPECT_EQ(model.typedList(), (QList<Item*>{&c, &d}));
    model.listSetFromObjectListModel(nullptr);
    model.listAppendFromObjectListModel(nullptr);
    EXPECT_EQ(model.size(), 2);
    // The source keeps its list.
    EXPECT_EQ(plain.size(), 2);
}

/// An item model whose second column carries objects as typed pointers, and whose
/// last row carries no object.
class ObjectTable : public QAbstractTableModel
{
public:
    ObjectTable(QList<Item*> items) : m_items(std::move(items)) {}
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : m_items.size() + 1;
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (index.row() == m_items.size())
            return role == Qt::UserRole + 7 ? QVariant(QStringLiteral("not an object")) : QVariant();
        if (role == Qt::UserRole + 7 && index.column() == 1)
            return QVariant::fromValue(m_items.at(index.row()));
        if (role == Qt::UserRole + 8 && index.column() == 1)
            return QVariant::fromValue(static_cast<QObject*>(m_items.at(index.row())));
        return {};
    }

private:
    QList<Item*> m_items;
};

TEST_F(ListModel, SetFromItemModelKeepsNullsInPlace)
{
    ObjectTable table({&a, &b});
    model.append(&e);
    model.listSetFromItemModel(&table, Qt::UserRole + 7, 1);
    EXPECT_EQ(model.list(), (QList<QObject*>{&a, &b, nullptr}));
    EXPECT_FALSE(model.data(model.index(2, 0), Qt::DisplayRole).isValid());
    model.listSetFromItemModel(&table, Qt::UserRole + 8, 1);
    EXPECT_EQ(model.list(), (QList<QObject*>{&a, &b, nullptr}));
    model.listSetFromItemModel(&table, Qt::UserRole + 7, 0);
    EXPECT_EQ(model.list(), (QList<QObject*>{nullptr, nullptr, nullptr}));

    model.setList({&e});
    model.listSetFromItemModel(&table, Qt::UserRole + 7, 2);
    model.listSetFromItemModel(nullptr);
    EXPECT_EQ(model.list(), (QList<QObject*>{&e})) << "a column past the end or no model changes nothing";

    // The default role is the object role of a list model.
    plain.append(QList<QObject*>{&c, &d});
    model.listSetFromItemModel(&plain);
    EXPECT_EQ(model.list(), (QList<QObject*>{&c, &d}));
}

} // namespace
