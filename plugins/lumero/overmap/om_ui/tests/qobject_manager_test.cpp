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

    QPositionObject* addPositionObject(QGeoObject::Type type)
    {
        return qobject_cast<QPositionObject*>(manager.addObject(type));
    }

    /// A cone at @p latitude / @p longitude: its extent is that one point.
    QPositionObject* coneAt(double latitude, double longitude)
    {
        QPositionObject* cone = addPositionObject(QGeoObject::CONE);
        cone->setPosition(QGeoCoordinate(latitude, longitude));
        return cone;
    }

    static QStringList names(const QObjectListModel* list)
    {
        QStringList result;
        for (QObject* object : list->list())
            result << object->property("name").toString();
        return result;
    }

    math_geo::ProjectionPlane plane;
    QObjectManager manager;
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
    EXPECT_EQ(object->parent(), &manager);
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
    QObject::connect(&manager, &QObjectManager::dataChanged, [&] {
        names_seen
            << manager.allObjects()->get(manager.allObjects()->size() - 1)->property("name").toString();
    });
    manager.addObject(QGeoObject::CONE);
    EXPECT_EQ(names_seen, (QStringList{"Cone", "Cone 1"}));
}

TEST_F(QObjectManagerTest, ANumberInUseAfterARemovalIsSkipped)
{
    manager.addObject(QGeoObject::CAR);
    manager.addObject(QGeoObject::CAR);
    manager.addObject(QGeoObject::CONE);
    ASSERT_TRUE(manager.removeItem(0));
    // Two cars now, so the count proposes "Car 2", which the second car still has.
    EXPECT_EQ(manager.addObject(QGeoObject::CAR)->name(), "Car 3");
    EXPECT_EQ(names(manager.allObjects()), (QStringList{"Car 2", "Cone 1", "Car 3"}));
    EXPECT_EQ(manager.addObject(QGeoObject::CONE)->name(), "Cone 2");
}

TEST_F(QObjectManagerTest, AnUnknownTypeMakesNothing)
{
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    EXPECT_EQ(manager.addObject(7), nullptr);
    EXPECT_EQ(manager.addObject(-1), nullptr);
    EXPECT_EQ(manager.allObjects()->size(), 0);
    EXPECT_EQ(data.count(), 0);
}

TEST_F(QObjectManagerTest, ObjectsAreFoundByIdAndByModel)
{
    QGeoObject* car = manager.addObject(QGeoObject::CAR);
    QGeoObject* line = manager.addObject(QGeoObject::TRACK_LINE);
    EXPECT_EQ(manager.getObjectById(line->objectId()), line);
    EXPECT_EQ(manager.getObjectById(car->objectId()), car);
    EXPECT_EQ(manager.getObjectById(-1), nullptr);
    // Id 0 lies below the counter, yet a setup may give it.
    auto* zero = new overmap_ui::QCone(std::make_shared<overmap::Cone>(0, &plane), &manager);
    manager.addPositionObject(zero);
    EXPECT_EQ(manager.getObjectById(0), zero);
    EXPECT_EQ(manager.getObjectById(line->objectId() + 1000), nullptr);

    EXPECT_EQ(manager.findGeoObject(line->geoModel().get()), line);
    EXPECT_EQ(manager.findPositionObject(car->geoModel().get()), car);
    EXPECT_EQ(manager.findPositionObject(line->geoModel().get()), nullptr) << "a track is no position object";
    EXPECT_EQ(manager.findGeoObject(nullptr), nullptr);
    EXPECT_EQ(manager.allGeoObjects(), (QList<QGeoObject*>{car, line, zero}));
}

