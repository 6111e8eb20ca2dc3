#include "test_support.h"

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/track_path.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::metres;
using om_test::near;
using overmap::Car;
using overmap::Cone;
using overmap::GeoObject;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const GeoPosition NEARBY(48.2003, 11.6004);

class PositionObjectTest : public ::testing::Test
{
protected:
    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
};

// --- ids -----------------------------------------------------------------------------

TEST(ObjectIds, CounterIsSharedByAllSceneObjectsAndRaisedPastExplicitIds)
{
    math_geo::ProjectionPlane plane = om_test::sitePlane();
    const std::int32_t next = GeoObject::peekNextId();
    Cone first(&plane);
    EXPECT_EQ(first.getId(), next);
    Cone explicit_id(next + 5, &plane);
    EXPECT_EQ(explicit_id.getId(), next + 5);
    EXPECT_EQ(GeoObject::peekNextId(), next + 6);
    Cone low_id(2, &plane);
    EXPECT_EQ(low_id.getId(), 2);
    EXPECT_EQ(GeoObject::peekNextId(), next + 6) << "an id below the counter must not lower it";
    overmap::TrackPath track(&plane);
    EXPECT_EQ(track.getId(), next + 6) << "tracks draw from the same counter as position objects";
}

TEST(ObjectIds, CalculationsCountOnTheirOwn)
{
    const std::int32_t objects = GeoObject::peekNextId();
    const std::int32_t calculations = overmap::Calculation::peekNextId();
    overmap::Calculation explicit_id(calculations + 10);
    overmap::Calculation next;
    EXPECT_EQ(next.getId(), calculations + 11);
    EXPECT_EQ(GeoObject::peekNextId(), objects);
}

// --- heading -------------------------------------------------------------------------

TEST_F(PositionObjectTest, HeadingIsNormalisedIntoOneTurnAndWhatFallsOutsideIsReportedAndStored)
{
    constexpr const char* RANGE = "heading >= 0 && heading < 360.0";
    struct Row
    {
        const char* what;
        double degrees;
        double stored; // NaN: stored as not-a-number
        bool reported;
    };
    const Row rows[] = {
        {"negative", -90, 270, false},
        {"two turns", 720, 0, false},
        {"just below a turn", 359.5, 359.5, false},
        {"tiny negative rounds up to a full turn", -1e-20, 360, true},
        {"infinity has no remainder", std::numeric_limits<double>::infinity(), NaN, true},
    };
    for (const Row& row : rows) {
        Cone cone(&m_plane);
        cone.setHeading(45);
        uni_testing::AssertCapture asserts;
        uni_testing::LogCapture log;
        cone.setHeading(row.degrees);
        if (std::isnan(row.stored))
            EXPECT_TRUE(std::isnan(cone.getHeading())) << row.what;
        else
            EXPECT_EQ(cone.getHeading(), row.stored) << row.what;
        EXPECT_EQ(static_cast<bool>(asserts.fired(RANGE)), row.reported) << row.what;
        EXPECT_TRUE(log.none("overmap")) << row.what;
    }
}

TEST_F(PositionObjectTest, NotANumberHeadingIsLoggedAndIgnored)
{
    Cone cone(&m_plane);
    cone.setName("Pylon 3");
    cone.setHeading(45);
    uni_testing::LogCapture log;
    cone.setHeading(NaN);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 45.0);
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid heading for object Pylon 3"));
}

TEST_F(PositionObjectTest, Din70000CountsHeadingsTheOtherWayRound)
{
    Cone cone(&m_plane);
    ASSERT_EQ(cone.localCoordinateSystem(), CoordinateSystem::DIN70000);
    cone.setHeadingFromCoord(90, CoordinateSystem::DIN70000);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 270.0);
    cone.setHeadingFromCoord(0, CoordinateSystem::DIN70000);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 0.0);
    cone.setHeadingFromCoord(90, CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 90.0);
    EXPECT_DOUBLE_EQ(cone.effectiveHeading(), 270.0);
}

