#include <math_geo/line_2d.h>
#include <math_geo/point_2d.h>
#include <math_geo/rectangle.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using math_geo::Line2D;
using math_geo::Point2D;
using math_geo::Rectangle;
using CS = math_geo::CoordinateSystem;

constexpr double NONE = NAN; // no answer expected

struct ConversionRow
{
    const char* what;
    CS from, to;
    double x, y; // (1, 2) converted; NONE: refused, value and label kept
};

void PrintTo(const ConversionRow& row, std::ostream* os)
{
    *os << row.what;
}

class Point2DConversion : public testing::TestWithParam<ConversionRow>
{};

TEST_P(Point2DConversion, FromOneTwo)
{
    const ConversionRow& row = GetParam();
    uni_testing::AssertCapture asserts;
    Point2D p(1, 2, row.from);
    p.toCoordSystem(row.to);
    const bool refused = std::isnan(row.x);
    EXPECT_EQ(p, refused ? Point2D(1, 2, row.from) : Point2D(row.x, row.y, row.to));
    EXPECT_EQ(asserts.fired("", "Point2D::toCoordSystem() - unsupported conversion"), refused);
}

const ConversionRow CONVERSIONS[] = {
    {"same", CS::SAE, CS::SAE, 1, 2},
    {"forward_left_to_din", CS::X_FRONT_Y_LEFT, CS::DIN70000, 1, 2},
    {"right_front_to_forward_left", CS::X_RIGHT_Y_FRONT, CS::X_FRONT_Y_LEFT, 2, -1},
    {"right_front_to_din", CS::X_RIGHT_Y_FRONT, CS::DIN70000, 2, -1},
    {"din_to_right_front", CS::DIN70000, CS::X_RIGHT_Y_FRONT, -2, 1},
    {"forward_left_to_screen", CS::X_FRONT_Y_LEFT, CS::X_RIGHT_Y_BACK, -2, -1},
    {"right_front_to_screen", CS::X_RIGHT_Y_FRONT, CS::X_RIGHT_Y_BACK, 1, -2},
    {"screen_to_right_front", CS::X_RIGHT_Y_BACK, CS::X_RIGHT_Y_FRONT, 1, -2},
    {"screen_to_din_refused", CS::X_RIGHT_Y_BACK, CS::DIN70000, NONE, NONE},
    {"sae_to_right_front_refused", CS::SAE, CS::X_RIGHT_Y_FRONT, NONE, NONE},
    {"right_front_to_sae_refused", CS::X_RIGHT_Y_FRONT, CS::SAE, NONE, NONE},
};
INSTANTIATE_TEST_SUITE_P(Rows, Point2DConversion, testing::ValuesIn(CONVERSIONS),
                         [](const auto& info) { return std::string(info.param.what); });

TEST(Point2DMeasure, RotationRunsTheOtherWayInDinAndAnglesAreSignedOrNotANumber)
{
    EXPECT_EQ(Point2D(1, 2).rotate(90), Point2D(-2, 1));
    EXPECT_EQ(Point2D(1, 2, CS::DIN70000).rotate(90), Point2D(2, -1, CS::DIN70000));
    EXPECT_EQ(Point2D(1, 2, CS::X_FRONT_Y_LEFT).rotate(90), Point2D(-2, 1, CS::X_FRONT_Y_LEFT));
    EXPECT_NEAR(Point2D(3, 4).rotate(37.5).length(), 5.0, 1e-12);
    const struct
    {
        Point2D from, to;
        double degrees;
    } angles[] = {
        {Point2D(1, 0), Point2D(0, 1), 90.0},
        {Point2D(1, 0), Point2D(0, -1), -90.0},
        {Point2D(1, 0), Point2D(-1, 0), 180.0},
        {Point2D(1, 1), Point2D(1, 0), -45.0},
        {Point2D(3, 4), Point2D(9, 12), 0.0},
        {Point2D(0, 0), Point2D(1, 0), NONE},
        // sqrt(13)·sqrt(13) rounds below 13, which puts the cosine just past ±1.
        {Point2D(2, 3), Point2D(2, 3), NONE},
        {Point2D(2, 3), Point2D(-2, -3), NONE},
    };
    for (const auto& a : angles) {
        const double got = a.from.angleTo(a.to);
        if (std::isnan(a.degrees))
            EXPECT_TRUE(std::isnan(got)) << a.from << a.to;
        else
            EXPECT_NEAR(got, a.degrees, 1e-12) << a.from << a.to;
    }
}

