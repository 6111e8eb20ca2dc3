#include "tree_fixture.h"

#include <qobject_list_model/object_list_sort_filter_proxy_model.h>
#include <qobject_list_model/object_model_utils.h>
#include <qobject_list_model/qobject_tree_model.h>
#include <qobject_list_model/qobjectlist_model.h>

#include <gtest/gtest.h>

#include <QJSEngine>
#include <QQmlEngine>
#include <QSignalSpy>

#include <string>

using tree_test::names;

namespace {

class ModelUtils : public ::testing::Test
{
protected:
    ModelUtils() { model.setRoot(tree.build()); }

    QObject* object(const char* name) { return tree.objects.at(name).get(); }
    QModelIndex a2() const { return model.index(1, 0, model.index(0, 0)); }

    tree_test::Tree tree;
    QObjectTreeModel model;
    ObjectModelUtils utils;
};

TEST_F(ModelUtils, FindsObjectsByRowAndRowsByObject)
{
    EXPECT_EQ(utils.getObjectFromModel(&model, 1), object("b"));
    EXPECT_EQ(utils.getObjectFromModel(&model, 0, a2()), object("a21"));
    EXPECT_EQ(utils.getObjectFromModel(&model, 2), nullptr);
    EXPECT_EQ(utils.getObjectFromModel(&model, -1), nullptr);
    EXPECT_EQ(utils.getObjectFromModel(nullptr, 0), nullptr);
    EXPECT_EQ(utils.getIndexOfObject(&model, object("b")), 1);
    EXPECT_EQ(utils.getIndexOfObject(&model, object("a2"), model.index(0, 0)), 1);
    EXPECT_EQ(utils.getIndexOfObject(&model, object("a2")), -1) << "direct children only";
    EXPECT_EQ(utils.getIndexOfObject(&model, nullptr), -1);
}

TEST_F(ModelUtils, ContainsLooksThroughTheWholeSubtree)
{
    EXPECT_TRUE(utils.modelContainsObject(&model, object("a21")));
    EXPECT_TRUE(utils.modelContainsObject(&model, object("a21"), model.index(0, 0)));
    EXPECT_FALSE(utils.modelContainsObject(&model, object("b"), model.index(0, 0)));
    QObject stranger;
    EXPECT_FALSE(utils.modelContainsObject(&model, &stranger));
    EXPECT_FALSE(utils.modelContainsObject(nullptr, object("a")));
}

TEST_F(ModelUtils, ListsAncestorsChildrenAndDirectChildren)
{
    EXPECT_EQ(names(utils.getAncestorsFromModel(&model, a2())), "a a2");
    EXPECT_EQ(names(utils.getAncestorsFromModel(&model, utils.getRootIndex())), "");
    EXPECT_EQ(names(utils.getChildrenFromModel(&model, utils.getRootIndex())), "a a1 a2 a21 b");
    EXPECT_EQ(names(utils.getDirectChildrenFromModel(&model, utils.getRootIndex())), "a b");
    EXPECT_EQ(names(utils.getDirectChildrenFromModel(&model, a2())), "a21");
    EXPECT_TRUE(utils.getChildrenFromModel(nullptr, QModelIndex()).isEmpty());
}

TEST(ModelUtilsObjects, VariantsOfQObjectPointersAndOthers)
{
    QObjectTreeModelSelectionCache cache;
    EXPECT_EQ(ObjectModelUtils::toObject(QVariant::fromValue(static_cast<QObject*>(&cache))), &cache);
    EXPECT_EQ(ObjectModelUtils::toObject(QVariant::fromValue(&cache)), &cache) << "a pointer to a subclass";
    EXPECT_EQ(ObjectModelUtils::toObject(QVariant(3)), nullptr);
    EXPECT_EQ(ObjectModelUtils::toObject(QVariant()), nullptr);
}

TEST_F(ModelUtils, AncestorStatesRollUpFromTheLeavesInTheCache)
{
    QObjectTreeModelSelectionCache cache;
    cache.setSelectionState(object("a1"), Qt::Checked);
    utils.updateAncestorStates(&model, QJSValue(), &cache);
    EXPECT_EQ(cache.getSelectionState(object("a2")), Qt::Unchecked);
    EXPECT_EQ(cache.getSelectionState(object("a")), Qt::PartiallyChecked);
    cache.setSelectionState(object("a21"), Qt::Checked);
    utils.updateAncestorStates(&model, QJSValue(), &cache);
    EXPECT_EQ(cache.getSelectionState(object("a2")), Qt::Checked);
    EXPECT_EQ(cache.getSelectionState(object("a")), Qt::Checked);
    EXPECT_EQ(cache.getSelectionState(object("b")), Qt::Unchecked) << "leaves are left as they are";
}

TEST_F(ModelUtils, AncestorStatesAskAFunctionForTheLeaves)
{
    QJSEngine engine;
    QObjectTreeModelSelectionCache cache;
    QQmlEngine::setObjectOwnership(&cache, QQmlEngine::CppOwnership);
    engine.newQObject(&cache); // ties the cache to the engine, as a declarative view does
    const QJSValue criterion =
        engine.evaluate(QStringLiteral("(function (o) { return o.objectName === 'a21'; })"));
    ASSERT_TRUE(criterion.isCallable());
    utils.updateAncestorStates(&model, criterion, &cache);
    EXPECT_EQ(cache.getSelectionState(object("a2")), Qt::Checked);
    EXPECT_EQ(cache.getSelectionState(object("a")), Qt::PartiallyChecked);
}

class ObjectProxy : public ::testing::Test
{
protected:
    ObjectProxy()
    {
        for (const char* name : {"x", "y", "z"}) {
            objects.push_back(std::make_unique<QObject>());
            objects.back()->setObjectName(QString::fromUtf8(name));
            list.append(objects.back().get());
        }
        uni_testing::attachModelTester(&proxy);
        proxy.setSourceModel(&list);
    }