TEST_F(PositionObjectTest, CompassHeadingPointsTheFrontTheSameWayInBothObjectSystems)
{
    // A compass heading of 90 degrees faces east, whichever local system the object uses.
    Cone din(&m_plane);
    din.setGeoPosition(om_test::SITE);
    din.setHeadingFromCoord(90, CoordinateSystem::DIN70000);
    Cone flu(&m_plane);
    flu.setCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    flu.setGeoPosition(om_test::SITE);
    flu.setHeading(90);
    for (const Cone* cone : {&din, &flu}) {
        const GeoPosition front = cone->toGeo(Point2D(10, 0, cone->localCoordinateSystem()));
        // East is -y in the reference plane's X_FRONT_Y_LEFT.
        EXPECT_TRUE(near(m_plane.toPlane(front), Point2D(0, -10, CoordinateSystem::X_FRONT_Y_LEFT), 1e-6));
        EXPECT_TRUE(near(cone->toLocal(front), Point2D(10, 0, cone->localCoordinateSystem()), 1e-6));
    }
}

TEST_F(PositionObjectTest, EffectiveHeadingAddsThePlaneRotationOnlyInXYMode)
{
    m_plane.setRotation(10);
    Cone cone(&m_plane);
    cone.setCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    cone.setGeoPosition(om_test::SITE);
    cone.setHeading(30);
    EXPECT_DOUBLE_EQ(cone.effectiveHeading(), 30.0);
    cone.setXYPosition(Point2D(5, 5, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_DOUBLE_EQ(cone.effectiveHeading(), 40.0);
}

TEST_F(PositionObjectTest, EffectiveHeadingOfAChildIncludesItsParent)
{
    auto parent = std::make_shared<Cone>(&m_plane);
    parent->setGeoPosition(om_test::SITE);
    parent->setHeading(30); // DIN70000: effective 330
    Cone child(&m_plane);
    child.setCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    child.setGeoPosition(NEARBY);
    child.setHeading(20);
    child.setReferenceObject(parent);
    // The child is in XY mode now: parent in its DIN sense, plus the plane's rotation of 0.
    EXPECT_DOUBLE_EQ(child.effectiveHeading(), 20.0 + 330.0);
}

// --- placement -----------------------------------------------------------------------

TEST_F(PositionObjectTest, GeoPlacementDerivesTheXYPosition)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(NEARBY);
    EXPECT_FALSE(cone.isXYPosition());
    EXPECT_EQ(cone.getGeoPosition(), NEARBY);
    EXPECT_TRUE(near(cone.getXYPosition(), m_plane.toPlane(NEARBY)));
    EXPECT_EQ(cone.getLastUpdateTime(), -1.0);
}

TEST_F(PositionObjectTest, InvalidGeoPositionIsLoggedAndChangesNothing)
{
    Cone cone(&m_plane);
    cone.setName("Gate");
    cone.setGeoPosition(NEARBY);
    uni_testing::LogCapture log;
    cone.setGeoPosition(GeoPosition(95.0, 11.0));
    EXPECT_EQ(cone.getGeoPosition(), NEARBY);
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid position for object Gate | 95, 11"));
}

TEST_F(PositionObjectTest, XYPlacementDerivesTheGeoPosition)
{
    Cone cone(&m_plane);
    const Point2D xy(12, -3, CoordinateSystem::X_FRONT_Y_LEFT);
    uni_testing::LogCapture log;
    cone.setXYPosition(xy);
    EXPECT_TRUE(cone.isXYPosition());
    EXPECT_EQ(cone.getGeoPosition(), m_plane.toGeoPosition(xy));
    EXPECT_TRUE(log.none("overmap"));
}

TEST_F(PositionObjectTest, AnXYPositionWithoutAValidPlaceIsReportedAndStoredAsItComes)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(NEARBY);
    uni_testing::AssertCapture asserts;
    uni_testing::LogCapture log;
    cone.setXYPosition(Point2D(NaN, 0, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_TRUE(asserts.fired("center.valid()"));
    EXPECT_TRUE(std::isnan(cone.getGeoPosition().latitude));
    EXPECT_TRUE(log.none("overmap"));
}

TEST_F(PositionObjectTest, XYPositionInAnotherSystemIsReportedButNotRelabelledWithoutParent)
{
    Cone cone(&m_plane);
    uni_testing::LogCapture log;
    cone.setXYPosition(Point2D(1, 2, CoordinateSystem::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(
        log.contains("overmap", 1, "PositionObject::setXYPosition() - correcting the coordinate system"));
    EXPECT_EQ(cone.getXYPosition().getCoordinateSystem(), CoordinateSystem::X_RIGHT_Y_FRONT);
}

TEST_F(PositionObjectTest, XYPositionInAnotherSystemIsRelabelledWithTheParentsSystem)
{
    auto parent = std::make_shared<Cone>(&m_plane);
    parent->setGeoPosition(om_test::SITE);
    Cone child(&m_plane);
    child.setReferenceObject(parent);
    uni_testing::LogCapture log;
    child.setXYPosition(Point2D(3, 4, CoordinateSystem::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(log.contains("overmap", 1, "correcting the coordinate system"));
    EXPECT_TRUE(near(child.getXYPosition(), Point2D(3, 4, CoordinateSystem::DIN70000)));
    EXPECT_EQ(child.getGeoPosition(), parent->toGeo(Point2D(3, 4, CoordinateSystem::DIN70000)));
}

TEST_F(PositionObjectTest, PlaneChangeReplacesXYObjectsAndReprojectsFixedOnes)
{
    Cone by_xy(&m_plane);
    by_xy.setXYPosition(Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT));
    Cone by_globe(&m_plane);
    by_globe.setGeoPosition(NEARBY);
    Cone by_channel(&m_plane);
    by_channel.setGeoPosition(NEARBY);
    by_channel.setLatitudeChannel(om_test::makeChannel(10.0, {48.21}));
    const Point2D channel_xy = by_channel.getXYPosition();

    math_geo::ProjectionPlane moved = om_test::sitePlane(90.0);
    for (Cone* cone : {&by_xy, &by_globe, &by_channel})
        cone->setPlane(&moved);

    EXPECT_TRUE(near(by_xy.getXYPosition(), Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT)));
    EXPECT_EQ(by_xy.getGeoPosition(), moved.toGeoPosition(Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT)));
    EXPECT_EQ(by_globe.getGeoPosition(), NEARBY);
    EXPECT_TRUE(near(by_globe.getXYPosition(), moved.toPlane(NEARBY)));
    EXPECT_TRUE(near(by_channel.getXYPosition(), channel_xy)) << "objects under channels wait for update";
}

// --- reference objects ---------------------------------------------------------------

TEST_F(PositionObjectTest, ReparentingKeepsThePlaceOnTheGlobe)
{
    auto car = std::make_shared<Car>(&m_plane);
    car->setGeoPosition(om_test::SITE);
    car->setHeading(33);
    car->setGpsOffset(Point2D(1.2, 0.3, car->localCoordinateSystem()));
    auto cone = std::make_shared<Cone>(&m_plane);
    cone->setGeoPosition(NEARBY);

    cone->setReferenceObject(car);
    EXPECT_EQ(cone->getReferenceObject(), car);
    EXPECT_TRUE(cone->isXYPosition());
    EXPECT_LT(metres(cone->getGeoPosition(), NEARBY), 1e-6);
    EXPECT_TRUE(near(cone->getXYPosition(), car->toLocal(NEARBY), 1e-9));

    cone->setReferenceObject(nullptr);
    EXPECT_EQ(cone->getReferenceObject(), nullptr);
    EXPECT_LT(metres(cone->getGeoPosition(), NEARBY), 1e-6);
    EXPECT_TRUE(near(cone->getXYPosition(), m_plane.toPlane(cone->getGeoPosition()), 1e-6));
}

TEST_F(PositionObjectTest, CyclesAndSelfReferencesAreRefusedSilently)
{
    auto a = std::make_shared<Cone>(&m_plane);
    auto b = std::make_shared<Cone>(&m_plane);
    auto c = std::make_shared<Cone>(&m_plane);
    b->setReferenceObject(a);
    c->setReferenceObject(b);
    ASSERT_TRUE(c->dependsOn(a.get()));
    EXPECT_FALSE(a->dependsOn(c.get()));

    uni_testing::LogCapture log;
    a->setReferenceObject(b); // b already hangs on a
    a->setReferenceObject(c); // c hangs on a through b
    a->setReferenceObject(a);
    EXPECT_EQ(a->getReferenceObject(), nullptr);
    EXPECT_FALSE(a->isXYPosition());
    EXPECT_TRUE(log.none("overmap"));
}

// --- channels ------------------------------------------------------------------------

TEST_F(PositionObjectTest, UpdateReadsTheChannelsAtTheGivenTime)
{
    Cone cone(&m_plane);
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {48.2001, 48.2002, 48.2003}));
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.6001, 11.6002, 11.6003}));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {10.0, -20.0, 400.0}));

    cone.update(0.15);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2002, 11.6002));
    EXPECT_DOUBLE_EQ(cone.getHeading(), 340.0);
    EXPECT_TRUE(near(cone.getXYPosition(), m_plane.toPlane(GeoPosition(48.2002, 11.6002))));
    EXPECT_EQ(cone.getLastUpdateTime(), 0.15);

    cone.update(0.2);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2003, 11.6003));
    EXPECT_DOUBLE_EQ(cone.getHeading(), 40.0);
}

