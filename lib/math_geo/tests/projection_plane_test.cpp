#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>
#include <math_geo/projection_plane.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using math_geo::ProjectionPlane;

constexpr CoordinateSystem SUPPORTED[] = {CoordinateSystem::X_RIGHT_Y_FRONT, CoordinateSystem::X_FRONT_Y_LEFT,
                                          CoordinateSystem::X_RIGHT_Y_BACK, CoordinateSystem::DIN70000};

TEST(ProjectionPlaneScales, EquatorScalesAreTheRadiiPerDegree)
{
    const ProjectionPlane plane;
    EXPECT_EQ(plane.getCenter(), GeoPosition(0, 0));
    EXPECT_EQ(plane.getRotation(), 0.0);
    EXPECT_EQ(plane.getXYCoordinateSystem(), CoordinateSystem::X_RIGHT_Y_FRONT);
    EXPECT_DOUBLE_EQ(plane.getLatitudeScale(), 6335439.327292843 * math_geo::earth::DEG_TO_RAD);
    EXPECT_DOUBLE_EQ(plane.getLongitudeScale(), 6378137.0 * math_geo::earth::DEG_TO_RAD);
    EXPECT_NEAR(plane.getLatitudeScale(), 110574.28, 0.01);
    EXPECT_NEAR(plane.getLongitudeScale(), 111319.49, 0.01);
}

TEST(ProjectionPlaneScales, ScalesFollowTheCentreAndNothingElse)
{
    ProjectionPlane plane(GeoPosition(48, 11), 30.0, CoordinateSystem::DIN70000);
    EXPECT_DOUBLE_EQ(plane.getLatitudeScale(), math_geo::meridianRadius(48) * M_PI / 180.0);
    EXPECT_DOUBLE_EQ(plane.getLongitudeScale(),
                     std::cos(48 * M_PI / 180.0) * math_geo::primeVerticalRadius(48) * M_PI / 180.0);
    const double lat_scale = plane.getLatitudeScale();
    plane.setRotation(400.0); // stored as given
    plane.setXYCoordinateSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    EXPECT_EQ(plane.getRotation(), 400.0);
    EXPECT_EQ(plane.getLatitudeScale(), lat_scale);
    plane.setCenter(GeoPosition(-20, 11));
    EXPECT_DOUBLE_EQ(plane.getLatitudeScale(), math_geo::meridianRadius(-20) * M_PI / 180.0);
}

struct CentreWalk
{
    const char* name;
    std::vector<GeoPosition> centres;
};

class ProjectionPlaneCentreWalk : public ::testing::TestWithParam<CentreWalk>
{};

// However the centre got where it is, the scales are those of the radii there, to the bit.
TEST_P(ProjectionPlaneCentreWalk, ScalesAreThoseOfTheLastCentreExactly)
{
    ProjectionPlane plane(GeoPosition(0, 0), 15.0);
    for (const GeoPosition& centre : GetParam().centres)
        plane.setCenter(centre);
    const double latitude = GetParam().centres.back().latitude;
    const double phi = latitude * math_geo::earth::DEG_TO_RAD;
    EXPECT_EQ(plane.getLatitudeScale(), math_geo::meridianRadius(latitude) * math_geo::earth::DEG_TO_RAD);
    EXPECT_EQ(plane.getLongitudeScale(),
              std::cos(phi) * math_geo::primeVerticalRadius(latitude) * math_geo::earth::DEG_TO_RAD);
    EXPECT_EQ(plane.getCenter(), GetParam().centres.back());
}

INSTANTIATE_TEST_SUITE_P(
    Walks, ProjectionPlaneCentreWalk,
    ::testing::Values(CentreWalk{"OnlyTheLongitudeMovesFromTheEquator", {{0, 11}, {0, 12.5}}},
                      CentreWalk{"OnlyTheLongitudeMoves", {{48.1, 11}, {48.1, 11.0001}, {48.1, 11.0002}}},
                      CentreWalk{"LatitudeMovesAndComesBack", {{48.1, 11}, {48.2, 11}, {48.1, 11.5}}},
                      CentreWalk{"SouthToNorth", {{-33.9, 18.4}, {-33.9, 18.5}, {52.5, 13.4}}},
                      CentreWalk{"NegativeZeroLatitude", {{10, 0}, {-0.0, 5}}}),
    [](const ::testing::TestParamInfo<CentreWalk>& info) { return info.param.name; });

