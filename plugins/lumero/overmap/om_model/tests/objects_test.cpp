#include "test_support.h"

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::metres;
using om_test::near;
using overmap::Car;
using overmap::Cone;
using CS = math_geo::CoordinateSystem;

namespace {

constexpr double NaN = NAN;
constexpr int SEV_ERROR = 1;
constexpr CS DIN = CS::DIN70000;
constexpr CS FLU = CS::X_FRONT_Y_LEFT;
const GeoPosition NEARBY(48.2003, 11.6004);

class PositionObjectTest : public testing::Test
{
protected:
    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
    uni_testing::LogCapture m_log;
};

TEST(ObjectIds, SceneObjectsShareACounterRaisedPastExplicitIdsCalculationsHaveTheirOwn)
{
    math_geo::ProjectionPlane plane = om_test::sitePlane();
    const std::int32_t next = overmap::GeoObject::peekNextId();
    EXPECT_EQ(Cone(&plane).getId(), next);
    Cone explicit_id(next + 5, &plane);
    Cone low_id(2, &plane); // must not lower the counter
    EXPECT_EQ(overmap::TrackPath(&plane).getId(), next + 6);
    const std::int32_t calculations = overmap::Calculation::peekNextId();
    overmap::Calculation explicit_calculation(calculations + 10);
    EXPECT_EQ(overmap::Calculation().getId(), calculations + 11);
    EXPECT_EQ(overmap::GeoObject::peekNextId(), next + 7);
}

TEST_F(PositionObjectTest, HeadingIsNormalisedIntoOneTurnWhatFallsOutsideIsReportedNotANumberIsLogged)
{
    const struct
    {
        double degrees, stored; // stored NaN: not a number
        bool reported;
    } rows[] = {{-90, 270, false},
                {720, 0, false},
                {359.5, 359.5, false},
                {-1e-20, 360, true},
                {INFINITY, NaN, true}};
    for (const auto& row : rows) {
        Cone cone(&m_plane);
        uni_testing::AssertCapture asserts;
        cone.setHeading(row.degrees);
        EXPECT_TRUE(cone.getHeading() == row.stored ||
                    (std::isnan(row.stored) && std::isnan(cone.getHeading())))
            << row.degrees;
        EXPECT_EQ(asserts.fired("heading >= 0 && heading < 360.0"), row.reported) << row.degrees;
    }
    EXPECT_TRUE(m_log.none("overmap"));
    Cone cone(&m_plane);
    cone.setName("Pylon 3");
    cone.setHeading(45);
    cone.setHeading(NaN);
    EXPECT_EQ(cone.getHeading(), 45.0);
    EXPECT_TRUE(m_log.contains("overmap", SEV_ERROR, "Invalid heading for object Pylon 3"));
}

TEST_F(PositionObjectTest, CompassHeadingFacesTheSameWayInBothSystemsAndEffectiveHeadingAddsPlaneAndParent)
{
    Cone din(&m_plane);
    ASSERT_EQ(din.localCoordinateSystem(), DIN);
    din.setGeoPosition(om_test::SITE);
    din.setHeadingFromCoord(90, DIN);
    EXPECT_EQ(din.getHeading(), 270.0);
    Cone flu(&m_plane);
    flu.setCoordinateSystem(FLU);
    flu.setGeoPosition(om_test::SITE);
    flu.setHeadingFromCoord(90, FLU);
    for (const Cone* cone : {&din, &flu}) { // 90 faces east, which is -y in the plane
        const GeoPosition front = cone->toGeo(Point2D(10, 0, cone->localCoordinateSystem()));
        EXPECT_TRUE(near(m_plane.toPlane(front), Point2D(0, -10, FLU), 1e-6));
        EXPECT_TRUE(near(cone->toLocal(front), Point2D(10, 0, cone->localCoordinateSystem()), 1e-6));
    }
    m_plane.setRotation(10);
    auto parent = std::make_shared<Cone>(&m_plane);
    parent->setGeoPosition(om_test::SITE);
    parent->setHeading(30); // DIN: effectively 330
    Cone child(&m_plane);
    child.setCoordinateSystem(FLU);
    child.setGeoPosition(NEARBY);
    child.setHeading(20);
    EXPECT_EQ(child.effectiveHeading(), 20.0);
    child.setXYPosition(Point2D(5, 5, FLU));
    EXPECT_EQ(child.effectiveHeading(), 30.0);
    child.setReferenceObject(parent);
    EXPECT_EQ(child.effectiveHeading(), 20.0 + 330.0) << "the rotation cancels for a parent on the globe";
    parent->setXYPosition(Point2D(1, 1, FLU));
    EXPECT_EQ(child.effectiveHeading(), 20.0 + 330.0 + 10.0);
}

TEST_F(PositionObjectTest, PlacementByGlobeOrPlaneAndWhatIsLoggedOnTheWay)
{
    Cone cone(&m_plane);
    cone.setName("Gate");
    cone.setGeoPosition(NEARBY);
    EXPECT_FALSE(cone.isXYPosition());
    EXPECT_TRUE(near(cone.getXYPosition(), m_plane.toPlane(NEARBY)));
    cone.setGeoPosition(GeoPosition(95.0, 11.0));
    EXPECT_EQ(cone.getGeoPosition(), NEARBY);
    EXPECT_TRUE(m_log.contains("overmap", SEV_ERROR, "Invalid position for object Gate | 95, 11"));
    cone.setXYPosition(Point2D(12, -3, FLU));
    EXPECT_TRUE(cone.isXYPosition());
    EXPECT_EQ(cone.getGeoPosition(), m_plane.toGeoPosition(Point2D(12, -3, FLU)));
    EXPECT_EQ(m_log.count("overmap", SEV_ERROR, ""), 1u);
    // Another system is logged; without a parent the label stays, with one it becomes the parent's.
    const std::string correcting = "PositionObject::setXYPosition() - correcting the coordinate system";
    cone.setXYPosition(Point2D(1, 2, CS::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(m_log.contains("overmap", SEV_ERROR, correcting));
    EXPECT_EQ(cone.getXYPosition().getCoordinateSystem(), CS::X_RIGHT_Y_FRONT);
    auto parent = std::make_shared<Cone>(&m_plane);
    parent->setGeoPosition(om_test::SITE);
    Cone child(&m_plane);
    child.setReferenceObject(parent);
    child.setXYPosition(Point2D(3, 4, CS::X_RIGHT_Y_FRONT));
    EXPECT_EQ(m_log.count("overmap", SEV_ERROR, correcting), 2u);
    EXPECT_EQ(child.getGeoPosition(), parent->toGeo(Point2D(3, 4, DIN)));
    uni_testing::AssertCapture asserts;
    child.toGeo(Point2D(1, 0, CS::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(asserts.fired("pt.getCoordinateSystem() == m_object_plane.getXYCoordinateSystem()"));
}

TEST_F(PositionObjectTest, PlaneChangeReplacesXYObjectsReprojectsFixedOnesAndLeavesChannelledOnes)
{
    Cone by_xy(&m_plane);
    by_xy.setXYPosition(Point2D(10, 0, FLU));
    Cone by_globe(&m_plane);
    by_globe.setGeoPosition(NEARBY);
    Cone by_channel(&m_plane);
    by_channel.setGeoPosition(NEARBY);
    by_channel.setLatitudeChannel(om_test::makeChannel(10.0, {48.21}));
    const Point2D channel_xy = by_channel.getXYPosition();
    math_geo::ProjectionPlane moved = om_test::sitePlane(90.0);
    for (Cone* cone : {&by_xy, &by_globe, &by_channel})
        cone->setPlane(&moved);
    EXPECT_EQ(by_xy.getGeoPosition(), moved.toGeoPosition(Point2D(10, 0, FLU)));
    EXPECT_TRUE(near(by_globe.getXYPosition(), moved.toPlane(NEARBY)));
    EXPECT_TRUE(near(by_channel.getXYPosition(), channel_xy));
}

TEST_F(PositionObjectTest, ReparentingKeepsThePlaceOnTheGlobeAndCyclesAreRefusedSilently)
{
    auto car = std::make_shared<Car>(&m_plane);
    car->setGeoPosition(om_test::SITE);
    car->setHeading(33);
    car->setGpsOffset(Point2D(1.2, 0.3, DIN));
    auto cone = std::make_shared<Cone>(&m_plane);
    cone->setGeoPosition(NEARBY);
    cone->setReferenceObject(car);
    EXPECT_TRUE(cone->isXYPosition());
    EXPECT_LT(metres(cone->getGeoPosition(), NEARBY), 1e-6);
    EXPECT_TRUE(near(cone->getXYPosition(), car->toLocal(NEARBY), 1e-9));
    cone->setReferenceObject(nullptr);
    EXPECT_LT(metres(cone->getGeoPosition(), NEARBY), 1e-6);
    EXPECT_TRUE(near(cone->getXYPosition(), m_plane.toPlane(cone->getGeoPosition()), 1e-6));

    auto a = std::make_shared<Cone>(&m_plane);
    auto b = std::make_shared<Cone>(&m_plane);
    auto c = std::make_shared<Cone>(&m_plane);
    b->setReferenceObject(a);
    c->setReferenceObject(b);
    EXPECT_TRUE(c->dependsOn(a.get()));
    EXPECT_FALSE(a->dependsOn(c.get()));
    for (const auto& cycle : {b, c, a})
        a->setReferenceObject(cycle);
    EXPECT_EQ(a->getReferenceObject(), nullptr);
    EXPECT_TRUE(m_log.none("overmap"));
}

TEST_F(PositionObjectTest, UpdateReadsTheChannelsOnceATimeAndLogsInvalidValues)
{
    Cone cone(&m_plane);
    cone.setName("Target");
    cone.setGeoPosition(GeoPosition(48.0, 11.65));
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {48.2001, 48.2002, 91.0}));
    cone.update(0.0);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2001, 11.65)) << "the longitude of the last centre";
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.6001, 11.6002, 11.6003}));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {10.0, -20.0, 400.0}));
    cone.update(0.15);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2002, 11.6002));
    EXPECT_EQ(cone.getHeading(), 340.0);
    EXPECT_TRUE(near(cone.getXYPosition(), m_plane.toPlane(GeoPosition(48.2002, 11.6002))));
    EXPECT_EQ(cone.getLastUpdateTime(), 0.15);
    cone.setHeading(123.0); // the same time again reads nothing
    cone.update(0.15);
    EXPECT_EQ(cone.getHeading(), 123.0);
    cone.update(0.2);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2002, 11.6002));
    EXPECT_EQ(cone.getHeading(), 40.0);
    EXPECT_TRUE(
        m_log.contains("overmap", SEV_ERROR, "Invalid latitude and/or longitude (GeoPosition(lat 91"));
    EXPECT_TRUE(m_log.contains("overmap", SEV_ERROR, ") position for object Target"));
    EXPECT_EQ(cone.getLastUpdateTime(), 0.2);
    cone.update(-5.0); // before the first sample
    EXPECT_EQ(cone.getHeading(), 40.0);
    EXPECT_TRUE(m_log.contains("overmap", SEV_ERROR, "Invalid heading for object Target"));
}

