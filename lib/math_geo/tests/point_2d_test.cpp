#include <math_geo/point_2d.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using math_geo::CoordinateSystem;
using math_geo::Point2D;

constexpr const char* UNSUPPORTED = "Point2D::toCoordSystem() - unsupported conversion";
constexpr const char* MIXED = "m_coordinate_system == p2.m_coordinate_system";

TEST(Point2DBasics, DefaultIsOriginInRightFrontAndEnumNumbersAreFixed)
{
    const Point2D p;
    EXPECT_EQ(p.x, 0.0);
    EXPECT_EQ(p.y, 0.0);
    EXPECT_EQ(p.getCoordinateSystem(), CoordinateSystem::X_RIGHT_Y_FRONT);
    EXPECT_EQ(static_cast<int>(CoordinateSystem::X_FRONT_Y_LEFT), 1);
    EXPECT_EQ(static_cast<int>(CoordinateSystem::X_RIGHT_Y_BACK), 2);
    EXPECT_EQ(static_cast<int>(CoordinateSystem::DIN70000), 4);
    EXPECT_EQ(static_cast<int>(CoordinateSystem::SAE), 5);
    EXPECT_EQ(sizeof(CoordinateSystem), 4u);
}

TEST(Point2DConversion, TableOfSupportedPairs)
{
    struct Case
    {
        CoordinateSystem from, to;
        double x, y;
    };
    using CS = CoordinateSystem;
    // From (1, 2).
    const Case cases[] = {
        {CS::X_RIGHT_Y_FRONT, CS::X_RIGHT_Y_FRONT, 1, 2}, {CS::SAE, CS::SAE, 1, 2},
        {CS::X_FRONT_Y_LEFT, CS::DIN70000, 1, 2},         {CS::DIN70000, CS::X_FRONT_Y_LEFT, 1, 2},
        {CS::X_RIGHT_Y_FRONT, CS::X_FRONT_Y_LEFT, 2, -1}, {CS::X_RIGHT_Y_FRONT, CS::DIN70000, 2, -1},
        {CS::X_FRONT_Y_LEFT, CS::X_RIGHT_Y_FRONT, -2, 1}, {CS::DIN70000, CS::X_RIGHT_Y_FRONT, -2, 1},
        {CS::X_FRONT_Y_LEFT, CS::X_RIGHT_Y_BACK, -2, -1}, {CS::DIN70000, CS::X_RIGHT_Y_BACK, -2, -1},
        {CS::X_RIGHT_Y_FRONT, CS::X_RIGHT_Y_BACK, 1, -2}, {CS::X_RIGHT_Y_BACK, CS::X_RIGHT_Y_FRONT, 1, -2},
    };
    for (const Case& c : cases) {
        Point2D p(1, 2, c.from);
        p.toCoordSystem(c.to);
        EXPECT_EQ(p, Point2D(c.x, c.y, c.to)) << static_cast<int>(c.from) << "->" << static_cast<int>(c.to);
    }
}

TEST(Point2DConversion, UnsupportedPairsReportAndLeaveValueAndLabel)
{
    using CS = CoordinateSystem;
    const std::pair<CS, CS> pairs[] = {
        {CS::X_RIGHT_Y_BACK, CS::X_FRONT_Y_LEFT},
        {CS::X_RIGHT_Y_BACK, CS::DIN70000},
        {CS::SAE, CS::X_RIGHT_Y_FRONT},
        {CS::X_RIGHT_Y_FRONT, CS::SAE},
        {CS::DIN70000, CS::SAE},
        {CS::SAE, CS::X_RIGHT_Y_BACK},
    };
    for (const auto& [from, to] : pairs) {
        uni_testing::AssertCapture asserts;
        Point2D p(1, 2, from);
        p.toCoordSystem(to);
        EXPECT_TRUE(asserts.fired("", UNSUPPORTED));
        EXPECT_EQ(p, Point2D(1, 2, from));
    }
}

TEST(Point2DConversion, ScreenReachesVehicleFramesOnlyThroughRightFront)
{
    Point2D p(3, 4, CoordinateSystem::X_RIGHT_Y_BACK);
    p.toCoordSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    p.toCoordSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_EQ(p, Point2D(-4, -3, CoordinateSystem::X_FRONT_Y_LEFT));
    // And back to the screen directly.
    p.toCoordSystem(CoordinateSystem::X_RIGHT_Y_BACK);
    EXPECT_EQ(p, Point2D(3, 4, CoordinateSystem::X_RIGHT_Y_BACK));
}