TEST_F(PositionObjectTest, AsynchronousGpsGivesTheFixAtOrBeforeTheTime)
{
    Cone cone(&m_plane);
    cone.setLatitudeChannel(om_test::makeAsyncChannel({{0.0, 48.2001}, {0.35, 48.2002}, {0.8, 48.2003}}));
    cone.setLongitudeChannel(om_test::makeAsyncChannel({{0.0, 11.6001}, {0.35, 11.6002}, {0.8, 11.6003}}));
    cone.update(0.5);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2002, 11.6002));
    cone.update(0.8);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.2003, 11.6003));
}

TEST_F(PositionObjectTest, AReadingHandedOverStandsForTheChannelsTheObjectHas)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(NEARBY);
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {48.2001, 48.2002}));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {10.0, 20.0}));
    // No longitude channel: the longitude of the reading is not looked at.
    cone.update(0.1, {48.3, 12.0, 370.0});
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.3, NEARBY.longitude));
    EXPECT_DOUBLE_EQ(cone.getHeading(), 10.0);
    EXPECT_TRUE(near(cone.getXYPosition(), m_plane.toPlane(GeoPosition(48.3, NEARBY.longitude))));
    EXPECT_EQ(cone.getLastUpdateTime(), 0.1);
    cone.update(0.1, {1.0, 1.0, 1.0});
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.3, NEARBY.longitude)) << "same time: nothing to do";

    auto parent = std::make_shared<Cone>(&m_plane);
    parent->setGeoPosition(om_test::SITE);
    cone.setReferenceObject(parent);
    const GeoPosition hung = cone.getGeoPosition();
    cone.update(0.2, {1.0, 1.0, 1.0});
    EXPECT_TRUE(near(m_plane.toPlane(cone.getGeoPosition()), m_plane.toPlane(hung), 1e-6))
        << "an object on a parent follows it, whatever the reading";
}