TEST_F(PositionObjectTest, XYObjectsIgnoreChannelsUntilPositionChannelsTakeThemBackAndChildrenFollow)
{
    Cone cone(&m_plane);
    cone.setXYPosition(Point2D(4, 4, FLU));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {90.0}));
    cone.setHeading(5);
    EXPECT_TRUE(cone.isXYPosition()) << "a heading channel leaves the placement alone";
    cone.update(0.0);
    EXPECT_EQ(cone.getHeading(), 5.0);
    EXPECT_EQ(cone.getLastUpdateTime(), -1.0);
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.61}));
    EXPECT_FALSE(cone.isXYPosition());

    auto car = std::make_shared<Car>(&m_plane);
    car->setLatitudeChannel(om_test::makeChannel(10.0, {48.2001, 48.2005}));
    car->setLongitudeChannel(om_test::makeChannel(10.0, {11.6001, 11.6005}));
    car->setHeadingChannel(om_test::makeChannel(10.0, {0.0, 90.0}));
    auto child = std::make_shared<Cone>(&m_plane);
    child->setReferenceObject(car);
    child->setXYPosition(Point2D(5, 1, DIN));
    child->update(0.1);
    EXPECT_EQ(car->getLastUpdateTime(), 0.1) << "the parent is brought to the time first";
    EXPECT_EQ(child->getGeoPosition(), car->toGeo(Point2D(5, 1, DIN)));
    EXPECT_EQ(child->getLastUpdateTime(), -1.0) << "children are worked out on every call";
}