TEST(ProjectionPlaneScales, InvalidCentreReportsAndIsStoredAllTheSame)
{
    uni_testing::AssertCapture asserts;
    ProjectionPlane plane;
    plane.setCenter(GeoPosition(95, 10));
    EXPECT_TRUE(asserts.fired("center.valid()"));
    EXPECT_EQ(plane.getCenter(), GeoPosition(95, 10));
}

TEST(ProjectionPlaneMapping, CentreMapsToExactlyZeroWhateverTheRotation)
{
    for (CoordinateSystem system : SUPPORTED)
        for (double rotation : {0.0, 13.0, 90.0, 271.5, -45.0}) {
            const ProjectionPlane plane(GeoPosition(47.3, 8.9), rotation, system);
            const Point2D p = plane.toPlane(GeoPosition(47.3, 8.9));
            EXPECT_EQ(p.x, 0.0);
            EXPECT_EQ(p.y, 0.0);
            EXPECT_EQ(p.getCoordinateSystem(), system);
        }
}

TEST(ProjectionPlaneMapping, AxesOfTheSystemsAtRotationZero)
{
    const GeoPosition centre(0, 0);
    ProjectionPlane plane(centre, 0.0, CoordinateSystem::X_FRONT_Y_LEFT);
    const double one_metre_north = 1.0 / plane.getLatitudeScale();
    const double one_metre_east = 1.0 / plane.getLongitudeScale();
    EXPECT_EQ(plane.toPlane(GeoPosition(one_metre_north, 0)),
              Point2D(1, 0, CoordinateSystem::X_FRONT_Y_LEFT));
    EXPECT_EQ(plane.toPlane(GeoPosition(0, one_metre_east)),
              Point2D(0, -1, CoordinateSystem::X_FRONT_Y_LEFT));
    plane.setXYCoordinateSystem(CoordinateSystem::X_RIGHT_Y_BACK);
    EXPECT_EQ(plane.toPlane(GeoPosition(one_metre_north, one_metre_east)),
              Point2D(1, -1, CoordinateSystem::X_RIGHT_Y_BACK));
    // Rotation is applied in the plane's system: +90 turns north to west in X_RIGHT_Y_FRONT...
    const ProjectionPlane turned(centre, 90.0);
    EXPECT_EQ(turned.toPlane(GeoPosition(one_metre_north, 0)), Point2D(-1, 0));
    // ...and the other way round in DIN70000.
    const ProjectionPlane din(centre, 90.0, CoordinateSystem::DIN70000);
    EXPECT_EQ(din.toPlane(GeoPosition(one_metre_north, 0)), Point2D(0, -1, CoordinateSystem::DIN70000));
}

TEST(ProjectionPlaneMapping, RoundTripOverSystemsRotationsAndSites)
{
    const GeoPosition sites[] = {{0, 0},         {48.137, 11.575}, {-33.9, 151.2}, {64.1, -21.9},
                                 {-54.8, -68.3}, {35.0, 179.9},    {1e-9, -179.99}};
    for (const GeoPosition& site : sites)
        for (CoordinateSystem system : SUPPORTED)
            for (double rotation = -180.0; rotation <= 540.0; rotation += 22.7) {
                const ProjectionPlane plane(site, rotation, system);
                for (double north = -2000; north <= 2000; north += 800)
                    for (double east = -2000; east <= 2000; east += 800) {
                        const GeoPosition p(site.latitude + north / 111000.0,
                                            site.longitude + east / 80000.0 * std::cos(site.latitude / 57.3));
                        if (!p.valid())
                            continue;
                        const GeoPosition back = plane.toGeoPosition(plane.toPlane(p));
                        EXPECT_NEAR(back.latitude, p.latitude, 1e-12);
                        EXPECT_NEAR(back.longitude, p.longitude, 1e-12);
                    }
            }
}