TEST_F(PositionObjectTest, SameTimeTwiceReadsTheChannelsOnce)
{
    Cone cone(&m_plane);
    cone.setHeadingChannel(om_test::makeChannel(10.0, {10.0, 20.0}));
    cone.update(0.0);
    ASSERT_DOUBLE_EQ(cone.getHeading(), 10.0);
    cone.setHeading(123.0); // does not make the object stale
    cone.update(0.0);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 123.0);
    cone.update(0.1);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 20.0);
}

TEST_F(PositionObjectTest, LatitudeChannelAloneKeepsTheLongitudeOfTheLastCentre)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(GeoPosition(48.0, 11.65));
    cone.setLatitudeChannel(om_test::makeChannel(1.0, {48.25}));
    cone.update(0.5);
    EXPECT_EQ(cone.getGeoPosition(), GeoPosition(48.25, 11.65));
}

TEST_F(PositionObjectTest, InvalidChannelValuesKeepThePositionLogAndStoreTheTime)
{
    Cone cone(&m_plane);
    cone.setName("Target");
    cone.setGeoPosition(NEARBY);
    math_geo::ProjectionPlane moved = om_test::sitePlane(45.0);
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {91.0}));
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.6}));
    cone.setPlane(&moved); // under channels: XY is left for the update to redo

    uni_testing::LogCapture log;
    cone.update(1.0);
    EXPECT_EQ(cone.getGeoPosition(), NEARBY);
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid latitude and/or longitude (GeoPosition(lat 91"));
    EXPECT_TRUE(log.contains("overmap", 1, ") position for object Target"));
    EXPECT_TRUE(near(cone.getXYPosition(), moved.toPlane(NEARBY), 1e-9)) << "XY is recomputed all the same";
    EXPECT_EQ(cone.getLastUpdateTime(), 1.0);
}

TEST_F(PositionObjectTest, MissingSamplesAreLoggedAsInvalid)
{
    Cone cone(&m_plane);
    cone.setName("Early");
    cone.setGeoPosition(NEARBY);
    cone.setHeading(15);
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {48.21}));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {90.0}));
    uni_testing::LogCapture log;
    cone.update(-5.0); // before the first sample: no value
    EXPECT_EQ(cone.getGeoPosition(), NEARBY);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 15.0);
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid heading for object Early"));
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid latitude and/or longitude ("));
}