TEST_F(QObjectManagerTest, AnObjectMeasuredByACalculationIsNotRemovableButRemovedIfAsked)
{
    QGeoObject* from = manager.addObject(QGeoObject::CAR);
    QGeoObject* to = manager.addObject(QGeoObject::CONE);
    QPositionObject* reference = addPositionObject(QGeoObject::CONE);
    addPositionObject(QGeoObject::CAR)->setReferenceObject(reference);
    QCalculation* calculation = manager.addCalculation();
    calculation->setFromObject(from);
    calculation->setToObject(to);

    EXPECT_FALSE(manager.isItemRemovable(0)) << "from object";
    EXPECT_FALSE(manager.isItemRemovable(1)) << "to object";
    EXPECT_TRUE(manager.isItemRemovable(2)) << "others standing on it do not keep it";
    EXPECT_TRUE(manager.isItemRemovable(3));
    EXPECT_FALSE(manager.isItemRemovable(-1));
    EXPECT_FALSE(manager.isItemRemovable(4));

    calculation->setFromObject(nullptr);
    EXPECT_TRUE(manager.isItemRemovable(0));

    QPointer<QGeoObject> removed(to);
    EXPECT_TRUE(manager.removeItem(1));
    EXPECT_EQ(names(manager.allObjects()), (QStringList{"Car 1", "Cone 2", "Car 2"}));
    EXPECT_EQ(names(manager.positionObjects()), (QStringList{"Car 1", "Cone 2", "Car 2"}));
    EXPECT_EQ(calculation->toObject(), nullptr);
    ASSERT_FALSE(removed.isNull()) << "deleted later, not at once";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(removed.isNull());
}

TEST_F(QObjectManagerTest, RemovingAReferenceObjectLeavesTheOthersWithoutReference)
{
    QPositionObject* base = addPositionObject(QGeoObject::CAR);
    QPositionObject* child = addPositionObject(QGeoObject::CONE);
    QPositionObject* grandchild = addPositionObject(QGeoObject::CONE);
    QGeoObject* track = manager.addObject(QGeoObject::TRACK_PATH);
    child->setReferenceObject(base);
    grandchild->setReferenceObject(child);
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());

    ASSERT_TRUE(manager.removeItem(0));
    EXPECT_EQ(child->referenceObject(), nullptr);
    EXPECT_EQ(child->positionModel()->getReferenceObject(), nullptr);
    EXPECT_EQ(grandchild->referenceObject(), child) << "only the removed object's dependents are let go";
    EXPECT_GE(data.count(), 1);

    ASSERT_TRUE(manager.removeItem(2));
    EXPECT_EQ(manager.tracks()->size(), 0);
    EXPECT_EQ(manager.allObjects()->list(), (QList<QObject*>{child, grandchild}));
    EXPECT_FALSE(manager.removeItem(2));
    EXPECT_FALSE(manager.removeItem(-1));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Q_UNUSED(track);
}

struct RectangleRow
{
    const char* what;
    std::vector<std::pair<double, double>> cones;
    QGeoCoordinate top_left;
    QGeoCoordinate bottom_right;
    QGeoCoordinate center;
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
    for (const auto& [latitude, longitude] : row.cones)
        coneAt(latitude, longitude);
    const QGeoRectangle rectangle = manager.enclosingRectangle();
    EXPECT_NEAR(rectangle.topLeft().latitude(), row.top_left.latitude(), 1e-9);
    EXPECT_NEAR(rectangle.topLeft().longitude(), row.top_left.longitude(), 1e-9);
    EXPECT_NEAR(rectangle.bottomRight().latitude(), row.bottom_right.latitude(), 1e-9);
    EXPECT_NEAR(rectangle.bottomRight().longitude(), row.bottom_right.longitude(), 1e-9);
    const QGeoCoordinate center = manager.allObjectsCenter();
    EXPECT_NEAR(center.latitude(), row.center.latitude(), 1e-9);
    EXPECT_NEAR(center.longitude(), row.center.longitude(), 1e-9);
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

TEST_F(QObjectManagerTest, TheTimeStepMovesThePositionObjects)
{
    om_ui_test::ChannelList channels;
    auto* latitude = channels.add(om_ui_test::makeScalar(1.0, {48.20, 48.21, 48.22}, "lat"));
    auto* longitude = channels.add(om_ui_test::makeScalar(1.0, {11.60, 11.61, 11.62}, "lon"));
    QPositionObject* car = addPositionObject(QGeoObject::CAR);
    car->setLatitudeChannel(latitude);
    car->setLongitudeChannel(longitude);
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());

