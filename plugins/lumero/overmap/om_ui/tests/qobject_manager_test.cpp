#include "om_ui_test_support.h"

#include <om_ui/qcalculation.h>
#include <om_ui/qcone.h>
#include <om_ui/qgeo_object_list_filter.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>
#include <om_ui/qtrack.h>

#include <om_model/calculation.h>
#include <om_model/cone.h>
#include <om_model/position_object.h>

#include <uni_testing/model_tester.h>

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <ostream>
#include <tuple>

namespace {

using overmap_ui::QCalculation;
using overmap_ui::QGeoObject;
using overmap_ui::QGeoObjectListFilter;
using overmap_ui::QObjectManager;
using overmap_ui::QPositionObject;

class QObjectManagerTest : public ::testing::Test
{
protected:
    QObjectManagerTest() : plane(om_ui_test::sitePlane()), manager(&plane)
    {
        uni_testing::attachModelTester(manager.positionObjects());
        uni_testing::attachModelTester(manager.tracks());
        uni_testing::attachModelTester(manager.allObjects());
        uni_testing::attachModelTester(manager.calculations());
    }

    QPositionObject* add(QGeoObject::Type type)
    {
        return qobject_cast<QPositionObject*>(manager.addObject(type));
    }

    static QStringList names(const QObjectListModel* list)
    {
        QStringList result;
        for (QObject* object : list->list())
            result << object->property("name").toString();
        return result;
    }

    /// The manager's signals as they come, with the description's text.
    void recordSignals()
    {
        QObject::connect(&manager, &QObjectManager::descriptionChanged,
                         [this](const QString& text) { order << "descriptionChanged:" + text; });
        QObject::connect(&manager, &QObjectManager::dataChanged, [this] { order << "dataChanged"; });
    }

    math_geo::ProjectionPlane plane;
    QObjectManager manager;
    QStringList order;
};

struct NewObjectRow
{
    const char* what;
    QGeoObject::Type type;
    const char* name;
    bool is_track;
};

void PrintTo(const NewObjectRow& row, std::ostream* os)
{
    *os << row.what;
}

class QObjectManagerNewObject : public QObjectManagerTest, public ::testing::WithParamInterface<NewObjectRow>
{};

TEST_P(QObjectManagerNewObject, TakesTheDefaultNameWithNumberOneAndItsLists)
{
    const NewObjectRow& row = GetParam();
    QGeoObject* object = manager.addObject(row.type);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->getType(), row.type);
    EXPECT_EQ(object->name(), QString::fromLatin1(row.name));
    EXPECT_EQ(manager.allObjects()->list(), QList<QObject*>{object});
    EXPECT_EQ(manager.positionObjects()->size(), row.is_track ? 0 : 1);
    EXPECT_EQ(manager.tracks()->size(), row.is_track ? 1 : 0);
    EXPECT_EQ(object->geoModel()->getPlane(), &plane);
}

INSTANTIATE_TEST_SUITE_P(
    Types, QObjectManagerNewObject,
    ::testing::Values(NewObjectRow{"car", QGeoObject::CAR, "Car 1", false},
                      NewObjectRow{"cone", QGeoObject::CONE, "Cone 1", false},
                      NewObjectRow{"locator", QGeoObject::LOCATOR, "Locator 1", false},
                      NewObjectRow{"track_path", QGeoObject::TRACK_PATH, "Track 1", true},
                      NewObjectRow{"track_line", QGeoObject::TRACK_LINE, "Track line 1", true}),
    [](const ::testing::TestParamInfo<NewObjectRow>& info) { return std::string(info.param.what); });