TEST_F(PositionObjectTest, PoisAndLocatorRanges)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(om_test::SITE);
    EXPECT_EQ(cone.getPoi(0).name, "Center");
    EXPECT_THROW(cone.getPoi(1), std::out_of_range);
    EXPECT_EQ(cone.poiPosition(3), GeoPosition());
    cone.addPoi(overmap::Poi{Point2D(1, 2, DIN), "Tip"});
    cone.setCoordinateSystem(FLU);
    EXPECT_EQ(cone.getPoi(1).position, Point2D(1, 2, FLU)) << "relabelled, numbers kept";
    uni_testing::AssertCapture asserts;
    cone.setPoi(2, overmap::Poi{Point2D(1, 1, FLU), "Nose"});
    EXPECT_TRUE(asserts.fired("idx < m_pois.size()"));
    cone.resetPois();
    EXPECT_EQ(cone.poiCount(), 1u);

    overmap::Locator locator(&m_plane);
    ASSERT_EQ(locator.getQualityPositions().size(), 3u);
    EXPECT_EQ(locator.getQualityPositions()[2].channel, nullptr);
    auto quality = om_test::makeChannel(1.0, {4.0});
    locator.setQualityPosition(overmap::QualityPosition{3.5, 4.5, quality}, 2);
    EXPECT_EQ(locator.getQualityPositions()[2].channel, quality);
    EXPECT_THROW(locator.setQualityPosition(overmap::QualityPosition{}, 3), std::out_of_range);
}

