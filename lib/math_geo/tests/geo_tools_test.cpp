#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>

#include <uni_testing/assert_capture.h>

#include <boost/geometry/core/exception.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using math_geo::GeoPosition;
using math_geo::GeoSegment;
using math_geo::Point2D;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TEST(Radii, EquatorAndPoleValuesAndGaussianIsTheGeometricMean)
{
    EXPECT_DOUBLE_EQ(math_geo::primeVerticalRadius(0), 6378137.0);
    EXPECT_DOUBLE_EQ(math_geo::meridianRadius(0), 6335439.327292843);
    EXPECT_DOUBLE_EQ(math_geo::gaussianRadius(0), std::sqrt(0.9933056200098622) * 6378137.0);
    // At the pole both radii are a / sqrt(1 - e²).
    EXPECT_NEAR(math_geo::primeVerticalRadius(90), 6399593.6258, 1e-3);
    EXPECT_NEAR(math_geo::meridianRadius(90), 6399593.6258, 1e-3);
    for (double lat = -90; lat <= 90; lat += 7.5) {
        const double mean = std::sqrt(math_geo::meridianRadius(lat) * math_geo::primeVerticalRadius(lat));
        EXPECT_NEAR(math_geo::gaussianRadius(lat) / mean, 1.0, 1e-14) << lat;
        EXPECT_EQ(math_geo::gaussianRadius(lat), math_geo::gaussianRadius(-lat));
    }
}

TEST(WrapToRange, BothEndsStayAndOtherValuesWrapIn)
{
    EXPECT_EQ(math_geo::wrapToRange(360, 0, 360), 360.0);
    EXPECT_EQ(math_geo::wrapToRange(0, 0, 360), 0.0);
    EXPECT_EQ(math_geo::wrapToRange(361, 0, 360), 1.0);
    EXPECT_EQ(math_geo::wrapToRange(-1, 0, 360), 359.0);
    EXPECT_EQ(math_geo::wrapToRange(720, 0, 360), 0.0);
    EXPECT_EQ(math_geo::wrapToRange(180, -180, 180), 180.0);
    EXPECT_EQ(math_geo::wrapToRange(-180, -180, 180), -180.0);
    EXPECT_EQ(math_geo::wrapToRange(540, -180, 180), 180.0);
    EXPECT_EQ(math_geo::wrapToRange(-540, -180, 180), 180.0); // a wrapped value lands on the upper end
    EXPECT_EQ(math_geo::wrapToRange(190, -180, 180), -170.0);
    EXPECT_NEAR(math_geo::wrapToRange(-1e6 - 0.25, 0, 360), 79.75, 1e-9);
    EXPECT_TRUE(std::isnan(math_geo::wrapToRange(NaN, 0, 360)));
}

TEST(WrapToRange, EmptyRangeReports)
{
    uni_testing::AssertCapture asserts;
    math_geo::wrapToRange(5, 1, 1);
    EXPECT_TRUE(asserts.fired("max > min"));
}

TEST(DestinationPoint, ZeroDistanceIsTheStartAndResultIsNotNormalised)
{
    const GeoPosition start(48.1, 11.6);
    EXPECT_EQ(math_geo::destinationPoint(start, 123.0, 0.0), start);
    // Eastwards over the antimeridian: the longitude runs past 180.
    const GeoPosition past = math_geo::destinationPoint(GeoPosition(0, 179.9), 90.0, 50000.0);
    EXPECT_GT(past.longitude, 180.0);
    EXPECT_NEAR(past.latitude, 0.0, 1e-12);
}

TEST(DestinationPoint, TravelsTheGivenDistanceAndBearingOnTheGaussianSphere)
{
    const GeoPosition start(-33.9, 151.2);
    for (double bearing = -90; bearing < 360; bearing += 37) {
        const GeoPosition end = math_geo::destinationPoint(start, bearing, 12345.0);
        EXPECT_NEAR(start.distanceTo(end, math_geo::DistanceMethod::HAVERSINE), 12345.0, 1e-6) << bearing;
        EXPECT_NEAR(std::remainder(start.bearingTo(end) - bearing, 360.0), 0.0, 1e-9) << bearing;
    }
}