TEST(Point2DRotation, DinRunsTheOtherWayForwardLeftDoesNot)
{
    EXPECT_EQ(Point2D(1, 2).rotate(90), Point2D(-2, 1));
    EXPECT_EQ(Point2D(1, 2, CoordinateSystem::DIN70000).rotate(90),
              Point2D(2, -1, CoordinateSystem::DIN70000));
    EXPECT_EQ(Point2D(1, 2, CoordinateSystem::X_FRONT_Y_LEFT).rotate(90),
              Point2D(-2, 1, CoordinateSystem::X_FRONT_Y_LEFT));
    const Point2D r = Point2D(3, 4).rotate(37.5);
    EXPECT_NEAR(r.length(), 5.0, 1e-12);
    EXPECT_EQ(r.rotate(-37.5), Point2D(3, 4));
}

TEST(Point2DAngle, SignedCounterClockwiseAndNotANumberWithoutACosine)
{
    struct Row
    {
        const char* what;
        Point2D from;
        Point2D to;
        double degrees; // NaN: no angle
    };
    const double none = std::nan("");
    const Row rows[] = {
        {"quarter turn left", Point2D(1, 0), Point2D(0, 1), 90.0},
        {"quarter turn right", Point2D(1, 0), Point2D(0, -1), -90.0},
        {"opposite", Point2D(1, 0), Point2D(-1, 0), 180.0},
        {"eighth turn right", Point2D(1, 1), Point2D(1, 0), -45.0},
        {"parallel, cosine exactly 1", Point2D(3, 4), Point2D(9, 12), 0.0},
        {"zero length", Point2D(0, 0), Point2D(1, 0), none},
        // sqrt(13)·sqrt(13) rounds below 13, which puts the cosine just beyond ±1.
        {"parallel, cosine rounded past 1", Point2D(2, 3), Point2D(2, 3), none},
        {"antiparallel, cosine rounded past -1", Point2D(2, 3), Point2D(-2, -3), none},
        {"parallel, scaled, rounded past 1", Point2D(0.1, 0.37), Point2D(0.1, 0.37) * 3.0, none},
    };
    for (const Row& row : rows) {
        const double angle = row.from.angleTo(row.to);
        if (std::isnan(row.degrees))
            EXPECT_TRUE(std::isnan(angle)) << row.what << ": " << angle;
        else
            EXPECT_NEAR(angle, row.degrees, 1e-12) << row.what;
    }
}

TEST(Point2DArithmetic, ResultsCarryTheLeftSystemAndMixedOperandsReport)
{
    const Point2D a(1, 2, CoordinateSystem::X_FRONT_Y_LEFT);
    const Point2D b(3, 5, CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_EQ(a + b, Point2D(4, 7, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(b - a, Point2D(2, 3, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(a * 3.0, Point2D(3, 6, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(b / 2.0, Point2D(1.5, 2.5, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(-a, Point2D(-1, -2, CoordinateSystem::X_FRONT_Y_LEFT));
    Point2D c = a;
    c += b;
    c -= a;
    c *= 2.0;
    c /= 4.0;
    EXPECT_EQ(c, Point2D(1.5, 2.5, CoordinateSystem::X_FRONT_Y_LEFT));

    const Point2D din(10, 20, CoordinateSystem::DIN70000);
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(a + din, Point2D(11, 22, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(din - a, Point2D(9, 18, CoordinateSystem::DIN70000));
    c = a;
    c += din;
    c -= din;
    EXPECT_NEAR(a.angleTo(din), 0.0, 1e-5);
    EXPECT_EQ(asserts.size(), 5u);
    EXPECT_TRUE(asserts.fired(MIXED));
}

TEST(Point2DComparison, SameNumbersInDifferentSystemsAreUnequal)
{
    EXPECT_TRUE(Point2D(1, 2) == Point2D(1 + 0.9e-12, 2 - 0.9e-12));
    EXPECT_FALSE(Point2D(1, 2) == Point2D(1 + 1.1e-12, 2));
    EXPECT_NE(Point2D(1, 2, CoordinateSystem::X_FRONT_Y_LEFT), Point2D(1, 2, CoordinateSystem::DIN70000));
    Point2D relabelled(1, 2, CoordinateSystem::X_FRONT_Y_LEFT);
    relabelled.setCoordinateSystem(CoordinateSystem::DIN70000);
    EXPECT_EQ(relabelled, Point2D(1, 2, CoordinateSystem::DIN70000));
}

TEST(Point2DText, PlainFormKeepsStreamPrecision)
{
    std::ostringstream os;
    os.precision(3);
    os << Point2D(1.23456, -2, CoordinateSystem::SAE);
    EXPECT_EQ(os.str(), "Point2D(1.23, -2)");
    EXPECT_EQ(os.precision(), 3);
}

} // namespace