TEST(Point2DMeasure, ArithmeticKeepsTheLeftSystemComparisonTheToleranceAndMixedOperandsReport)
{
    const Point2D a(1, 2, CS::X_FRONT_Y_LEFT);
    const Point2D b(3, 5, CS::X_FRONT_Y_LEFT);
    EXPECT_EQ(a + b, Point2D(4, 7, CS::X_FRONT_Y_LEFT));
    EXPECT_EQ(b - a, Point2D(2, 3, CS::X_FRONT_Y_LEFT));
    EXPECT_EQ(-(a * 3.0), Point2D(-3, -6, CS::X_FRONT_Y_LEFT));
    Point2D c = a;
    c += b;
    c -= a;
    c *= 2.0;
    c /= 4.0;
    EXPECT_EQ(c, Point2D(1.5, 2.5, CS::X_FRONT_Y_LEFT));
    EXPECT_TRUE(Point2D(1, 2) == Point2D(1 + 0.9e-12, 2 - 0.9e-12));
    EXPECT_FALSE(Point2D(1, 2) == Point2D(1, 2 + 1.1e-12));
    EXPECT_FALSE(Point2D(1, 2) == Point2D(1 - 1.1e-12, 2));
    EXPECT_FALSE(Point2D(0, 0) == Point2D(0, 1e-12)); // the tolerance itself is apart
    EXPECT_FALSE(Point2D(0, 0) == Point2D(1e-12, 0));
    EXPECT_NE(a, Point2D(1, 2, CS::DIN70000));

    uni_testing::AssertCapture asserts;
    const Point2D din(10, 20, CS::DIN70000);
    EXPECT_EQ(a + din, Point2D(11, 22, CS::X_FRONT_Y_LEFT));
    EXPECT_EQ(din - a, Point2D(9, 18, CS::DIN70000));
    EXPECT_EQ(asserts.size(), 2u);
    EXPECT_TRUE(asserts.fired("m_coordinate_system == p2.m_coordinate_system"));
    std::ostringstream os;
    os.precision(3);
    os << Point2D(1.23456, -2, CS::SAE);
    EXPECT_EQ(os.str(), "Point2D(1.23, -2)");
}

TEST(Line2DIntersection, InfiniteLinesCrossParallelOnesDoNot)
{
    const Line2D a(Point2D(0, 0), Point2D(1, 1));
    const Line2D b(Point2D(10, 0), Point2D(9, 1));
    EXPECT_EQ(a.intersect(b), Point2D(5, 5));
    EXPECT_EQ(b.intersect(a), Point2D(5, 5));
    EXPECT_EQ(Line2D(Point2D(0, 1), Point2D(2, 3)).intersect(Line2D(Point2D(4, 0), Point2D(4, 1))),
              Point2D(4, 5));
    EXPECT_FALSE(a.intersect(a).has_value());
    // det = 1e-10 and 1e-8 against this line's direction (1, 0): the tolerance lies between.
    const Line2D flat(Point2D(0, 0), Point2D(1, 0));
    EXPECT_FALSE(flat.intersect(Line2D(Point2D(0, 1), Point2D(1, 1 + 1e-10))).has_value());
    EXPECT_TRUE(flat.intersect(Line2D(Point2D(0, 1), Point2D(1, 1 + 1e-8))).has_value());
    EXPECT_EQ(flat.intersect(Line2D(Point2D(0, 0), Point2D(1, 1e-9))), Point2D(0, 0)); // det at the tolerance
    Line2D moved = a;
    moved.setPt1(Point2D(2, 0));
    moved.setPt2(Point2D(2, 7));
    EXPECT_EQ(moved.dx(), 0.0);
    EXPECT_EQ(moved.intersect(a), Point2D(2, 2));

    uni_testing::AssertCapture asserts;
    const Line2D mixed(Point2D(0, 0), Point2D(1, 0, CS::DIN70000));
    EXPECT_TRUE(asserts.fired("m_pt1.getCoordinateSystem() == m_pt2.getCoordinateSystem()"));
}

TEST(RectangleShape, BoundingTakesTheFirstSystemTopIsGreaterYAndEmptyKeepsItsOddValues)
{
    const Rectangle r = Rectangle::bounding(
        {Point2D(1, -2, CS::X_RIGHT_Y_BACK), Point2D(-3, 5, CS::X_RIGHT_Y_BACK), Point2D(4, 0)});
    EXPECT_EQ(r.topLeft(), Point2D(-3, 5, CS::X_RIGHT_Y_BACK));
    EXPECT_EQ(r.bottomRight(), Point2D(4, -2, CS::X_RIGHT_Y_BACK));
    EXPECT_EQ(r.width(), 7.0);
    EXPECT_EQ(r.height(), 7.0);
    EXPECT_EQ(r.center(), Point2D(0.5, 1.5, CS::X_RIGHT_Y_BACK));
    const Rectangle empty = Rectangle::bounding({});
    EXPECT_EQ(empty.topLeft(), Point2D(1, 1));
    EXPECT_EQ(empty.bottomRight(), Point2D(-1, -1));
}

} // namespace
