#include <qt_utils/tree_model_list_adapter.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/model_tester.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QStandardItemModel>

#include <memory>

using qt_utils::TreeModelListAdapter;

namespace {

QStandardItem* item(const char* text, std::initializer_list<QStandardItem*> children = {})
{
    auto* result = new QStandardItem(QString::fromUtf8(text));
    for (QStandardItem* child : children)
        result->appendRow(child);
    return result;
}

/// a (a1, a2 (a21)), b, c (c1)
class TreeAdapter : public ::testing::Test
{
protected:
    TreeAdapter()
    {
        tree.appendRow(item("a", {item("a1"), item("a2", {item("a21")})}));
        tree.appendRow(item("b"));
        tree.appendRow(item("c", {item("c1")}));
        uni_testing::attachModelTester(&tree);
        adapter = std::make_unique<TreeModelListAdapter>(&tree);
        uni_testing::attachModelTester(adapter.get());
    }

    /// Each shown row as its text, indented by its depth, with "+" when expanded.
    std::vector<std::string> shown() const
    {
        std::vector<std::string> rows;
        for (int r = 0; r < adapter->rowCount(); ++r) {
            const QModelIndex i = adapter->index(r, 0);
            std::string text(static_cast<std::size_t>(2 * i.data(TreeModelListAdapter::DEPTH_ROLE).toInt()),
                             ' ');
            text += i.data(Qt::DisplayRole).toString().toStdString();
            if (i.data(TreeModelListAdapter::EXPANDED_ROLE).toBool())
                text += "+";
            rows.push_back(text);
        }
        return rows;
    }