TEST_F(PositionObjectTest, CarSizeMovesTheStandardPoisAndContourIsCentredConvertedAndLogged)
{
    Car car(&m_plane);
    ASSERT_EQ(car.poiCount(), 7u);
    EXPECT_EQ(car.getPoi(1).position, Point2D(2.5, 1, DIN));
    car.setPoi(2, overmap::Poi{car.getPoi(2).position, "Bumper"});
    car.addPoi(overmap::Poi{Point2D(7, 7, DIN), "Mirror"});
    car.setLength(4);
    car.setWidth(3);
    const Point2D standard[] = {{0, 0, DIN},     {2, 1.5, DIN}, {2, 0, DIN},   {2, -1.5, DIN},
                                {-2, -1.5, DIN}, {-2, 0, DIN},  {-2, 1.5, DIN}};
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_TRUE(near(car.getPoi(i).position, standard[i])) << i;
    EXPECT_EQ(car.getPoi(2).name, "Bumper");
    EXPECT_EQ(car.getPoi(7).position, Point2D(7, 7, DIN));
    car.resetPois();
    car.setWidth(4);
    ASSERT_EQ(car.poiCount(), 7u);
    EXPECT_EQ(car.getPoi(6).name, "Back left");

    car.setContour({Point2D(4, 1, DIN), Point2D(-2, 1, DIN), Point2D(-2, -1, DIN), Point2D(4, -1, DIN)});
    EXPECT_TRUE(m_log.contains("overmap", 6, "The given contour center is not in 0/0, but Point2D(1, 0)"));
    EXPECT_TRUE(near(car.getContour()[0], Point2D(3, 1, DIN)));
    EXPECT_EQ(car.getLength(), 6.0);
    EXPECT_EQ(car.getWidth(), 2.0);
    EXPECT_TRUE(near(car.getPoi(1).position, Point2D(3, 1, DIN)));
    const CS xrfy = CS::X_RIGHT_Y_FRONT; // 1 m right and 2 m forward is (2, -1) in the car
    car.setContour({Point2D(1, 2, xrfy), Point2D(-1, 2, xrfy), Point2D(-1, -2, xrfy), Point2D(1, -2, xrfy)});
    EXPECT_EQ(
        m_log.count("overmap", SEV_ERROR, "Car::setContour() - contour has different coordiante system"), 4u);
    EXPECT_TRUE(near(car.getContour()[0], Point2D(2, -1, DIN)));
    car.setCoordinateSystem(FLU);
    EXPECT_EQ(car.contourInLocalSystem()[0], Point2D(2, -1, FLU))
        << "the contour keeps its label, the view takes it in the car's";
    car.setContour({Point2D(1, 1, FLU)});
    EXPECT_EQ(car.getLength(), 0.0);
}