TEST_F(PositionObjectTest, XYModeWithoutParentIgnoresAllChannels)
{
    Cone cone(&m_plane);
    cone.setLatitudeChannel(om_test::makeChannel(10.0, {48.21}));
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.61}));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {90.0}));
    const Point2D xy(4, 4, CoordinateSystem::X_FRONT_Y_LEFT);
    cone.setXYPosition(xy);
    cone.setHeading(5);
    const GeoPosition before = cone.getGeoPosition();

    cone.update(0.0);
    EXPECT_EQ(cone.getGeoPosition(), before);
    EXPECT_DOUBLE_EQ(cone.getHeading(), 5.0);
    EXPECT_TRUE(near(cone.getXYPosition(), xy));
    EXPECT_EQ(cone.getLastUpdateTime(), -1.0);
}

TEST_F(PositionObjectTest, PositionChannelsTakeAnXYObjectBackToTheGlobe)
{
    Cone cone(&m_plane);
    cone.setXYPosition(Point2D(4, 4, CoordinateSystem::X_FRONT_Y_LEFT));
    cone.setHeadingChannel(om_test::makeChannel(10.0, {90.0}));
    EXPECT_TRUE(cone.isXYPosition()) << "a heading channel leaves the placement alone";
    cone.setLongitudeChannel(om_test::makeChannel(10.0, {11.61}));
    EXPECT_FALSE(cone.isXYPosition());
    EXPECT_TRUE(cone.hasPositionChannels());
}

