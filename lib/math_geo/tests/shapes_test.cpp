#include <math_geo/geo_bounds.h>
#include <math_geo/line_2d.h>
#include <math_geo/rectangle.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using math_geo::CoordinateSystem;
using math_geo::GeoBounds;
using math_geo::GeoPosition;
using math_geo::Line2D;
using math_geo::Point2D;
using math_geo::Rectangle;

TEST(Line2DShape, DirectionFollowsTheSetters)
{
    Line2D line(Point2D(1, 1), Point2D(4, 5));
    EXPECT_EQ(line.dx(), 3.0);
    EXPECT_EQ(line.dy(), 4.0);
    line.setPt1(Point2D(0, 0));
    EXPECT_EQ(line.dx(), 4.0);
    EXPECT_EQ(line.dy(), 5.0);
    line.setPt2(Point2D(-1, 2));
    EXPECT_EQ(line.dx(), -1.0);
    EXPECT_EQ(line.dy(), 2.0);
}

TEST(Line2DShape, MixedSystemsReportInConstructorSettersAndIntersection)
{
    const char* pair_rule = "m_pt1.getCoordinateSystem() == m_pt2.getCoordinateSystem()";
    uni_testing::AssertCapture asserts;
    Line2D line(Point2D(0, 0), Point2D(1, 0, CoordinateSystem::DIN70000));
    EXPECT_TRUE(asserts.fired(pair_rule));
    asserts.clear();
    line.setPt1(Point2D(0, 0, CoordinateSystem::DIN70000));
    EXPECT_EQ(asserts.size(), 0u);
    line.setPt2(Point2D(0, 1));
    EXPECT_TRUE(asserts.fired(pair_rule));
    asserts.clear();
    const Line2D other(Point2D(0, 0), Point2D(1, 1));
    line.setPt2(Point2D(0, 1, CoordinateSystem::DIN70000));
    const auto crossing = line.intersect(other);
    EXPECT_TRUE(asserts.fired("m_pt1.getCoordinateSystem() == other.m_pt1.getCoordinateSystem()"));
    ASSERT_TRUE(crossing.has_value());
    EXPECT_EQ(*crossing, Point2D(0, 0, CoordinateSystem::DIN70000));
}