TEST_F(QObjectManagerTest, ANewObjectIsAnnouncedBeforeItHasItsNameAndAgainAfter)
{
    QStringList names_seen;
    QObject::connect(&manager, &QObjectManager::dataChanged,
                     [&] { names_seen << manager.allObjects()->get(0)->property("name").toString(); });
    manager.addObject(QGeoObject::CONE);
    EXPECT_EQ(names_seen, (QStringList{"Cone", "Cone 1"}));
    EXPECT_EQ(manager.addObject(7), nullptr);
    EXPECT_EQ(manager.addObject(-1), nullptr);
    EXPECT_EQ(manager.allObjects()->size(), 1);
    EXPECT_EQ(names_seen.size(), 2) << "an unknown type makes nothing";
}

TEST_F(QObjectManagerTest, ANumberInUseAfterARemovalIsSkipped)
{
    manager.addObject(QGeoObject::CAR);
    manager.addObject(QGeoObject::CAR);
    manager.addObject(QGeoObject::CONE);
    ASSERT_TRUE(manager.removeItem(0));
    // Two cars now, so the count proposes "Car 2", which the second car still has.
    EXPECT_EQ(manager.addObject(QGeoObject::CAR)->name(), "Car 3");
    EXPECT_EQ(manager.addObject(QGeoObject::CONE)->name(), "Cone 2");
}

TEST_F(QObjectManagerTest, ObjectsAreFoundByIdAndByModel)
{
    QGeoObject* car = manager.addObject(QGeoObject::CAR);
    QGeoObject* line = manager.addObject(QGeoObject::TRACK_LINE);
    // Id 0 lies below the counter, yet a setup may give it.
    auto* zero = new overmap_ui::QCone(std::make_shared<overmap::Cone>(0, &plane), &manager);
    manager.addPositionObject(zero);
    EXPECT_EQ(manager.getObjectById(line->objectId()), line);
    EXPECT_EQ(manager.getObjectById(0), zero);
    EXPECT_EQ(manager.getObjectById(-1), nullptr);
    EXPECT_EQ(manager.getObjectById(line->objectId() + 1000), nullptr);
    EXPECT_EQ(manager.findGeoObject(line->geoModel().get()), line);
    EXPECT_EQ(manager.findPositionObject(car->geoModel().get()), car);
    EXPECT_EQ(manager.findPositionObject(line->geoModel().get()), nullptr) << "a track is no position object";
    EXPECT_EQ(manager.allGeoObjects(), (QList<QGeoObject*>{car, line, zero}));
}

TEST_F(QObjectManagerTest, AnObjectMeasuredByACalculationIsNotRemovableButRemovedIfAsked)
{
    QGeoObject* from = manager.addObject(QGeoObject::CAR);
    QGeoObject* to = manager.addObject(QGeoObject::CONE);
    QPositionObject* reference = add(QGeoObject::CONE);
    add(QGeoObject::CAR)->setReferenceObject(reference);
    QCalculation* calculation = manager.addCalculation();
    calculation->setFromObject(from);
    calculation->setToObject(to);

    const bool removable[] = {false, false, true, true};
    for (int idx = 0; idx < 4; ++idx)
        EXPECT_EQ(manager.isItemRemovable(idx), removable[idx]) << "row " << idx;
    EXPECT_FALSE(manager.isItemRemovable(-1));
    EXPECT_FALSE(manager.isItemRemovable(4));
    calculation->setFromObject(nullptr);
    EXPECT_TRUE(manager.isItemRemovable(0));

    QPointer<QGeoObject> removed(to);
    EXPECT_TRUE(manager.removeItem(1));
    EXPECT_EQ(names(manager.positionObjects()), (QStringList{"Car 1", "Cone 2", "Car 2"}));
    EXPECT_EQ(calculation->toObject(), nullptr);
    ASSERT_FALSE(removed.isNull()) << "deleted later, not at once";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(removed.isNull());
}

