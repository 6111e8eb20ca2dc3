// The active object and index through selection, list changes and deaths.
#include "list_model_fixture.h"

#include <qobject_list_model/single_selection.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>

#include <string>
#include <vector>

using list_model_test::Item;
using list_model_test::ListModelFixture;
using lum::qobject_list_model::SingleSelection;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Selection : public ListModelFixture
{
protected:
    Selection()
    {
        // One log for both signals, to see their order.
        QObject::connect(&selection, &SingleSelection::activeObjectChanged,
                         [this](QObject* o) { log.push_back("object " + list_model_test::nameOf(o)); });
        QObject::connect(&selection, &SingleSelection::activeIndexChanged,
                         [this](int i) { log.push_back("index " + std::to_string(i)); });
    }

    std::vector<std::string> take()
    {
        std::vector<std::string> result;
        result.swap(log);
        return result;
    }

    /// a, b, c, d in the list, c active, empty log.
    void selectC()
    {
        model.append(QList<QObject*>{&a, &b, &c, &d});
        selection.setAllObjects(&model);
        selection.setActiveIndex(2);
        take();
    }

    SingleSelection selection;
    std::vector<std::string> log;
};

TEST_F(Selection, SettingTheIndexAnnouncesObjectThenIndex)
{
    fill();
    selection.setActiveIndex(1);
    EXPECT_THAT(take(), IsEmpty()) << "no model yet";

    QSignalSpy models(&selection, &SingleSelection::allObjectsChanged);
    ASSERT_TRUE(models.isValid());
    selection.setProperty("allObjects", QVariant::fromValue<QObjectListModel*>(&model));
    selection.setAllObjects(&model);
    ASSERT_EQ(models.count(), 1);
    EXPECT_EQ(models.at(0).at(0).value<QObjectListModel*>(), &model);

    // Out of range with nothing active: still nothing.
    selection.setActiveIndex(7);
    EXPECT_THAT(take(), IsEmpty());
    selection.setProperty("activeIndex", 1);
    EXPECT_THAT(take(), ElementsAre("object b", "index 1"));
    EXPECT_EQ(selection.property("activeObject").value<QObject*>(), &b);
    selection.setActiveIndex(1);
    EXPECT_THAT(take(), IsEmpty());
    selection.setActiveIndex(-1);
    EXPECT_THAT(take(), ElementsAre("object null", "index -1"));
    EXPECT_EQ(selection.activeObject(), nullptr);
}

TEST_F(Selection, ActiveObjectMovedUpKeepsObject)
{
    selectC();
    model.move(2, 0);
    EXPECT_THAT(take(), ElementsAre("index 0"));
    EXPECT_EQ(selection.activeObject(), &c);
    model.move(3, 0);
    EXPECT_THAT(take(), ElementsAre("index 1"));
    // A move elsewhere leaves the selection alone.
    model.move(2, 3);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(Selection, InsertionAndRemovalAboveFollowTheObject)
{
    selectC();
    model.listInsert(0, &e);
    EXPECT_THAT(take(), ElementsAre("index 3"));
    model.listRemove(0, 2);
    EXPECT_THAT(take(), ElementsAre("index 1"));
    model.append(&a);
    EXPECT_THAT(take(), IsEmpty());
    EXPECT_EQ(selection.activeObject(), &c);
}

TEST_F(Selection, RemovedActiveRowStaysInPlaceOrFallsToTheLast)
{
    selectC();
    model.removeItem(&c);
    EXPECT_THAT(take(), ElementsAre("object d", "index 2"));
    model.removeItem(&d);
    EXPECT_THAT(take(), ElementsAre("object b", "index 1"));
    model.listRemove(0);
    EXPECT_THAT(take(), ElementsAre("index 0"));
    model.listRemove(0);
    EXPECT_THAT(take(), ElementsAre("object null", "index -1"));
    EXPECT_EQ(selection.activeIndex(), -1);
    EXPECT_EQ(selection.activeObject(), nullptr);
}

TEST_F(Selection, DeadActiveObjectPassesTheSelectionOn)
{
    model.setTracking(true);
    auto* doomed = new Item("doomed");
    model.append(QList<QObject*>{&a, doomed, &b});
    selection.setAllObjects(&model);
    selection.setActiveIndex(1);
    take();
    delete doomed;
    EXPECT_THAT(take(), ElementsAre("object b", "index 1"));
    EXPECT_EQ(model.size(), 2);
}

TEST_F(Selection, DroppingTheModelClearsAndANewModelWaits)
{
    selectC();
    QSignalSpy models(&selection, &SingleSelection::allObjectsChanged);
    ASSERT_TRUE(models.isValid());
    selection.setAllObjects(nullptr);
    EXPECT_THAT(take(), ElementsAre("object null", "index -1"));
    ASSERT_EQ(models.count(), 1);
    EXPECT_EQ(models.at(0).at(0).value<QObjectListModel*>(), nullptr);
    // The old model is no longer heard.
    model.listRemove(0);
    EXPECT_THAT(take(), IsEmpty());

    selection.setAllObjects(&model);
    selection.setActiveIndex(0);
    take();
    QObjectListModel other;
    uni_testing::attachModelTester(&other);
    other.append(&e);
    selection.setAllObjects(&other);
    EXPECT_EQ(selection.activeObject(), &b) << "not re-derived until the count changes";
    other.append(&a);
    EXPECT_THAT(take(), ElementsAre("object e", "index 0"));
}

} // namespace