TEST(Line2DIntersection, InfiniteLinesCrossOutsideTheirPoints)
{
    const Line2D a(Point2D(0, 0, CoordinateSystem::X_FRONT_Y_LEFT),
                   Point2D(1, 1, CoordinateSystem::X_FRONT_Y_LEFT));
    const Line2D b(Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT),
                   Point2D(9, 1, CoordinateSystem::X_FRONT_Y_LEFT));
    const auto p = a.intersect(b);
    ASSERT_TRUE(p.has_value());
    EXPECT_EQ(*p, Point2D(5, 5, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(*b.intersect(a), Point2D(5, 5, CoordinateSystem::X_FRONT_Y_LEFT));
}

TEST(Line2DIntersection, ParallelAndNearlyParallelGiveNothing)
{
    const Line2D a(Point2D(0, 0), Point2D(2, 1));
    EXPECT_FALSE(a.intersect(Line2D(Point2D(0, 1), Point2D(2, 2))).has_value());
    EXPECT_FALSE(a.intersect(a).has_value());
    // det = dy·(-ox) + oy·dx = 1e-10 with this line's direction (1, 0).
    const Line2D flat(Point2D(0, 0), Point2D(1, 0));
    EXPECT_FALSE(flat.intersect(Line2D(Point2D(0, 1), Point2D(1, 1 + 1e-10))).has_value());
    EXPECT_TRUE(flat.intersect(Line2D(Point2D(0, 1), Point2D(1, 1 + 1e-8))).has_value());
}

TEST(Line2DIntersection, ANotANumberDeterminantGivesANotANumberPoint)
{
    const double nan = std::nan("");
    const Line2D flat(Point2D(0, 0), Point2D(1, 0));
    const auto p = flat.intersect(Line2D(Point2D(nan, 1), Point2D(nan, 2)));
    ASSERT_TRUE(p.has_value()) << "not-a-number is not below the tolerance";
    EXPECT_TRUE(std::isnan(p->x));
    EXPECT_TRUE(std::isnan(p->y));
}

TEST(RectangleShape, EmptyBoundingBoxKeepsItsOddValues)
{
    const Rectangle r = Rectangle::bounding({});
    EXPECT_EQ(r.topLeft(), Point2D(1, 1));
    EXPECT_EQ(r.bottomRight(), Point2D(-1, -1));
    EXPECT_EQ(r.width(), -2.0);
    EXPECT_EQ(r.height(), 2.0);
    EXPECT_EQ(r.center(), Point2D(0, 0));
}

TEST(RectangleShape, BoundingTakesTheFirstPointsSystemAndTopIsGreaterY)
{
    const Rectangle one = Rectangle::bounding({Point2D(3, 4, CoordinateSystem::DIN70000)});
    EXPECT_EQ(one.width(), 0.0);
    EXPECT_EQ(one.height(), 0.0);
    EXPECT_EQ(one.center(), Point2D(3, 4, CoordinateSystem::DIN70000));

    const Rectangle r =
        Rectangle::bounding({Point2D(1, -2, CoordinateSystem::X_RIGHT_Y_BACK),
                             Point2D(-3, 5, CoordinateSystem::X_RIGHT_Y_BACK), Point2D(4, 0)});
    EXPECT_EQ(r.topLeft(), Point2D(-3, 5, CoordinateSystem::X_RIGHT_Y_BACK));
    EXPECT_EQ(r.bottomRight(), Point2D(4, -2, CoordinateSystem::X_RIGHT_Y_BACK));
    EXPECT_EQ(r.width(), 7.0);
    EXPECT_EQ(r.height(), 7.0);
    EXPECT_EQ(r.center(), Point2D(0.5, 1.5, CoordinateSystem::X_RIGHT_Y_BACK));
}

TEST(RectangleShape, MixedCornersReport)
{
    uni_testing::AssertCapture asserts;
    const Rectangle r(Point2D(0, 1), Point2D(1, 0, CoordinateSystem::SAE));
    EXPECT_TRUE(asserts.fired("m_top_left.getCoordinateSystem() == m_bottom_right.getCoordinateSystem()"));
}

TEST(GeoBoundsExtend, GrowsTheShorterWayRoundTheAntimeridian)
{
    GeoBounds b(GeoPosition(10, 170), GeoPosition(5, 175));
    b.extend(GeoPosition(7, -175));
    EXPECT_EQ(b.left(), 170.0);
    EXPECT_EQ(b.right(), -175.0);
    EXPECT_TRUE(b.crossesAntimeridian());
    // Now inside: east of left, and west of right across the line.
    b.extend(GeoPosition(8, 179));
    b.extend(GeoPosition(8, -178));
    EXPECT_EQ(b.left(), 170.0);
    EXPECT_EQ(b.right(), -175.0);
    // In the gap: the nearer edge moves.
    b.extend(GeoPosition(8, 160));
    EXPECT_EQ(b.left(), 160.0);
    b.extend(GeoPosition(8, -170));
    EXPECT_EQ(b.right(), -170.0);
}

TEST(GeoBoundsExtend, OrdinaryBoundsGrowEastWestAndInLatitude)
{
    GeoBounds b(GeoPosition(48, 11), GeoPosition(47, 12));
    b.extend(GeoPosition(47.5, 11.5));
    EXPECT_EQ(b.topLeft(), GeoPosition(48, 11));
    EXPECT_EQ(b.bottomRight(), GeoPosition(47, 12));
    b.extend(GeoPosition(49, 10));
    EXPECT_EQ(b.topLeft(), GeoPosition(49, 10));
    b.extend(GeoPosition(46, 13));
    EXPECT_EQ(b.bottomRight(), GeoPosition(46, 13));
    b.extend(GeoPosition(47.5, 11.7)); // latitude outside is not needed for a longitude inside
    EXPECT_EQ(b.bottomRight(), GeoPosition(46, 13));
    // Far west is nearer going east over the antimeridian.
    GeoBounds w(GeoPosition(1, -170), GeoPosition(0, -160));
    w.extend(GeoPosition(0.5, 175));
    EXPECT_EQ(w.left(), 175.0);
    EXPECT_EQ(w.right(), -160.0);
    GeoBounds e(GeoPosition(1, 160), GeoPosition(0, 170));
    e.extend(GeoPosition(0.5, -175));
    EXPECT_EQ(e.left(), 160.0);
    EXPECT_EQ(e.right(), -175.0);
}

TEST(GeoBoundsExtend, PoleOnTheLimitIsInsideWhateverTheLongitude)
{
    GeoBounds north(GeoPosition(90, 10), GeoPosition(80, 20));
    north.extend(GeoPosition(90, -120));
    EXPECT_EQ(north.topLeft(), GeoPosition(90, 10));
    EXPECT_EQ(north.bottomRight(), GeoPosition(80, 20));
    GeoBounds south(GeoPosition(-80, 10), GeoPosition(-90, 20));
    south.extend(GeoPosition(-90, 100));
    EXPECT_EQ(south.bottomRight(), GeoPosition(-90, 20));
    // A pole beyond the limit is not.
    GeoBounds below(GeoPosition(80, 10), GeoPosition(70, 20));
    below.extend(GeoPosition(90, 15));
    EXPECT_EQ(below.top(), 90.0);
}

TEST(GeoBoundsExtend, ByOtherBoundsTakesBothCorners)
{
    GeoBounds a(GeoPosition(2, 2), GeoPosition(1, 3));
    a.extend(GeoBounds(GeoPosition(5, 0), GeoPosition(-1, 4)));
    EXPECT_EQ(a.topLeft(), GeoPosition(5, 0));
    EXPECT_EQ(a.bottomRight(), GeoPosition(-1, 4));
}

} // namespace