TEST_F(QObjectManagerTest, RemovingAReferenceObjectLeavesTheOthersWithoutReference)
{
    QPositionObject* base = add(QGeoObject::CAR);
    QPositionObject* child = add(QGeoObject::CONE);
    QPositionObject* grandchild = add(QGeoObject::CONE);
    manager.addObject(QGeoObject::TRACK_PATH);
    child->setReferenceObject(base);
    grandchild->setReferenceObject(child);

    ASSERT_TRUE(manager.removeItem(0));
    EXPECT_EQ(child->positionModel()->getReferenceObject(), nullptr);
    EXPECT_EQ(grandchild->referenceObject(), child) << "only the removed object's dependents are let go";
    ASSERT_TRUE(manager.removeItem(2));
    EXPECT_EQ(manager.tracks()->size(), 0);
    EXPECT_EQ(manager.allObjects()->list(), (QList<QObject*>{child, grandchild}));
    EXPECT_FALSE(manager.removeItem(2));
    EXPECT_FALSE(manager.removeItem(-1));
}

struct RectangleRow
{
    const char* what;
    std::vector<QGeoCoordinate> cones;
    QGeoCoordinate top_left, bottom_right, center;
};

void PrintTo(const RectangleRow& row, std::ostream* os)
{
    *os << row.what;
}

class QObjectManagerRectangle : public QObjectManagerTest, public ::testing::WithParamInterface<RectangleRow>
{};