TEST_F(PositionObjectTest, AntennaOffsetSeparatesTheAntennaFromTheCentreOnTheGlobeOnly)
{
    Car car(&m_plane);
    car.setGeoPosition(om_test::SITE); // the antenna's position
    car.setGpsOffset(Point2D(1.5, 0, DIN));
    // Heading 0 faces north: the centre is 1.5 m south of the antenna.
    EXPECT_TRUE(near(m_plane.toPlane(car.toGeo(Point2D(0, 0, DIN))), Point2D(-1.5, 0, FLU), 1e-6));
    EXPECT_TRUE(near(car.getXYPosition(), Point2D(-1.5, 0, FLU), 1e-6));
    car.setXYPosition(Point2D(10, 0, FLU));
    EXPECT_EQ(car.toGeo(Point2D(0, 0, DIN)), m_plane.toGeoPosition(Point2D(10, 0, FLU)));
    uni_testing::AssertCapture asserts;
    car.setGpsOffset(Point2D(1, 0, CS::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(asserts.fired("offset.getCoordinateSystem() == localCoordinateSystem()"));
}

TEST(CalculationTest, ThePoiAndDistanceTypeRulesFollowTheObjects)
{
    math_geo::ProjectionPlane plane = om_test::sitePlane();
    auto car = std::make_shared<Car>(&plane);
    auto cone = std::make_shared<Cone>(&plane);
    overmap::Calculation calculation;
    calculation.setUseFromPoi(false);
    calculation.setDistanceType(overmap::DistanceType::Y);
    EXPECT_TRUE(calculation.useFromPoi()) << "without objects the POIs are used";
    calculation.setFrom(car); // the stored flag now switches the car's POI off
    EXPECT_FALSE(calculation.useFromPoi());
    EXPECT_EQ(calculation.getDistanceType(), overmap::DistanceType::EUCLIDEAN);
    calculation.setDistanceType(overmap::DistanceType::X);
    EXPECT_EQ(calculation.getDistanceType(), overmap::DistanceType::EUCLIDEAN)
        << "a disallowed type is ignored";
    EXPECT_FALSE(calculation.isDistanceTypeAllowed(overmap::DistanceType::X));
    calculation.setFrom(cone); // cones are always measured at their POI
    EXPECT_TRUE(calculation.useFromPoi());
    calculation.setDistanceType(overmap::DistanceType::Y);
    calculation.setTo(car);
    EXPECT_EQ(calculation.getDistanceType(), overmap::DistanceType::Y) << "the car to-object uses its POI";
    calculation.setTo(std::make_shared<overmap::TrackPath>(&plane));
    EXPECT_FALSE(calculation.useToPoi()) << "tracks have none";
}

TEST(ObjectManagerTest, FindsObjectsByKindAndClearKeepsPlaneSystemAndMapView)
{
    overmap::ObjectManager manager;
    manager.getReferencePlane()->setXYCoordinateSystem(CS::X_RIGHT_Y_FRONT);
    manager.getReferencePlane()->setCenter(om_test::SITE);
    auto locator = std::make_shared<overmap::Locator>(manager.getReferencePlane());
    auto track = std::make_shared<overmap::TrackPath>(manager.getReferencePlane());
    manager.addObject(locator);
    manager.addObject(track);
    manager.setLocator(locator);
    EXPECT_EQ(manager.findObjectById(track->getId()), track);
    EXPECT_EQ(manager.findPositionObjectById(locator->getId()), locator);
    EXPECT_EQ(manager.findPositionObjectById(track->getId()), nullptr);
    EXPECT_THROW(manager.objectAt(2), std::out_of_range);
    manager.addCalculation(std::make_shared<overmap::Calculation>());
    manager.setUsePlaneDefinitionPoints(true);
    manager.setDescription("Handling loop");
    manager.setMapSetupView(overmap::MapSetupView{om_test::SITE, 2.5, 30.0});
    manager.clear();
    EXPECT_EQ(manager.objectCount() + manager.calculationCount(), 0u);
    EXPECT_EQ(manager.getLocator(), nullptr);
    EXPECT_EQ(manager.getReferencePlane()->getCenter(), GeoPosition(0, 0));
    EXPECT_EQ(manager.getReferencePlane()->getXYCoordinateSystem(), CS::X_RIGHT_Y_FRONT);
    EXPECT_FALSE(manager.getUsePlaneDefinitionPoints());
    EXPECT_TRUE(manager.getDescription().empty());
    EXPECT_EQ(manager.getMapSetupView().scale, 2.5);
    EXPECT_EQ(locator.use_count(), 1) << "the manager lets go of its objects";
}

} // namespace
