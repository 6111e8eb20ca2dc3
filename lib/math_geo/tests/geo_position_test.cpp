#include <math_geo/earth_model.h>
#include <math_geo/geo_position.h>
#include <math_geo/geo_tools.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace {

using math_geo::DistanceMethod;
using math_geo::GeoPosition;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

TEST(EarthModel, ConstantsAreTheTabledValuesNotDerivedOnes)
{
    EXPECT_EQ(math_geo::earth::SEMI_MAJOR_AXIS, 6378137.0);
    EXPECT_EQ(math_geo::earth::FLATTENING, 1.0 / 298.257223563);
    EXPECT_EQ(math_geo::earth::ECCENTRICITY_SQUARED, 0.0066943799901378);
    // The stored e² is not f(2 - f); the difference is part of every figure downstream.
    const double f = math_geo::earth::FLATTENING;
    EXPECT_NE(math_geo::earth::ECCENTRICITY_SQUARED, f * (2.0 - f));
    EXPECT_EQ(math_geo::earth::ONE_MINUS_ECCENTRICITY_SQUARED, 0.9933056200098622);
    EXPECT_EQ(math_geo::earth::SEMI_MAJOR_AXIS_TIMES_ONE_MINUS_E2, 6335439.327292843);
    EXPECT_EQ(math_geo::earth::DEG_TO_RAD, 0.017453292519943295);
    EXPECT_EQ(math_geo::earth::RAD_TO_DEG, 57.29577951308232);
}

TEST(GeoPositionValidity, BoundsAreIncludedNotANumberAndInfinityFail)
{
    EXPECT_TRUE(GeoPosition().valid());
    EXPECT_TRUE(GeoPosition(90, 180).valid());
    EXPECT_TRUE(GeoPosition(-90, -180).valid());
    EXPECT_FALSE(GeoPosition(90.0000001, 0).valid());
    EXPECT_FALSE(GeoPosition(0, -180.0000001).valid());
    EXPECT_FALSE(GeoPosition(NaN, 0).valid());
    EXPECT_FALSE(GeoPosition(0, NaN).valid());
    EXPECT_FALSE(GeoPosition(INF, 0).valid());
    EXPECT_FALSE(GeoPosition(0, -INF).valid());
}

TEST(GeoPositionNormalized, CrossingAPoleFoldsLatitudeAndTurnsLongitudeByHalf)
{
    struct Case
    {
        double lat, lon, want_lat, want_lon;
    };
    const Case cases[] = {
        {100, 10, 80, -170}, {-100, 10, -80, -170}, {45, 190, 45, -170}, {0, -190, 0, 170},
        {360, 0, 0, 0},      {-360, 0, 0, 0},       {270, 0, -90, 180},  {300, 20, 60, 20},
        {-300, 20, -60, 20}, {450, 0, 90, 0},       {90, 180, 90, 180},  {-90, -180, -90, -180},
        {190, 0, -10, 180},  {-190, 0, 10, 180},    {725, 5, 5, 5},      {0, 540, 0, 180},
    };
    // Past three quarters of a turn the fold mirrors the latitude (300 gives 60, not -60); kept as is.
    for (const Case& c : cases) {
        const GeoPosition p = GeoPosition::normalized(c.lat, c.lon);
        EXPECT_NEAR(p.latitude, c.want_lat, 1e-12) << c.lat << "/" << c.lon;
        EXPECT_NEAR(p.longitude, c.want_lon, 1e-12) << c.lat << "/" << c.lon;
        EXPECT_TRUE(p.valid()) << c.lat << "/" << c.lon;
    }
}

TEST(GeoPositionDistance, GeodesicMatchesPublishedReferenceLines)
{
    // Flinders Peak to Buninyong, the classic test line of Geoscience Australia: 54972.271 m.
    const GeoPosition flinders(-(37 + 57 / 60.0 + 3.72030 / 3600.0), 144 + 25 / 60.0 + 29.52440 / 3600.0);
    const GeoPosition buninyong(-(37 + 39 / 60.0 + 10.15610 / 3600.0), 143 + 55 / 60.0 + 35.38390 / 3600.0);
    EXPECT_NEAR(flinders.distanceTo(buninyong, DistanceMethod::GEODESIC), 54972.271, 0.001);
    // WGS 84 meridian quadrant, equator to pole: 10001965.729 m.
    EXPECT_NEAR(GeoPosition(0, 0).distanceTo(GeoPosition(90, 0), DistanceMethod::GEODESIC), 10001965.729,
                0.001);
    // JFK to LHR as GeographicLib's own example prints it: 5551.76 km.
    EXPECT_NEAR(GeoPosition(40.6, -73.8).distanceTo(GeoPosition(51.6, -0.5), DistanceMethod::GEODESIC) /
                    1000.0,
                5551.76, 0.005);
}