TEST_F(PositionObjectTest, ChildFollowsItsParentOnEveryUpdate)
{
    auto car = std::make_shared<Car>(&m_plane);
    car->setLatitudeChannel(om_test::makeChannel(10.0, {48.2001, 48.2005}));
    car->setLongitudeChannel(om_test::makeChannel(10.0, {11.6001, 11.6005}));
    car->setHeadingChannel(om_test::makeChannel(10.0, {0.0, 90.0}));
    car->update(0.0);
    auto cone = std::make_shared<Cone>(&m_plane);
    cone->setReferenceObject(car);
    const Point2D in_car(5, 1, car->localCoordinateSystem());
    cone->setXYPosition(in_car);

    cone->update(0.1);
    EXPECT_EQ(car->getLastUpdateTime(), 0.1) << "the parent is brought to the time first";
    EXPECT_EQ(cone->getGeoPosition(), car->toGeo(in_car));
    EXPECT_EQ(cone->getLastUpdateTime(), -1.0) << "children are worked out on every call";
    EXPECT_TRUE(near(cone->getXYPosition(), in_car));
}

// --- POIs ----------------------------------------------------------------------------

TEST_F(PositionObjectTest, PoiAccessChecksTheIndex)
{
    Cone cone(&m_plane);
    cone.setGeoPosition(om_test::SITE);
    ASSERT_EQ(cone.poiCount(), 1u);
    EXPECT_EQ(cone.getPoi(0).name, "Center");
    EXPECT_THROW(cone.getPoi(1), std::out_of_range);
    EXPECT_EQ(cone.poiPosition(0), om_test::SITE);
    EXPECT_EQ(cone.poiPosition(3), GeoPosition());

    uni_testing::AssertCapture asserts;
    cone.setPoi(1, overmap::Poi{Point2D(1, 1, cone.localCoordinateSystem()), "Nose"});
    EXPECT_TRUE(asserts.fired("idx < m_pois.size()"));
    EXPECT_EQ(cone.poiCount(), 1u);
}

