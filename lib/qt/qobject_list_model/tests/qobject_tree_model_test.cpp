#include "tree_fixture.h"

#include <qobject_list_model/qobject_tree_model.h>

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <string>
#include <vector>

using tree_test::names;

namespace {

class TreeModel : public ::testing::Test
{
protected:
    TreeModel()
    {
        uni_testing::attachModelTester(&model);
        model.setRoot(tree.build());
        QObject::connect(&model, &QAbstractItemModel::dataChanged, &model,
                         [this](const QModelIndex& a, const QModelIndex& b, const QVector<int>& roles) {
                             EXPECT_EQ(a, b);
                             EXPECT_TRUE(roles.isEmpty());
                             changes.push_back(name(a));
                         });
        QObject::connect(&model, &QAbstractItemModel::modelAboutToBeReset, &model,
                         [this] { changes.push_back("reset"); });
    }

    QModelIndex at(std::initializer_list<int> path) const
    {
        QModelIndex index;
        for (int row : path)
            index = model.index(row, 0, index);
        return index;
    }

    std::string name(const QModelIndex& index) const
    {
        auto* object = index.data(QObjectTreeModel::ObjectRole).value<QObject*>();
        return object ? object->objectName().toStdString() : "null";
    }

    /// Runs the event loop until the collection timer has fired.
    static void waitForCollection()
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 3 * QObjectTreeModel::COLLECTION_INTERVAL_MS)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }

    tree_test::Tree tree;
    QObjectTreeModel model;
    std::vector<std::string> changes;
};

TEST_F(TreeModel, IndexesFollowTheTree)
{
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(name(at({0})), "a");
    EXPECT_EQ(name(at({0, 1, 0})), "a21");
    EXPECT_EQ(model.rowCount(at({0, 1})), 1);
    EXPECT_EQ(model.rowCount(at({1})), 0);
    EXPECT_FALSE(model.parent(at({0})).isValid());
    EXPECT_EQ(model.parent(at({0, 1, 0})), at({0, 1}));
    EXPECT_FALSE(model.index(2, 0).isValid());
    EXPECT_FALSE(model.index(0, 1).isValid());
    EXPECT_FALSE(model.data(QModelIndex(), QObjectTreeModel::ObjectRole).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).isValid());
}

TEST_F(TreeModel, RolesTellObjectAncestorsItemAndDescendents)
{
    const QModelIndex a21 = at({0, 1, 0});
    EXPECT_EQ(names(a21.data(QObjectTreeModel::AncestorsRole).toList()), "a a2");
    EXPECT_EQ(names(at({0}).data(QObjectTreeModel::AncestorsRole).toList()), "");
    EXPECT_EQ(names(at({0}).data(QObjectTreeModel::DescendentsRole).toList()), "a1 a2 a21");
    auto* item = a21.data(QObjectTreeModel::TreeItemRole).value<QObjectTreeItem*>();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->object(), tree.objects.at("a21").get());
    EXPECT_FALSE(a21.data(Qt::DisplayRole).isValid());
    const QHash<int, QByteArray> roles = model.roleNames();
    EXPECT_EQ(roles.value(257), "object");
    EXPECT_EQ(roles.value(258), "ancestors");
    EXPECT_EQ(roles.value(259), "treeItem");
    EXPECT_EQ(roles.value(260), "descendents");
}