TEST(GeoPositionDistance, HaversineUsesTheGaussianRadiusOfTheFirstPositionAndIsNotSymmetric)
{
    const GeoPosition a(0, 0);
    const GeoPosition b(60, 0);
    const double sphere_angle = 60.0 * math_geo::earth::DEG_TO_RAD;
    EXPECT_NEAR(a.distanceTo(b, DistanceMethod::HAVERSINE), sphere_angle * math_geo::gaussianRadius(0), 1e-6);
    EXPECT_NEAR(b.distanceTo(a, DistanceMethod::HAVERSINE), sphere_angle * math_geo::gaussianRadius(60),
                1e-6);
    EXPECT_NE(a.distanceTo(b, DistanceMethod::HAVERSINE), b.distanceTo(a, DistanceMethod::HAVERSINE));
    // Any method value but GEODESIC measures with haversine.
    EXPECT_EQ(a.distanceTo(b, static_cast<DistanceMethod>(7)), a.distanceTo(b, DistanceMethod::HAVERSINE));
}

TEST(GeoPositionDistance, MethodsAgreeOverATestSite)
{
    const GeoPosition start(48.1, 11.5);
    for (double bearing = 0; bearing < 360; bearing += 30) {
        const GeoPosition end = math_geo::destinationPoint(start, bearing, 500.0);
        const double geodesic = start.distanceTo(end, DistanceMethod::GEODESIC);
        const double haversine = start.distanceTo(end, DistanceMethod::HAVERSINE);
        EXPECT_NEAR(haversine, 500.0, 1e-6) << bearing;
        EXPECT_NEAR(geodesic, haversine, 2.0) << bearing; // sphere against ellipsoid over half a km
    }
    EXPECT_EQ(start.distanceTo(start, DistanceMethod::GEODESIC), 0.0);
    EXPECT_EQ(start.distanceTo(start, DistanceMethod::HAVERSINE), 0.0);
}

TEST(GeoPositionBearing, InitialBearingInMinus180To180)
{
    const GeoPosition o(0, 0);
    EXPECT_NEAR(o.bearingTo(GeoPosition(1, 0)), 0.0, 1e-12);
    EXPECT_NEAR(o.bearingTo(GeoPosition(0, 1)), 90.0, 1e-12);
    EXPECT_NEAR(o.bearingTo(GeoPosition(-1, 0)), 180.0, 1e-12);
    EXPECT_NEAR(o.bearingTo(GeoPosition(0, -1)), -90.0, 1e-12);
    EXPECT_NEAR(math_geo::wrapToRange(o.bearingTo(GeoPosition(-1, -1)), 0, 360), 225.0, 0.01);
    // Great circle, not rhumb line: eastwards at 60 degrees north starts north of east.
    EXPECT_LT(GeoPosition(60, 0).bearingTo(GeoPosition(60, 20)), 90.0 - 5.0);
}

TEST(GeoPositionComparison, ToleranceIsOneNanodegreeAndNotANumberIsNeverEqual)
{
    EXPECT_TRUE(GeoPosition(10, 20) == GeoPosition(10 + 0.9e-9, 20 - 0.9e-9));
    EXPECT_FALSE(GeoPosition(10, 20) == GeoPosition(10 + 1.1e-9, 20));
    EXPECT_FALSE(GeoPosition(10, 20) == GeoPosition(10, 20 + 1.1e-9));
    EXPECT_TRUE(GeoPosition(10, 20) != GeoPosition(10, 20 + 1.1e-9));
    const GeoPosition nan(NaN, 0);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
}

TEST(GeoPositionText, PrecisionEightDegreeSignAndStreamKeepsThePrecision)
{
    std::ostringstream os;
    os << GeoPosition(48.123456789, -11.5);
    EXPECT_EQ(os.str(), "GeoPosition(lat 48.123457\xC2\xB0, long -11.5\xC2\xB0)");
    EXPECT_EQ(os.precision(), 8);
}

} // namespace