TEST_F(PositionObjectTest, CoordinateSystemChangeRelabelsPoisAndKeepsNumbers)
{
    Cone cone(&m_plane);
    cone.addPoi(overmap::Poi{Point2D(1, 2, CoordinateSystem::DIN70000), "Tip"});
    cone.setCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_EQ(cone.localCoordinateSystem(), CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_TRUE(near(cone.getPoi(1).position, Point2D(1, 2, CoordinateSystem::X_FRONT_Y_LEFT)));
    cone.resetPois();
    ASSERT_EQ(cone.poiCount(), 1u);
    EXPECT_TRUE(near(cone.getPoi(0).position, Point2D(0, 0, CoordinateSystem::X_FRONT_Y_LEFT)));
}

TEST_F(PositionObjectTest, LocalPointInTheWrongSystemIsAnAssertion)
{
    Cone cone(&m_plane);
    uni_testing::AssertCapture asserts;
    cone.toGeo(Point2D(1, 0, CoordinateSystem::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(asserts.fired("pt.getCoordinateSystem() == m_object_plane.getXYCoordinateSystem()"));
}

// --- locator -------------------------------------------------------------------------

TEST_F(PositionObjectTest, LocatorStartsWithThreeEmptyQualityPositions)
{
    overmap::Locator locator(&m_plane);
    EXPECT_EQ(locator.getName(), "Locator");
    EXPECT_EQ(locator.getColor(), "#444444");
    EXPECT_FALSE(locator.hasSelectablePois());
    ASSERT_EQ(locator.getQualityPositions().size(), 3u);
    for (const overmap::QualityPosition& entry : locator.getQualityPositions()) {
        EXPECT_EQ(entry.lowerLimit, 0.0);
        EXPECT_EQ(entry.upperLimit, 0.0);
        EXPECT_EQ(entry.channel, nullptr);
    }
    auto quality = om_test::makeChannel(1.0, {4.0});
    locator.setQualityPosition(overmap::QualityPosition{3.5, 4.5, quality}, 2);
    EXPECT_EQ(locator.getQualityPositions()[2].channel, quality);
    EXPECT_THROW(locator.setQualityPosition(overmap::QualityPosition{}, 3), std::out_of_range);
    locator.clearQualityPositions();
    EXPECT_TRUE(locator.getQualityPositions().empty());
}

// --- the turned plane of toGeo ------------------------------------------------------------

/// A cone hanging on a parent cone, both in one reference plane.
struct TurnScene
{
    math_geo::ProjectionPlane plane = om_test::sitePlane(5.0);
    std::shared_ptr<Cone> parent = std::make_shared<Cone>(&plane);
    Cone cone{&plane};
};

struct TurnChange
{
    const char* name;
    void (*before)(TurnScene&);
    void (*change)(TurnScene&);
};

void freeStanding(TurnScene& s)
{
    s.cone.setGeoPosition(om_test::SITE);
    s.cone.setHeading(30);
}

void onParent(TurnScene& s)
{
    s.parent->setGeoPosition(NEARBY);
    s.parent->setHeading(20);
    s.cone.setGeoPosition(om_test::SITE);
    s.cone.setReferenceObject(s.parent);
    s.cone.setHeading(30);
}

void byXY(TurnScene& s)
{
    s.cone.setXYPosition(Point2D(12, -4, CoordinateSystem::X_FRONT_Y_LEFT));
    s.cone.setHeading(30);
}

class PositionObjectTurn : public ::testing::TestWithParam<TurnChange>
{
protected:
    static GeoPosition front(const Cone& cone)
    {
        return cone.toGeo(Point2D(8, 3, cone.localCoordinateSystem()));
    }
};

// A point asked for before a change lands where it would had nobody asked before.
TEST_P(PositionObjectTurn, PointsFollowEveryChangeThatTurnsOrMovesTheObject)
{
    TurnScene asked;
    GetParam().before(asked);
    const GeoPosition before = front(asked.cone);
    EXPECT_EQ(front(asked.cone), before);
    GetParam().change(asked);
    TurnScene fresh;
    GetParam().before(fresh);
    GetParam().change(fresh);
    const GeoPosition after = front(asked.cone);
    EXPECT_NE(after, before) << "the change must move the point";
    EXPECT_EQ(after, front(fresh.cone));
    EXPECT_EQ(asked.cone.toLocal(NEARBY), fresh.cone.toLocal(NEARBY));
}

INSTANTIATE_TEST_SUITE_P(
    Changes, PositionObjectTurn,
    ::testing::Values(
        TurnChange{"Heading", freeStanding, [](TurnScene& s) { s.cone.setHeading(31); }},
        TurnChange{"CentreEastOnly", freeStanding,
                   [](TurnScene& s) { s.cone.setGeoPosition(GeoPosition(48.2, 11.6001)); }},
        TurnChange{"CentreNorthOnly", freeStanding,
                   [](TurnScene& s) { s.cone.setGeoPosition(GeoPosition(48.2001, 11.6)); }},
        TurnChange{"LocalSystem",
                   [](TurnScene& s) {
                       s.cone.setCoordinateSystem(CoordinateSystem::DIN70000);
                       freeStanding(s);
                   },
                   [](TurnScene& s) { s.cone.setCoordinateSystem(CoordinateSystem::X_RIGHT_Y_FRONT); }},
        TurnChange{"ParentHeading", onParent, [](TurnScene& s) { s.parent->setHeading(25); }},
        TurnChange{"ParentMoves", onParent,
                   [](TurnScene& s) {
                       s.parent->setGeoPosition(om_test::SITE);
                       s.cone.update(1.0);
                   }},
        TurnChange{"ReferencePlaneRotation", byXY,
                   [](TurnScene& s) {
                       s.plane.setRotation(15.0);
                       s.cone.setPlane(&s.plane);
                   }},
        TurnChange{"ReferencePlaneRotationAlone", byXY, [](TurnScene& s) { s.plane.setRotation(15.0); }}),
    [](const ::testing::TestParamInfo<TurnChange>& info) { return info.param.name; });

} // namespace
