// Placing an object: a reading handed over for its channels, and the turned plane of
// toGeo that follows every change of heading, centre and system.
#include "test_support.h"

#include <om_model/cone.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::near;
using overmap::Cone;

namespace {

const GeoPosition NEARBY(48.2003, 11.6004);

class PositionPlacementTest : public ::testing::Test
{
protected:
    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
};

TEST_F(PositionPlacementTest, AReadingHandedOverStandsForTheChannelsTheObjectHas)
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