TEST(RhumbBearing, CompassValueAndShortWayOverTheAntimeridian)
{
    EXPECT_NEAR(math_geo::rhumbBearing(GeoSegment(GeoPosition(0, 179), GeoPosition(0, -179))), 90.0, 1e-12);
    EXPECT_NEAR(math_geo::rhumbBearing(GeoSegment(GeoPosition(0, -179), GeoPosition(0, 179))), 270.0, 1e-12);
    EXPECT_NEAR(math_geo::rhumbBearing(GeoSegment(GeoPosition(10, 5), GeoPosition(20, 5))), 0.0, 1e-12);
    EXPECT_NEAR(math_geo::rhumbBearing(GeoSegment(GeoPosition(10, 5), GeoPosition(0, 5))), 180.0, 1e-12);
    // A rhumb line keeps its bearing: at 60 degrees north due east is 90, unlike the great circle.
    EXPECT_NEAR(math_geo::rhumbBearing(GeoSegment(GeoPosition(60, 0), GeoPosition(60, 20))), 90.0, 1e-12);
    const double sw = math_geo::rhumbBearing(GeoSegment(GeoPosition(1, 1), GeoPosition(0, 0)));
    EXPECT_GT(sw, 180.0);
    EXPECT_LT(sw, 270.0);
}

TEST(DistanceToPolyline, ClampedProjectionOntoTheNearestSegment)
{
    const std::vector<Point2D> line = {Point2D(0, 0), Point2D(10, 0), Point2D(10, 10)};
    EXPECT_DOUBLE_EQ(math_geo::distanceToPolyline(Point2D(5, 3), line), 3.0);
    EXPECT_DOUBLE_EQ(math_geo::distanceToPolyline(Point2D(13, 5), line), 3.0);
    EXPECT_DOUBLE_EQ(math_geo::distanceToPolyline(Point2D(-3, -4), line), 5.0);
    EXPECT_DOUBLE_EQ(math_geo::distanceToPolyline(Point2D(10, 0), line), 0.0);
    EXPECT_DOUBLE_EQ(math_geo::distanceToPolyline(Point2D(4, 4), {Point2D(1, 0)}), 5.0);
}

TEST(DistanceToPolyline, EmptyListThrowsTheBoostException)
{
    EXPECT_THROW(math_geo::distanceToPolyline(Point2D(1, 1), {}), boost::geometry::empty_input_exception);
}

TEST(NearestSegment, IndexOfTheClosestSegmentEarliestOnATie)
{
    const std::vector<Point2D> line = {Point2D(0, 0), Point2D(10, 0), Point2D(10, 10), Point2D(0, 10)};
    EXPECT_EQ(math_geo::nearestSegment(Point2D(5, 1), line), 0);
    EXPECT_EQ(math_geo::nearestSegment(Point2D(9, 5), line), 1);
    EXPECT_EQ(math_geo::nearestSegment(Point2D(5, 12), line), 2);
    EXPECT_EQ(math_geo::nearestSegment(Point2D(10, 10), line), 1); // shared vertex: the first segment wins
    EXPECT_EQ(math_geo::nearestSegment(Point2D(5, 5), line), 0);   // all three at 5: the first wins
    EXPECT_EQ(math_geo::nearestSegment(Point2D(5, 5), {Point2D(1, 1)}), -1);
    EXPECT_EQ(math_geo::nearestSegment(Point2D(5, 5), {}), -1);
}

TEST(RemoveInvalidPositions, KeepsTheOrderOfTheValidOnes)
{
    std::vector<GeoPosition> list = {{1, 1}, {NaN, 2}, {91, 0}, {2, 2}, {0, 181}, {90, -180}, {3, NaN}};
    math_geo::removeInvalidPositions(list);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0], GeoPosition(1, 1));
    EXPECT_EQ(list[1], GeoPosition(2, 2));
    EXPECT_EQ(list[2], GeoPosition(90, -180));
}

} // namespace