TEST_F(TreeModel, AnEmptyTreeHasNoRows)
{
    model.setRoot(nullptr);
    EXPECT_EQ(model.rowCount(), 0);
    model.setRoot(new QObjectTreeItem);
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(TreeModel, ABurstOfChangesGivesOneDataChangedForTheRowAndEachAncestor)
{
    QSignalSpy spy(&model, &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(spy.isValid());
    for (int i = 0; i < 10; ++i)
        tree.objects.at("a21")->change();
    EXPECT_EQ(spy.count(), 0) << "nothing before the collection period ends";
    waitForCollection();
    EXPECT_THAT(changes, ::testing::UnorderedElementsAre("a21", "a2", "a"));
}

TEST_F(TreeModel, ChangesOfSeveralRowsShareTheirAncestors)
{
    tree.objects.at("a1")->change();
    tree.objects.at("a21")->change();
    tree.objects.at("b")->change();
    model.flush();
    EXPECT_THAT(changes, ::testing::UnorderedElementsAre("a", "a1", "a2", "a21", "b"));
    changes.clear();
    waitForCollection();
    EXPECT_TRUE(changes.empty()) << "a flush stops the timer";
}

TEST_F(TreeModel, SetRootSendsCollectedChangesBeforeTheReset)
{
    tree.objects.at("b")->change();
    model.setRoot(tree.build());
    EXPECT_THAT(changes, ::testing::ElementsAre("b", "reset"));
    changes.clear();
    tree.objects.at("a1")->change();
    waitForCollection();
    EXPECT_THAT(changes, ::testing::UnorderedElementsAre("a1", "a")) << "the new tree is connected";
}

TEST_F(TreeModel, ADeletedObjectLeavesARowWithANullObject)
{
    tree.objects.erase("a1");
    ASSERT_EQ(model.rowCount(at({0})), 2);
    EXPECT_EQ(at({0, 0}).data(QObjectTreeModel::ObjectRole).value<QObject*>(), nullptr);
    EXPECT_EQ(name(at({0, 1})), "a2");
}

TEST_F(TreeModel, ObjectsWithoutAChangeSignalAreWrappedQuietly)
{
    QObject plain;
    QObjectTreeItem item(&plain);
    EXPECT_FALSE(item.changeSignalConnected());
    QObjectTreeItem configurable(tree.objects.at("b").get());
    EXPECT_TRUE(configurable.changeSignalConnected());
}

struct InsertCase
{
    const char* name;
    int row;
    bool taken;
    const char* children_after;
};

void PrintTo(const InsertCase& insert, std::ostream* out)
{
    *out << insert.name;
}

class TreeItemInsert : public ::testing::TestWithParam<InsertCase>
{};

TEST_P(TreeItemInsert, TakesRowsFromZeroToTheCount)
{
    tree_test::Tree tree;
    std::unique_ptr<QObjectTreeItem> root(tree.build()); // a, b
    QObjectTreeItem* extra = tree.item("a1");
    const bool taken = root->insertChild(GetParam().row, extra);
    EXPECT_EQ(taken, GetParam().taken);
    if (!taken)
        delete extra;
    else
        EXPECT_EQ(extra->row(), GetParam().row);
    std::string children;
    for (int row = 0; row < root->childCount(); ++row)
        children += root->child(row)->object()->objectName().toStdString();
    EXPECT_EQ(children, GetParam().children_after);
}

INSTANTIATE_TEST_SUITE_P(Rows, TreeItemInsert,
                         ::testing::Values(InsertCase{"negative", -1, false, "ab"},
                                           InsertCase{"first", 0, true, "a1ab"},
                                           InsertCase{"between", 1, true, "aa1b"},
                                           InsertCase{"at_the_count", 2, true, "aba1"},
                                           InsertCase{"past_the_count", 3, false, "ab"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(TreeItem, RowAndChildAnswerOutsideTheTree)
{
    tree_test::Tree tree;
    std::unique_ptr<QObjectTreeItem> root(tree.build());
    EXPECT_EQ(root->row(), 0);
    EXPECT_EQ(root->child(1)->row(), 1);
    EXPECT_EQ(root->child(2), nullptr);
    EXPECT_EQ(root->child(-1), nullptr);
    EXPECT_EQ(root->child(0)->parentItem(), root.get());
}

TEST(TreeItem, ACopyIsDeepAndSharesTheObjects)
{
    tree_test::Tree tree;
    std::unique_ptr<QObjectTreeItem> original(tree.build());
    auto copy = std::make_unique<QObjectTreeItem>(*original);
    original.reset();
    ASSERT_EQ(copy->childCount(), 2);
    QObjectTreeItem* a2 = copy->child(0)->child(1);
    ASSERT_NE(a2, nullptr);
    EXPECT_EQ(a2->object(), tree.objects.at("a2").get());
    EXPECT_EQ(a2->parentItem(), copy->child(0));
    ASSERT_EQ(a2->childCount(), 1);
    EXPECT_EQ(a2->child(0)->object(), tree.objects.at("a21").get());
}

TEST(TreeItem, ASharedObjectLivesAsLongAsItsItem)
{
    auto object = std::make_shared<QObject>();
    std::weak_ptr<QObject> watch = object;
    auto item = std::make_unique<QObjectTreeItem>(std::move(object));
    auto copy = std::make_unique<QObjectTreeItem>(*item);
    item.reset();
    EXPECT_FALSE(watch.expired()) << "the copy keeps it";
    EXPECT_EQ(copy->object(), watch.lock().get());
    copy.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(TreeItem, ANullChildIsRefused)
{
    QObjectTreeItem root;
    uni_testing::AssertCapture asserts;
    root.appendChild(nullptr);
    EXPECT_FALSE(root.insertChild(0, nullptr));
    EXPECT_EQ(root.childCount(), 0);
    EXPECT_TRUE(asserts.fired("child"));
    EXPECT_EQ(asserts.size(), 2u);
}

TEST(SelectionCache, RemembersStatesByObject)
{
    QObjectTreeModelSelectionCache cache;
    QObject a;
    QObject b;
    EXPECT_EQ(cache.getSelectionState(&a), Qt::Unchecked);
    cache.setSelectionState(&a, Qt::Checked);
    cache.setSelectionState(&b, Qt::PartiallyChecked);
    EXPECT_EQ(cache.getSelectionState(&a), Qt::Checked);
    cache.removeSelectionState(&a);
    EXPECT_EQ(cache.getSelectionState(&a), Qt::Unchecked);
    EXPECT_EQ(cache.getSelectionState(&b), Qt::PartiallyChecked);
    cache.clearAll();
    EXPECT_EQ(cache.getSelectionState(&b), Qt::Unchecked);
}

} // namespace