    manager.updatePositions(2.0);
    EXPECT_NEAR(car->latitude(), 48.22, 1e-9);
    EXPECT_NEAR(car->longitude(), 11.62, 1e-9);
    EXPECT_EQ(data.count(), 0) << "a time step is not written to the setup";
}

TEST_F(QObjectManagerTest, APlaneChangeMovesObjectsPlacedInThePlaneAndRedrawsTracks)
{
    QPositionObject* cone = coneAt(48.2, 11.6);
    cone->setUseXYCoordinates(true);
    const QPointF xy = cone->xyPosition();
    auto* track = qobject_cast<overmap_ui::QTrackLine*>(manager.addObject(QGeoObject::TRACK_LINE));
    track->setStartPosition(QGeoCoordinate(48.2, 11.6));
    track->setEndPosition(QGeoCoordinate(48.2005, 11.6));
    QSignalSpy segments(track, &overmap_ui::QTrack::segmentsChanged);
    ASSERT_TRUE(segments.isValid());

    plane.setCenter(math_geo::GeoPosition(48.3, 11.6));
    manager.updateXYPositions();
    EXPECT_GT(cone->latitude(), 48.25) << "the cone keeps its place in the plane";
    EXPECT_EQ(cone->xyPosition(), xy);
    EXPECT_GE(segments.count(), 1);
}

TEST_F(QObjectManagerTest, ChangesOfObjectsAndCalculationsEndInDataChanged)
{
    QGeoObject* car = manager.addObject(QGeoObject::CAR);
    QCalculation* calculation = manager.addCalculation();
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    car->setColor(Qt::red);
    EXPECT_EQ(data.count(), 1);
    calculation->setTrackTarget(QCalculation::EDGE);
    EXPECT_EQ(data.count(), 2);
}

TEST_F(QObjectManagerTest, ANewCalculationIsNamedAfterItsIdOrTheNextFreeNumber)
{
    const int id = overmap::Calculation::peekNextId();
    QCalculation* first = manager.addCalculation();
    EXPECT_EQ(first->calcId(), id);
    EXPECT_EQ(first->name(), QString("Calculation %1").arg(id));
    EXPECT_EQ(first->parent(), &manager);
    first->setName(QString("Calculation %1").arg(id + 1));

    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    QCalculation* second = manager.addCalculation();
    EXPECT_EQ(second->calcId(), id + 1);
    EXPECT_EQ(second->name(), QString("Calculation %1").arg(id + 2));
    EXPECT_EQ(data.count(), 1);
    EXPECT_EQ(manager.calculations()->list(), (QList<QObject*>{first, second}));
}

TEST_F(QObjectManagerTest, CalculationsAreAddedAsTheyAreAndRemovedByRow)
{
    auto* existing = new QCalculation(std::make_shared<overmap::Calculation>(), &manager, nullptr);
    existing->setName("Read from the setup");
    QSignalSpy data(&manager, &QObjectManager::dataChanged);
    ASSERT_TRUE(data.isValid());
    manager.addExistingCalculation(existing);
    EXPECT_EQ(existing->name(), "Read from the setup");
    EXPECT_EQ(data.count(), 1);
    existing->setResultTransformation(QCalculation::INVERT);
    EXPECT_EQ(data.count(), 2);

    EXPECT_FALSE(manager.removeCalculation(1));
    EXPECT_FALSE(manager.removeCalculation(-1));
    EXPECT_EQ(data.count(), 2);
    QPointer<QCalculation> removed(existing);
    EXPECT_TRUE(manager.removeCalculation(0));
    EXPECT_EQ(manager.calculations()->size(), 0);
    EXPECT_EQ(data.count(), 3);
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
    QStringList order;
    QObject::connect(&manager, &QObjectManager::descriptionChanged,
                     [&](const QString& text) { order << "descriptionChanged:" + text; });
    QObject::connect(&manager, &QObjectManager::dataChanged, [&] { order << "dataChanged"; });

    manager.clear();
    EXPECT_TRUE(car.isNull() && track.isNull() && calculation.isNull());
    for (QObjectListModel* list : lists)
        EXPECT_EQ(list->size(), 0);
    EXPECT_EQ(manager.positionObjects(), lists[0]);
    EXPECT_EQ(manager.calculations(), lists[3]);
    EXPECT_EQ(manager.description(), "");
    EXPECT_EQ(order, (QStringList{"descriptionChanged:", "dataChanged"}));
}