TEST(ProjectionPlaneMapping, PlaneIsMetricNearTheCentre)
{
    const GeoPosition centre(52.5, 13.4);
    const ProjectionPlane plane(centre, 33.0, CoordinateSystem::X_FRONT_Y_LEFT);
    for (double bearing = 0; bearing < 360; bearing += 45) {
        const GeoPosition p = math_geo::destinationPoint(centre, bearing, 300.0);
        const double planar = plane.toPlane(p).length();
        EXPECT_NEAR(planar, centre.distanceTo(p, math_geo::DistanceMethod::GEODESIC), 0.05) << bearing;
    }
}

TEST(ProjectionPlaneMapping, SaeReportsBothWaysAndStaysInTheInternalFrame)
{
    uni_testing::AssertCapture asserts;
    const ProjectionPlane plane(GeoPosition(10, 10), 0.0, CoordinateSystem::SAE);
    const ProjectionPlane internal(GeoPosition(10, 10), 0.0);
    const GeoPosition p(10.001, 10.002);
    const Point2D q = plane.toPlane(p);
    EXPECT_TRUE(asserts.fired("", "Point2D::toCoordSystem() - unsupported conversion"));
    EXPECT_EQ(q, internal.toPlane(p));
    asserts.clear();
    const GeoPosition back = plane.toGeoPosition(Point2D(q.x, q.y, CoordinateSystem::SAE));
    EXPECT_TRUE(asserts.fired("", "Point2D::toCoordSystem() - unsupported conversion"));
    EXPECT_EQ(back, p);
}

TEST(ProjectionPlaneMapping, ResultIsNormalisedPastThePole)
{
    const ProjectionPlane plane(GeoPosition(89.99, 0), 0.0);
    const GeoPosition p = plane.toGeoPosition(Point2D(0, 2 * 0.01 * plane.getLatitudeScale()));
    EXPECT_NEAR(p.latitude, 89.99, 1e-9);
    EXPECT_NEAR(p.longitude, 180.0, 1e-9);
}

void expectFitRecovers(const ProjectionPlane& truth, const GeoPosition& geo1, const GeoPosition& geo2,
                       double angle_tolerance, double centre_tolerance)
{
    const CoordinateSystem system = truth.getXYCoordinateSystem();
    const Point2D xy1 = truth.toPlane(geo1);
    const Point2D xy2 = truth.toPlane(geo2);
    ProjectionPlane fitted(GeoPosition(0, 0), 77.0, system);
    fitted.defineByPoints(xy1, xy2, geo1, geo2);
    EXPECT_EQ(fitted.getXYCoordinateSystem(), system);
    // The fit answers in [0, 360]: a true 0 may come back as a hair below 360.
    EXPECT_NEAR(std::remainder(fitted.getRotation() - truth.getRotation(), 360.0), 0.0, angle_tolerance);
    EXPECT_GE(fitted.getRotation(), 0.0);
    EXPECT_LE(fitted.getRotation(), 360.0);
    EXPECT_NEAR(fitted.getCenter().latitude, truth.getCenter().latitude, centre_tolerance);
    EXPECT_NEAR(fitted.getCenter().longitude, truth.getCenter().longitude, centre_tolerance);
    // geo1 lands on xy1; geo2 lies in the direction of xy2.
    const Point2D at1 = fitted.toPlane(geo1);
    EXPECT_NEAR(at1.x, xy1.x, 1e-5);
    EXPECT_NEAR(at1.y, xy1.y, 1e-5);
    // Measured with atan2: the acos of angleTo has no answer for a cosine rounded past 1.
    const Point2D wanted = xy2 - xy1;
    const Point2D got = fitted.toPlane(geo2) - xy1;
    EXPECT_NEAR(std::atan2(wanted.x * got.y - wanted.y * got.x, wanted.x * got.x + wanted.y * got.y) *
                    57.29577951308232,
                0.0, angle_tolerance);
}

const CoordinateSystem FITTABLE[] = {CoordinateSystem::X_RIGHT_Y_FRONT, CoordinateSystem::X_FRONT_Y_LEFT,
                                     CoordinateSystem::X_RIGHT_Y_BACK};