    QStandardItemModel tree;
    std::unique_ptr<TreeModelListAdapter> adapter;
};

TEST_F(TreeAdapter, StartsWithTheTopLevelCollapsed)
{
    EXPECT_THAT(shown(), ::testing::ElementsAre("a", "b", "c"));
    EXPECT_TRUE(adapter->dataByRole(0, TreeModelListAdapter::HAS_CHILDREN_ROLE).toBool());
    EXPECT_FALSE(adapter->dataByRole(1, TreeModelListAdapter::HAS_CHILDREN_ROLE).toBool());
    EXPECT_EQ(adapter->columnCount(), 1);
    EXPECT_FALSE(adapter->parent(adapter->index(0, 0)).isValid());
    EXPECT_FALSE(adapter->index(3, 0).isValid());
    EXPECT_EQ(adapter->treeIndex(2), tree.index(2, 0));
    const auto roles = adapter->roleNames();
    EXPECT_EQ(roles.value(Qt::DisplayRole), "display") << "the tree's roles pass through";
    EXPECT_EQ(roles.value(TreeModelListAdapter::DEPTH_ROLE), "depth");
    EXPECT_EQ(roles.value(TreeModelListAdapter::EXPANDED_ROLE), "expanded");
    EXPECT_EQ(roles.value(TreeModelListAdapter::HAS_CHILDREN_ROLE), "hasChildren");
}

TEST_F(TreeAdapter, ExpandAndCollapse)
{
    QSignalSpy inserted(adapter.get(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(adapter.get(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(adapter.get(), &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(inserted.isValid() && removed.isValid() && changed.isValid());

    adapter->expand(0);
    EXPECT_THAT(shown(), ::testing::ElementsAre("a+", "  a1", "  a2", "b", "c"));
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted.at(0).at(1).toInt(), 1);
    EXPECT_EQ(inserted.at(0).at(2).toInt(), 2);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 0);

    adapter->expand(0);
    adapter->expand(7);
    adapter->expand(-1);
    EXPECT_EQ(inserted.count(), 1);

    adapter->expand(2);
    adapter->expand(5);
    EXPECT_THAT(shown(), ::testing::ElementsAre("a+", "  a1", "  a2+", "    a21", "b", "c+", "  c1"));
    EXPECT_TRUE(adapter->isExpanded(2));

    adapter->collapse(0);
    EXPECT_THAT(shown(), ::testing::ElementsAre("a", "b", "c+", "  c1"));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(1).toInt(), 1);
    EXPECT_EQ(removed.at(0).at(2).toInt(), 3);

    // Nested rows forget that they were open.
    adapter->expand(0);
    EXPECT_THAT(shown(), ::testing::ElementsAre("a+", "  a1", "  a2", "b", "c+", "  c1"));

    // A row without children can be opened; children that come later show.
    adapter->expand(3);
    tree.item(1)->appendRow(item("b1"));
    EXPECT_THAT(shown(), ::testing::ElementsAre("a+", "  a1", "  a2", "b+", "  b1", "c+", "  c1"));
}

TEST_F(TreeAdapter, TreeInsertionsLandBelowTheOpenSubtreeBefore)
{
    adapter->expand(0);
    adapter->expand(2); // a2
    tree.item(0)->appendRow(item("a3"));
    EXPECT_THAT(shown(), ::testing::ElementsAre("a+", "  a1", "  a2+", "    a21", "  a3", "b", "c"));
    tree.item(0)->insertRow(0, item("a0"));
    tree.insertRow(1, item("ab"));
    EXPECT_THAT(shown(),
                ::testing::ElementsAre("a+", "  a0", "  a1", "  a2+", "    a21", "  a3", "ab", "b", "c"));
}

TEST_F(TreeAdapter, InsertionUnderAClosedRowOnlyChangesIt)
{
    QSignalSpy inserted(adapter.get(), &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(adapter.get(), &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(inserted.isValid() && changed.isValid());
    tree.item(1)->appendRow(item("b1"));
    EXPECT_EQ(inserted.count(), 0);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 1);
    EXPECT_TRUE(adapter->dataByRole(1, TreeModelListAdapter::HAS_CHILDREN_ROLE).toBool());
}

TEST_F(TreeAdapter, RemovalTakesTheWholeShownSubtree)
{
    adapter->expand(0);
    adapter->expand(2);
    adapter->expand(5);
    tree.removeRow(0);
    EXPECT_THAT(shown(), ::testing::ElementsAre("b", "c+", "  c1"));
    tree.item(1)->removeRow(0);
    EXPECT_THAT(shown(), ::testing::ElementsAre("b", "c+"));
    EXPECT_FALSE(adapter->dataByRole(1, TreeModelListAdapter::HAS_CHILDREN_ROLE).toBool());
}

TEST_F(TreeAdapter, DataChangesAreForwardedToTheShownRow)
{
    adapter->expand(0);
    QSignalSpy changed(adapter.get(), &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(changed.isValid());
    tree.item(0)->child(1)->setText("A2");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 2);
    EXPECT_EQ(adapter->dataByRole(2, Qt::DisplayRole).toString(), "A2");
    tree.item(2)->child(0)->setText("C1");
    EXPECT_EQ(changed.count(), 1) << "a hidden row changes nothing";
}

TEST_F(TreeAdapter, ResetAndSortShowTheTreeAgain)
{
    adapter->expand(0);
    tree.sort(0, Qt::DescendingOrder);
    EXPECT_THAT(shown(), ::testing::ElementsAre("c", "b", "a+", "  a2", "  a1")) << "open rows stay open";
    QSignalSpy reset(adapter.get(), &QAbstractItemModel::modelReset);
    ASSERT_TRUE(reset.isValid());
    tree.clear();
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(adapter->rowCount(), 0);
}

TEST_F(TreeAdapter, NullTreeIsAsserted)
{
    uni_testing::AssertCapture asserts;
    adapter->setTreeModel(nullptr);
    EXPECT_TRUE(asserts.fired("tree_model"));
    EXPECT_EQ(adapter->treeModel(), &tree);
    EXPECT_EQ(adapter->rowCount(), 3);
}

TEST_F(TreeAdapter, FollowsAnotherTreeAndForgetsADeadOne)
{
    auto other = std::make_unique<QStandardItemModel>();
    other->appendRow(item("x"));
    QSignalSpy tree_changed(adapter.get(), &TreeModelListAdapter::treeModelChanged);
    ASSERT_TRUE(tree_changed.isValid());
    adapter->setTreeModel(other.get());
    EXPECT_EQ(tree_changed.count(), 1);
    EXPECT_THAT(shown(), ::testing::ElementsAre("x"));
    tree.appendRow(item("d"));
    EXPECT_EQ(adapter->rowCount(), 1) << "the old tree is no longer followed";
    other.reset();
    EXPECT_EQ(adapter->rowCount(), 0);
    EXPECT_EQ(adapter->treeModel(), nullptr);
}

} // namespace