TEST_F(QObjectManagerTest, ADescriptionChangeIsAnnouncedOnce)
{
    QStringList order;
    QObject::connect(&manager, &QObjectManager::descriptionChanged,
                     [&](const QString& text) { order << "descriptionChanged:" + text; });
    QObject::connect(&manager, &QObjectManager::dataChanged, [&] { order << "dataChanged"; });
    manager.setDescription("Proving ground");
    manager.setDescription("Proving ground");
    EXPECT_EQ(manager.description(), "Proving ground");
    EXPECT_EQ(order, (QStringList{"descriptionChanged:Proving ground", "dataChanged"}));
}

TEST_F(QObjectManagerTest, ComboBoxRolesAnswerTheName)
{
    manager.addObject(QGeoObject::CONE);
    manager.addCalculation()->setName("Gap");
    const QHash<int, QByteArray> roles = manager.allObjects()->roleNames();
    EXPECT_EQ(roles.value(258), "name");
    EXPECT_EQ(roles.value(259), "modelData");
    EXPECT_EQ(manager.allObjects()->dataByRole(0, 258).toString(), "Cone 1");
    EXPECT_EQ(manager.positionObjects()->dataByRole(0, 259).toString(), "Cone 1");
    EXPECT_EQ(manager.calculations()->dataByRole(0, 258).toString(), "Gap");
}

TEST_F(QObjectManagerTest, EachListTakesOnlyItsOwnKind)
{
    QGeoObject* car = manager.addObject(QGeoObject::CAR);
    QGeoObject* line = manager.addObject(QGeoObject::TRACK_LINE);
    QCalculation* calculation = manager.addCalculation();
    QObject plain;
    struct Row
    {
        QObjectListModel* list;
        QObject* object;
        bool compatible;
    };
    const Row rows[] = {
        {manager.positionObjects(), car, true},
        {manager.positionObjects(), line, false},
        {manager.tracks(), line, true},
        {manager.tracks(), car, false},
        {manager.allObjects(), car, true},
        {manager.allObjects(), line, true},
        {manager.allObjects(), calculation, false},
        {manager.calculations(), calculation, true},
        {manager.calculations(), car, false},
        {manager.calculations(), &plain, false},
        {manager.allObjects(), nullptr, false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.list->isObjectCompatible(row.object), row.compatible)
            << row.list->metaObject()->className() << " with "
            << (row.object != nullptr ? row.object->metaObject()->className() : "null");
}

class QGeoObjectListFilterTest : public QObjectManagerTest
{
protected:
    QGeoObjectListFilterTest()
    {
        base = addPositionObject(QGeoObject::CAR);
        child = addPositionObject(QGeoObject::CONE);
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
    QSignalSpy count(&filter, &QGeoObjectListFilter::countChanged);
    ASSERT_TRUE(count.isValid());
    EXPECT_EQ(filter.get(0), nullptr) << "no source yet";
    filter.setSourceModel(manager.allObjects());
    EXPECT_EQ(shown(), (QStringList{"Car 1", "Cone 1", "Track line 1"}));

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

    filter.setFilterDependent(true);
    EXPECT_EQ(dependent.count(), 1);
    EXPECT_TRUE(filter.property("filterdeDendent").toBool());
    EXPECT_EQ(shown(), (QStringList{"Track line 1"}));
    EXPECT_EQ(filter.get(1), nullptr);
    EXPECT_EQ(filter.get(-1), nullptr);

    filter.setFilteredObject(other);
    EXPECT_EQ(shown(), (QStringList{"Car 1", "Cone 1"}));
    filter.setFilteredObject(nullptr);
    EXPECT_EQ(shown(), (QStringList{"Car 1", "Cone 1", "Track line 1"}));
    EXPECT_GE(count.count(), 3);
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