TEST_P(QObjectManagerRectangle, UnitesTheExtentsOfAllObjects)
{
    const RectangleRow& row = GetParam();
    for (const QGeoCoordinate& position : row.cones)
        add(QGeoObject::CONE)->setPosition(position); // a cone's extent is its position
    const QGeoRectangle rectangle = manager.enclosingRectangle();
    const QGeoCoordinate center = manager.allObjectsCenter();
    const std::pair<QGeoCoordinate, QGeoCoordinate> pairs[] = {{rectangle.topLeft(), row.top_left},
                                                               {rectangle.bottomRight(), row.bottom_right},
                                                               {center, row.center}};
    for (const auto& [actual, expected] : pairs) {
        EXPECT_NEAR(actual.latitude(), expected.latitude(), 1e-9);
        EXPECT_NEAR(actual.longitude(), expected.longitude(), 1e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Corners, QObjectManagerRectangle,
    ::testing::Values(
        RectangleRow{"one_cone_is_a_point", {{48.2, 11.6}}, {48.2, 11.6}, {48.2, 11.6}, {48.2, 11.6}},
        RectangleRow{"corners_from_different_cones",
                     {{48.21, 11.60}, {48.20, 11.62}, {48.19, 11.61}, {48.205, 11.59}},
                     {48.21, 11.59},
                     {48.19, 11.62},
                     {48.20, 11.605}},
        RectangleRow{"across_the_antimeridian",
                     {{-17.0, 179.9}, {-17.1, -179.8}},
                     {-17.0, 179.9},
                     {-17.1, -179.8},
                     {-17.05, -179.95}}),
    [](const ::testing::TestParamInfo<RectangleRow>& info) { return std::string(info.param.what); });

TEST_F(QObjectManagerTest, AnEmptySceneHasADefaultRectangle)
{
    EXPECT_EQ(manager.enclosingRectangle(), QGeoRectangle());
    EXPECT_EQ(manager.allObjectsCenter(), QGeoRectangle().center());
}

TEST_F(QObjectManagerTest, TheTimeStepAndThePlaneMoveTheObjectsButWriteNothing)
{
    om_ui_test::ChannelList channels;
    QPositionObject* car = add(QGeoObject::CAR);
    car->setLatitudeChannel(channels.add(om_ui_test::makeScalar(1.0, {48.20, 48.21, 48.22}, "lat")));
    car->setLongitudeChannel(channels.add(om_ui_test::makeScalar(1.0, {11.60, 11.61, 11.62}, "lon")));
    QPositionObject* cone = add(QGeoObject::CONE);
    cone->setPosition(QGeoCoordinate(48.2, 11.6));
    cone->setUseXYCoordinates(true);
    auto* track = qobject_cast<overmap_ui::QTrackLine*>(manager.addObject(QGeoObject::TRACK_LINE));
    track->setStartPosition(QGeoCoordinate(48.2, 11.6));
    track->setEndPosition(QGeoCoordinate(48.2005, 11.6));
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    QSignalSpy segments(track, &overmap_ui::QTrack::segmentsChanged);
    ASSERT_TRUE(data.isValid() && segments.isValid());

    manager.updatePositions(2.0);
    EXPECT_NEAR(car->latitude(), 48.22, 1e-9);
    EXPECT_NEAR(car->longitude(), 11.62, 1e-9);
    EXPECT_EQ(data.count(), 0) << "a time step is not written to the setup";
    EXPECT_EQ(segments.count(), 0) << "tracks do not move with time";

    plane.setCenter(math_geo::GeoPosition(48.3, 11.6));
    manager.updateXYPositions();
    EXPECT_GT(cone->latitude(), 48.25) << "the cone keeps its place in the plane";
    EXPECT_EQ(segments.count(), 1);
}

TEST_F(QObjectManagerTest, ANewCalculationIsNamedAfterItsIdOrTheNextFreeNumber)
{
    const int id = overmap::Calculation::peekNextId();
    QCalculation* first = manager.addCalculation();
    EXPECT_EQ(first->name(), QString("Calculation %1").arg(id));
    first->setName(QString("Calculation %1").arg(id + 1));
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    QCalculation* second = manager.addCalculation();
    EXPECT_EQ(second->name(), QString("Calculation %1").arg(id + 2));
    EXPECT_EQ(data.count(), 1);
    EXPECT_EQ(manager.calculations()->list(), (QList<QObject*>{first, second}));
}

TEST_F(QObjectManagerTest, ChangesOfObjectsAndCalculationsEndInDataChanged)
{
    auto* existing = new QCalculation(std::make_shared<overmap::Calculation>(), &manager, nullptr);
    existing->setName("Read from the setup");
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    manager.addExistingCalculation(existing);
    EXPECT_EQ(existing->name(), "Read from the setup");
    existing->setResultTransformation(QCalculation::INVERT);
    manager.addObject(QGeoObject::CONE)->setColor(Qt::red);
    EXPECT_EQ(data.count(), 5) << "adding, the change, adding and naming the cone, its colour";

    EXPECT_FALSE(manager.removeCalculation(1));
    EXPECT_FALSE(manager.removeCalculation(-1));
    QPointer<QCalculation> removed(existing);
    EXPECT_TRUE(manager.removeCalculation(0));
    EXPECT_EQ(manager.calculations()->size(), 0);
    EXPECT_EQ(data.count(), 6);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(removed.isNull());
}

TEST_F(QObjectManagerTest, ClearEmptiesTheListsButKeepsThem)
{
    QPointer<QGeoObject> car = manager.addObject(QGeoObject::CAR);
    QPointer<QGeoObject> track = manager.addObject(QGeoObject::TRACK_PATH);
    QPointer<QCalculation> calculation = manager.addCalculation();
    manager.setDescription("Slalom");
    QObjectListModel* lists[] = {manager.positionObjects(), manager.tracks(), manager.allObjects(),
                                 manager.calculations()};
    recordSignals();
    manager.clear();
    EXPECT_TRUE(car.isNull() && track.isNull() && calculation.isNull());
    for (QObjectListModel* list : lists)
        EXPECT_EQ(list->size(), 0);
    EXPECT_EQ(manager.allObjects(), lists[2]);
    EXPECT_EQ(order, (QStringList{"descriptionChanged:", "dataChanged"}));
}

TEST_F(QObjectManagerTest, ADescriptionChangeIsAnnouncedOnce)
{
    recordSignals();
    manager.setDescription("Proving ground");
    manager.setDescription("Proving ground");
    EXPECT_EQ(manager.description(), "Proving ground");
    EXPECT_EQ(order, (QStringList{"descriptionChanged:Proving ground", "dataChanged"}));
}

TEST_F(QObjectManagerTest, EachListTakesOnlyItsOwnKindAndNamesItForComboBoxes)
{
    QGeoObject* car = manager.addObject(QGeoObject::CAR);
    QGeoObject* line = manager.addObject(QGeoObject::TRACK_LINE);
    QCalculation* calculation = manager.addCalculation();
    const std::tuple<QObjectListModel*, QObject*, bool> rows[] = {{manager.positionObjects(), car, true},
                                                                  {manager.positionObjects(), line, false},
                                                                  {manager.tracks(), line, true},
                                                                  {manager.tracks(), car, false},
                                                                  {manager.allObjects(), line, true},
                                                                  {manager.allObjects(), calculation, false},
                                                                  {manager.calculations(), calculation, true},
                                                                  {manager.calculations(), car, false}};
    for (const auto& [list, object, compatible] : rows)
        EXPECT_EQ(list->isObjectCompatible(object), compatible)
            << list->metaObject()->className() << " with " << object->metaObject()->className();
    EXPECT_EQ(manager.allObjects()->roleNames().value(259), "modelData");
    EXPECT_EQ(manager.tracks()->dataByRole(0, 259).toString(), "Track line 1");
    EXPECT_EQ(manager.calculations()->dataByRole(0, 258).toString(), calculation->name());
}

class QGeoObjectListFilterTest : public QObjectManagerTest
{
protected:
    QGeoObjectListFilterTest()
    {
        base = add(QGeoObject::CAR);
        child = add(QGeoObject::CONE);
        other = manager.addObject(QGeoObject::TRACK_LINE);
        child->setReferenceObject(base);
        uni_testing::attachModelTester(&filter);
    }

    QStringList shown() const
    {
        QStringList result;
        for (int row = 0; row < filter.count(); ++row)
            result << filter.get(row)->property("name").toString();
        return result;
    }

    QGeoObjectListFilter filter;
    QPositionObject* base = nullptr;
    QPositionObject* child = nullptr;
    QGeoObject* other = nullptr;
};

TEST_F(QGeoObjectListFilterTest, LeavesOutTheFilteredObjectAndOnRequestItsDependents)
{
    EXPECT_EQ(filter.get(0), nullptr) << "no source yet";
    filter.setSourceModel(manager.allObjects());
    QSignalSpy filtered(&filter, &QGeoObjectListFilter::filteredObjectChanged);
    QSignalSpy dependent(&filter, &QGeoObjectListFilter::filterDependentChanged);
    ASSERT_TRUE(filtered.isValid() && dependent.isValid());
    filter.setFilteredObject(base);
    filter.setFilteredObject(base);
    EXPECT_EQ(filtered.count(), 1);
    EXPECT_EQ(shown(), (QStringList{"Cone 1", "Track line 1"}));
    EXPECT_EQ(filter.indexOf(base), -1);
    EXPECT_EQ(filter.indexOf(child), 0);
    EXPECT_EQ(filter.indexOf(other), 1);
    EXPECT_EQ(filter.indexOf(nullptr), -1);

    filter.setProperty("filterdeDendent", true);
    EXPECT_EQ(dependent.count(), 1);
    EXPECT_EQ(shown(), (QStringList{"Track line 1"}));
    EXPECT_EQ(filter.get(1), nullptr);
    filter.setFilteredObject(other);
    EXPECT_EQ(shown(), (QStringList{"Car 1", "Cone 1"}));
}

TEST_F(QGeoObjectListFilterTest, CountFollowsTheSourceList)
{
    filter.setSourceModel(manager.allObjects());
    filter.setFilteredObject(base);
    QSignalSpy count(&filter, &QGeoObjectListFilter::countChanged);
    ASSERT_TRUE(count.isValid());
    manager.addObject(QGeoObject::CONE);
    EXPECT_EQ(filter.count(), 3);
    EXPECT_EQ(count.count(), 1);
    manager.clear();
    EXPECT_EQ(filter.count(), 0);
    EXPECT_EQ(count.count(), 2);
}

} // namespace