    std::vector<std::unique_ptr<QObject>> objects;
    QObjectListModel list;
    ObjectListSortFilterProxyModel proxy;
};

TEST_F(ObjectProxy, AtReadsTheObjectOfAProxyRow)
{
    proxy.setSortRole(Qt::DisplayRole);
    proxy.sort(0, Qt::DescendingOrder);
    EXPECT_EQ(proxy.at(0), objects[2].get());
    EXPECT_EQ(proxy.at(2), objects[0].get());
    EXPECT_EQ(proxy.at(3), nullptr);
    ObjectListSortFilterProxyModel empty;
    EXPECT_EQ(empty.at(0), nullptr);
}

TEST_F(ObjectProxy, CountFollowsTheSourceWhileItChanges)
{
    QSignalSpy spy(&proxy, &ObjectListSortFilterProxyModel::rowCountChanged);
    ASSERT_TRUE(spy.isValid());
    EXPECT_EQ(proxy.count(), 3);
    QObject extra;
    list.append(&extra);
    EXPECT_EQ(proxy.count(), 4);
    list.move(0, 3);
    EXPECT_EQ(proxy.at(3), objects[0].get());
    list.listRemove(0, 2);
    list.setList({objects[0].get()});
    list.clearList();
    EXPECT_EQ(proxy.count(), 0);
    EXPECT_EQ(spy.count(), 4) << "one for each change of the count, none for the move";
}

TEST(ObjectProxyTree, ShowChildrenLetsRowsBelowTheTopLevelPass)
{
    tree_test::Tree tree;
    QObjectTreeModel model;
    model.setRoot(tree.build());
    ObjectListSortFilterProxyModel proxy;
    uni_testing::attachModelTester(&proxy);
    proxy.setSourceModel(&model);
    EXPECT_EQ(proxy.rowCount(proxy.index(0, 0)), 2);
    QSignalSpy spy(&proxy, &ObjectListSortFilterProxyModel::showChildrenChanged);
    ASSERT_TRUE(spy.isValid());
    proxy.setShowChildren(false);
    proxy.setShowChildren(false);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(proxy.rowCount(), 2);
    EXPECT_EQ(proxy.rowCount(proxy.index(0, 0)), 0);
}

} // namespace