TEST(ProjectionPlaneFit, DefineByPointsRecoversAPlaneCentredOnTheFirstPoint)
{
    for (CoordinateSystem system : FITTABLE)
        for (double rotation : {0.0, 10.0, 123.4, 270.0, 359.0}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(system) << " " << rotation);
            const GeoPosition geo1(48.2031, 11.6012);
            expectFitRecovers(ProjectionPlane(geo1, rotation, system), geo1, GeoPosition(48.1987, 11.5903),
                              1e-6, 1e-12);
        }
}

TEST(ProjectionPlaneFit, DefineByPointsRecoversAPlaneCentredElsewhereToTheChangeOfScale)
{
    // The globe's direction is taken with the scales at geo1: over 350 m at 48 degrees that is worth
    // about 0.002 degrees of rotation and a centimetre at the centre.
    for (CoordinateSystem system : FITTABLE)
        for (double rotation : {0.0, 10.0, 123.4, 270.0, 359.0}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(system) << " " << rotation);
            expectFitRecovers(ProjectionPlane(GeoPosition(48.2, 11.6), rotation, system),
                              GeoPosition(48.2031, 11.6012), GeoPosition(48.1987, 11.5903), 0.005, 5e-7);
        }
}

TEST(ProjectionPlaneFit, InDin70000TheFittedRotationRunsTheOtherWay)
{
    // The fit adds rotations as X_FRONT_Y_LEFT does, while a DIN 70000 plane turns its picture the
    // other way: a plane turned by r is fitted as 360 - r, with the centre still right. Kept as is.
    const GeoPosition geo1(48.2031, 11.6012);
    const GeoPosition geo2(48.1987, 11.5903);
    const ProjectionPlane truth(geo1, 10.0, CoordinateSystem::DIN70000);
    ProjectionPlane fitted(GeoPosition(0, 0), 0.0, CoordinateSystem::DIN70000);
    fitted.defineByPoints(truth.toPlane(geo1), truth.toPlane(geo2), geo1, geo2);
    EXPECT_NEAR(fitted.getRotation(), 350.0, 1e-6);
    EXPECT_EQ(fitted.getCenter(), geo1);
}

TEST(ProjectionPlaneFit, ScaleNeverComesFromThePairs)
{
    const GeoPosition geo1(30.0, 20.0);
    const GeoPosition geo2(30.001, 20.0); // about 111 m north
    ProjectionPlane plane;
    plane.defineByPoints(Point2D(5, 5), Point2D(5, 1005), geo1, geo2); // a kilometre apart
    EXPECT_NEAR(std::remainder(plane.getRotation(), 360.0), 0.0, 1e-6);
    const Point2D at1 = plane.toPlane(geo1);
    EXPECT_NEAR(at1.x, 5.0, 1e-5);
    EXPECT_NEAR(at1.y, 5.0, 1e-5);
    const Point2D at2 = plane.toPlane(geo2);
    EXPECT_NEAR(at2.x, 5.0, 1e-5);
    EXPECT_NEAR(at2.y - 5.0, 0.001 * plane.getLatitudeScale(), 1e-5);
}

TEST(ProjectionPlaneFit, CoincidentXYPointsGiveNotANumberRotation)
{
    uni_testing::AssertCapture asserts;
    ProjectionPlane plane;
    plane.defineByPoints(Point2D(1, 1), Point2D(1, 1), GeoPosition(1, 1), GeoPosition(1.1, 1));
    EXPECT_TRUE(std::isnan(plane.getRotation()));
    EXPECT_TRUE(asserts.fired("center.valid()")) << "the not-a-number centre that follows is reported";
}

TEST(ProjectionPlaneComparison, CentreAndRotationToleranceSystemIgnored)
{
    const ProjectionPlane a(GeoPosition(10, 20), 45.0, CoordinateSystem::X_RIGHT_Y_FRONT);
    EXPECT_FALSE(a !=
                 ProjectionPlane(GeoPosition(10 + 0.5e-9, 20), 45.0 + 0.9e-6, CoordinateSystem::DIN70000));
    EXPECT_TRUE(a != ProjectionPlane(GeoPosition(10 + 2e-9, 20), 45.0));
    EXPECT_TRUE(a != ProjectionPlane(GeoPosition(10, 20), 45.0 + 1.1e-6));
    EXPECT_TRUE(a != ProjectionPlane(GeoPosition(10, 20), 45.0 - 1.1e-6));
}

} // namespace
