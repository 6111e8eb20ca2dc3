#include "om_ui_test_support.h"

#include <om_ui/aerial_image.h>
#include <om_ui/reference_plane.h>

#include <GeographicLib/Geodesic.hpp>

#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <functional>

namespace {

using math_geo::CoordinateSystem;
using overmap_ui::AerialImage;
using overmap_ui::ReferencePlane;

constexpr double PI = 3.14159265358979323846;
const QGeoCoordinate SITE(48.2, 11.6);
// On the meridian of SITE, so that the bearing from SITE is exactly 0.
const QGeoCoordinate NORTH_OF_SITE(48.2005, 11.6);

/// The position @p metres from @p from along the geodesic of initial @p azimuth degrees.
QGeoCoordinate direct(const QGeoCoordinate& from, double azimuth, double metres)
{
    double lat = 0.0;
    double lon = 0.0;
    GeographicLib::Geodesic::WGS84().Direct(from.latitude(), from.longitude(), azimuth, metres, lat, lon);
    return QGeoCoordinate(lat, lon);
}

/// The geodesic length in metres between @p a and @p b.
double metresBetween(const QGeoCoordinate& a, const QGeoCoordinate& b)
{
    double metres = 0.0;
    GeographicLib::Geodesic::WGS84().Inverse(a.latitude(), a.longitude(), b.latitude(), b.longitude(),
                                             metres);
    return metres;
}

template <typename Row>
std::string rowName(const ::testing::TestParamInfo<Row>& info)
{
    std::string name = info.param.name;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

/// Runs @p change on @p object and gives the names of the signals it emitted, in order.
template <typename T>
std::string signalsOf(T& object, const std::function<void(T&)>& change)
{
    om_ui_test::SignalRecorder recorder(&object);
    change(object);
    return recorder.names().join(' ').toStdString();
}

// ---- ReferencePlane: which signals a change gives, in which order ----

/// The points a row starts from.
enum Points
{
    NONE, ///< all at their defaults
    FOUR, ///< SITE at (0, 0), 100 m at 30 degrees at (0, 100)
    FIT,  ///< FOUR, with the points definition in use
};

struct PlaneRow
{
    const char* name;
    Points points;
    std::function<void(ReferencePlane&)> change;
    const char* expected;
};

class PlaneSignals : public ::testing::TestWithParam<PlaneRow>
{};

TEST_P(PlaneSignals, FollowTheChangeInTheirOrder)
{
    ReferencePlane plane;
    if (GetParam().points != NONE) {
        plane.setPrimaryGPSPoint(SITE);
        plane.setSecondaryGPSPoint(direct(SITE, 30.0, 100.0));
        plane.setSecondaryXYPoint(QPointF(0.0, 100.0));
    }
    plane.setUsePointsDefinition(GetParam().points == FIT);
    EXPECT_EQ(signalsOf(plane, GetParam().change), GetParam().expected);
}

using P = ReferencePlane;
// clang-format off
INSTANTIATE_TEST_SUITE_P(ReferencePlane, PlaneSignals, ::testing::ValuesIn(std::vector<PlaneRow>{
    {"origin", NONE, [](P& p) { p.setPlaneOrigin(SITE); }, "planeOriginChanged planeChanged"},
    {"rotation", NONE, [](P& p) { p.setPlaneRotation(1e-6); }, "planeRotationChanged planeChanged"},
    {"GPS point, no fit", NONE, [](P& p) { p.setPrimaryGPSPoint(SITE); },
        "primaryGPSPointChanged planeChanged"},
    {"XY point, no fit", FOUR, [](P& p) { p.setPrimaryXYPoint({1.0, 0.0}); },
        "primaryXYPointChanged planeChanged"},
    {"primary GPS point refits", FIT, [](P& p) { p.setPrimaryGPSPoint(NORTH_OF_SITE); },
        "primaryGPSPointChanged planeOriginChanged planeRotationChanged planeChanged"},
    {"secondary GPS point refits", FIT, [](P& p) { p.setSecondaryGPSPoint(NORTH_OF_SITE); },
        "secondaryGPSPointChanged planeOriginChanged planeRotationChanged planeChanged"},
    {"primary XY point refits", FIT, [](P& p) { p.setPrimaryXYPoint({1.0, 0.0}); },
        "primaryXYPointChanged planeOriginChanged planeRotationChanged planeChanged"},
    {"secondary XY point refits", FIT, [](P& p) { p.setSecondaryXYPoint({5.0, 100.0}); },
        "secondaryXYPointChanged planeOriginChanged planeRotationChanged planeChanged"},
    {"points definition fits first", FOUR, [](P& p) { p.setUsePointsDefinition(true); },
        "planeOriginChanged planeRotationChanged usePointsDefinitionChanged planeChanged"},
    {"no fit to coinciding GPS points", NONE,
        [](P& p) { p.setSecondaryXYPoint({0, 1}); p.setUsePointsDefinition(true); },
        "secondaryXYPointChanged planeChanged usePointsDefinitionChanged planeChanged"},
    {"no fit to coinciding XY points", NONE,
        [](P& p) { p.setSecondaryGPSPoint(SITE); p.setUsePointsDefinition(true); },
        "secondaryGPSPointChanged planeChanged usePointsDefinitionChanged planeChanged"},
    {"image, no plane change", NONE, [](P& p) { p.setBackgroundImage(new AerialImage); },
        "backgroundImageChanged"},
    {"own image's path", NONE, [](P& p) { p.backgroundImage()->setImagePath("a.png"); }, "planeChanged"},
    {"view center", NONE, [](P& p) { p.setViewCenter(SITE); }, "viewCenterChanged planeChanged"},
    {"view rotation", NONE, [](P& p) { p.setViewRotation(-1.0); }, "viewRotationChanged planeChanged"},
    {"view scaling beyond the step", NONE, [](P& p) { p.setViewScaling(1.0 + 1e-11); },
        "viewScalingChanged planeChanged"},
    {"description", NONE, [](P& p) { p.setDescription("Track"); }, "descriptionChanged planeChanged"},
    {"clear: the image's change first, the view center twice", FIT, [](P& p) { p.clear(); },
        "planeChanged planeOriginChanged planeRotationChanged primaryGPSPointChanged "
        "secondaryGPSPointChanged primaryXYPointChanged secondaryXYPointChanged usePointsDefinitionChanged "
        "backgroundImageChanged viewCenterChanged viewRotationChanged viewScalingChanged viewCenterChanged "
        "descriptionChanged planeChanged"},
    {"same origin", NONE, [](P& p) { p.setPlaneOrigin({0.0, 0.0}); }, ""},
    {"same GPS point", FOUR, [](P& p) { p.setSecondaryGPSPoint(direct(SITE, 30.0, 100.0)); }, ""},
    {"same XY point", FOUR, [](P& p) { p.setSecondaryXYPoint({0.0, 100.0}); }, ""},
    {"same points definition", FIT, [](P& p) { p.setUsePointsDefinition(true); }, ""},
    {"same image", NONE, [](P& p) { p.setBackgroundImage(p.backgroundImage()); }, ""},
    {"view scaling within the step", NONE, [](P& p) { p.setViewScaling(1.0 + 5e-13); }, ""},
    {"same description", NONE, [](P& p) { p.setDescription(QString()); }, ""}}),
    rowName<PlaneRow>);
// clang-format on

// ---- ReferencePlane: the fit to two points ----

struct FitRow
{
    const char* name;
    CoordinateSystem system;
    double azimuth;    ///< degrees from north, primary to secondary GPS point
    QPointF secondary; ///< the secondary XY point, 100 m from the primary (10, 20)
    double rotation;   ///< degrees, worked out by hand
};

class PlaneFit : public ::testing::TestWithParam<FitRow>
{};

TEST_P(PlaneFit, PutsThePrimaryPointOnItsXYAndTheSecondaryInItsDirection)
{
    const FitRow& row = GetParam();
    ReferencePlane plane;
    plane.projectionPlane()->setXYCoordinateSystem(row.system);
    const QGeoCoordinate secondary = direct(SITE, row.azimuth, 100.0);
    plane.setPrimaryGPSPoint(SITE);
    plane.setSecondaryGPSPoint(secondary);
    plane.setPrimaryXYPoint(QPointF(10.0, 20.0));
    plane.setSecondaryXYPoint(row.secondary);
    // Without the points definition, the points leave the plane alone.
    EXPECT_EQ(plane.planeOrigin(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(plane.planeRotation(), 0.0);

    plane.setUsePointsDefinition(true);
    EXPECT_NEAR(plane.planeRotation(), row.rotation, 1e-3);
    const QPointF primary_xy = plane.projectToXY(SITE);
    EXPECT_NEAR(primary_xy.x(), 10.0, 1e-6);
    EXPECT_NEAR(primary_xy.y(), 20.0, 1e-6);
    // Scale comes from the plane, not from the pairs; over 100 m the two agree to millimetres.
    const QPointF secondary_xy = plane.projectToXY(secondary);
    EXPECT_NEAR(secondary_xy.x(), row.secondary.x(), 5e-3);
    EXPECT_NEAR(secondary_xy.y(), row.secondary.y(), 5e-3);
    EXPECT_EQ(plane.planeCoordinateSystem(), static_cast<int>(row.system));
}

INSTANTIATE_TEST_SUITE_P(
    ReferencePlane, PlaneFit,
    ::testing::ValuesIn(std::vector<FitRow>{
        {"north-up plane, globe at 30", CoordinateSystem::X_RIGHT_Y_FRONT, 30.0, {10.0, 120.0}, 30.0},
        {"north-up plane, globe at 300", CoordinateSystem::X_RIGHT_Y_FRONT, 300.0, {10.0, 120.0}, 300.0},
        {"plane east, globe north", CoordinateSystem::X_RIGHT_Y_FRONT, 0.0, {110.0, 20.0}, 270.0},
        {"forward-left plane, globe at 30", CoordinateSystem::X_FRONT_Y_LEFT, 30.0, {110.0, 20.0}, 30.0}}),
    rowName<FitRow>);

TEST(ReferencePlane, ProjectsThroughTheRotatedPlaneBothWays)
{
    ReferencePlane plane;
    plane.setPlaneOrigin(SITE);
    plane.setPlaneRotation(90.0);
    EXPECT_EQ(plane.projectionPlane()->getCenter(), math_geo::GeoPosition(48.2, 11.6));

    // 10 m north is (0, 10) in the unrotated picture; a quarter turn counter-clockwise: (-10, 0).
    const QGeoCoordinate north = direct(SITE, 0.0, 10.0);
    const QPointF xy = plane.projectToXY(north);
    EXPECT_NEAR(xy.x(), -10.0, 1e-6);
    EXPECT_NEAR(xy.y(), 0.0, 1e-9);
    EXPECT_NEAR(plane.projectToGPS(-10.0, 0.0).latitude(), north.latitude(), 1e-10);
    EXPECT_NEAR(plane.projectToGPS(QPointF(-10.0, 0.0)).longitude(), north.longitude(), 1e-10);
}

TEST(ReferencePlane, ClearResetsAllButTheXYPoints)
{
    ReferencePlane plane;
    plane.projectionPlane()->setXYCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    plane.setPrimaryGPSPoint(SITE);
    plane.setSecondaryGPSPoint(NORTH_OF_SITE);
    plane.setSecondaryXYPoint(QPointF(0.0, 100.0));
    plane.setUsePointsDefinition(true);
    plane.setViewCenter(SITE);
    plane.setViewRotation(10.0);
    plane.setViewScaling(2.0);
    plane.setDescription("Track");
    plane.backgroundImage()->setImagePath("a.png");
    QSignalSpy description(&plane, &ReferencePlane::descriptionChanged);
    ASSERT_TRUE(description.isValid());

    plane.clear();
    const QGeoCoordinate zero(0.0, 0.0);
    EXPECT_EQ(plane.planeOrigin(), zero);
    EXPECT_EQ(plane.planeRotation(), 0.0);
    EXPECT_EQ(plane.planeCoordinateSystem(), 0);
    EXPECT_TRUE(plane.primaryGPSPoint() == zero && plane.secondaryGPSPoint() == zero);
    EXPECT_EQ(plane.secondaryXYPoint(), QPointF(0.0, 100.0));
    EXPECT_FALSE(plane.usePointsDefinition());
    EXPECT_EQ(plane.viewCenter(), zero);
    EXPECT_EQ(plane.viewRotation(), 0.0);
    EXPECT_EQ(plane.viewScaling(), 1.0);
    EXPECT_EQ(plane.description(), QString());
    EXPECT_EQ(plane.backgroundImage()->imagePath(), QString());
    ASSERT_EQ(description.count(), 1);
    EXPECT_EQ(description.at(0).at(0).toString(), QString());
}

TEST(ReferencePlane, OwnsItsImageButHearsOnlyTheFirst)
{
    auto plane = std::make_unique<ReferencePlane>();
    QPointer<AerialImage> first = plane->backgroundImage();
    QPointer<AerialImage> second = new AerialImage;
    plane->setBackgroundImage(second);
    EXPECT_TRUE(first.isNull());

    QSignalSpy changed(plane.get(), &ReferencePlane::planeChanged);
    ASSERT_TRUE(changed.isValid());
    second->setImagePath("b.png");
    EXPECT_EQ(changed.count(), 0);
    plane.reset();
    EXPECT_TRUE(second.isNull());
}

// ---- AerialImage: scale and north from two points ----

struct GeoreferenceRow
{
    const char* name;
    QGeoCoordinate primary_gps;
    QGeoCoordinate secondary_gps;
    QPointF secondary_xy; ///< the primary XY point is (50, 50), y growing downwards
    double scaling;
    double north_rotation;
};

class Georeference : public ::testing::TestWithParam<GeoreferenceRow>
{};

TEST_P(Georeference, GivesScalingAndNorthRotation)
{
    const GeoreferenceRow& row = GetParam();
    AerialImage image;
    image.setPoints(row.primary_gps, QPointF(50.0, 50.0), row.secondary_gps, row.secondary_xy);
    EXPECT_NEAR(image.scaling(), row.scaling, 1e-9 * row.scaling);
    EXPECT_NEAR(image.northRotation(), row.north_rotation, 1e-6);
    EXPECT_EQ(image.rotationCenter(), QPointF(50.0, 50.0));
}

// Along the equator a geodesic of d degrees is a·d·π/180 metres long.
constexpr double EQUATOR_METRES_PER_DEGREE = 6378137.0 * PI / 180.0;
// Pole to pole along a meridian of WGS 84.
constexpr double HALF_MERIDIAN_METRES = 20003931.4586;
// Where the rhumb line from 0/0 at 45 degrees reaches one degree of longitude (inverse Gudermannian).
const double RHUMB_45_LATITUDE = (2.0 * std::atan(std::exp(PI / 180.0)) - PI / 2.0) * 180.0 / PI;
const QGeoCoordinate NORTH_50 = direct(SITE, 0.0, 50.0);
const QGeoCoordinate SOUTH_50 = direct(SITE, 180.0, 50.0);
const QGeoCoordinate EQUATOR(0.0, 10.0);
const QGeoCoordinate DATELINE_WEST(0.0, -179.5);
const QGeoCoordinate DATELINE_EAST(RHUMB_45_LATITUDE, 179.5);

// clang-format off
INSTANTIATE_TEST_SUITE_P(AerialImage, Georeference, ::testing::ValuesIn(std::vector<GeoreferenceRow>{
    {"up, north", SITE, NORTH_50, {50.0, -50.0}, 0.5, 0.0},
    {"right, north", SITE, NORTH_50, {150.0, 50.0}, 0.5, -90.0},
    {"up-right, north", SITE, NORTH_50, {150.0, -50.0}, 50.0 / std::sqrt(2.0) / 100.0, -45.0},
    {"left, south", SITE, SOUTH_50, {-50.0, 50.0}, 0.5, 270.0},
    {"down, south", SITE, SOUTH_50, {50.0, 150.0}, 0.5, 0.0},
    {"up, east", EQUATOR, {0.0, 10.001}, {50.0, -50.0}, EQUATOR_METRES_PER_DEGREE * 1e-5, 90.0},
    {"up, west", EQUATOR, {0.0, 9.999}, {50.0, -50.0}, EQUATOR_METRES_PER_DEGREE * 1e-5, 270.0},
    {"up, east over the antimeridian", {0.0, 179.0}, {0.0, -179.0}, {50.0, -50.0},
        EQUATOR_METRES_PER_DEGREE * 0.02, 90.0},
    {"up, north-west over the antimeridian", DATELINE_WEST, DATELINE_EAST, {50.0, -50.0},
        metresBetween(DATELINE_WEST, DATELINE_EAST) / 100.0, 315.0},
    {"up, half a turn east stays east", {0.0, 0.0}, {0.0, 180.0}, {50.0, -50.0},
        HALF_MERIDIAN_METRES / 100.0, 90.0},
    {"both GPS points at 0, 0", {0.0, 0.0}, {0.0, 0.0}, {150.0, 50.0}, 1.0, -90.0},
    {"coinciding XY points", SITE, direct(SITE, 90.0, 50.0), {50.0, 50.0}, 1.0, 0.0},
    // Offsets of 2^-31 and 2^-21, exact at 50: below 1e-9 nothing counts, below 1e-6 only the scale.
    {"XY points too close for a scale", SITE, NORTH_50, {50.0 + 0x1p-31, 50.0}, 1.0, 0.0},
    {"XY points too close for a direction", SITE, NORTH_50, {50.0 + 0x1p-21, 50.0}, 50.0 * 0x1p21, 0.0}}),
    rowName<GeoreferenceRow>);
// clang-format on

// ---- AerialImage: which signals a change gives, in which order ----

struct ImageRow
{
    const char* name;
    std::function<void(AerialImage&)> change;
    const char* expected;
};

class ImageSignals : public ::testing::TestWithParam<ImageRow>
{};

TEST_P(ImageSignals, FollowTheChangeInTheirOrder)
{
    AerialImage image;
    image.setPoints(SITE, QPointF(0.0, 0.0), NORTH_OF_SITE, QPointF(0.0, -100.0));
    image.setImagePath("a.png");
    EXPECT_EQ(signalsOf(image, GetParam().change), GetParam().expected);
}

using A = AerialImage;
// clang-format off
INSTANTIATE_TEST_SUITE_P(AerialImage, ImageSignals, ::testing::ValuesIn(std::vector<ImageRow>{
    {"path", [](A& i) { i.setImagePath("b.png"); }, "imagePathChanged imageChanged"},
    {"GPS point that turns the image", [](A& i) { i.setSecondaryGPSPoint(direct(SITE, 90.0, 50.0)); },
        "secondaryGPSPointChanged scalingChanged northRotationChanged imageChanged"},
    {"GPS point on the same line", [](A& i) { i.setPrimaryGPSPoint({48.1995, 11.6}); },
        "primaryGPSPointChanged scalingChanged imageChanged"},
    {"XY point that turns the image", [](A& i) { i.setPrimaryXYPoint({-100.0, 0.0}); },
        "primaryXYPointChanged scalingChanged northRotationChanged imageChanged"},
    {"XY point on the same line", [](A& i) { i.setSecondaryXYPoint({0.0, -100.0 + 1e-9}); },
        "secondaryXYPointChanged scalingChanged imageChanged"},
    {"all points, unchanged", [](A& i) { i.setPoints(SITE, {0.0, 0.0}, NORTH_OF_SITE, {0.0, -100.0}); },
        "primaryGPSPointChanged secondaryGPSPointChanged primaryXYPointChanged secondaryXYPointChanged "
        "scalingChanged imageChanged"},
    {"clear without northRotationChanged", [](A& i) { i.setPrimaryXYPoint({-100.0, 0.0}); i.clear(); },
        "primaryXYPointChanged scalingChanged northRotationChanged imageChanged imagePathChanged "
        "primaryGPSPointChanged secondaryGPSPointChanged primaryXYPointChanged secondaryXYPointChanged "
        "scalingChanged imageChanged"},
    {"same path", [](A& i) { i.setImagePath("a.png"); }, ""},
    {"GPS point 0.00005 m away", [](A& i) { i.setPrimaryGPSPoint(direct(SITE, 45.0, 0.00005)); }, ""},
    {"same XY point", [](A& i) { i.setSecondaryXYPoint({0.0, -100.0}); }, ""}}),
    rowName<ImageRow>);
// clang-format on

TEST(AerialImage, ClearResetsEverything)
{
    AerialImage image;
    image.setPoints(SITE, QPointF(1.0, 2.0), direct(SITE, 90.0, 50.0), QPointF(1.0, -98.0));
    image.setImagePath("a.png");
    image.clear();
    EXPECT_EQ(image.imagePath(), QString());
    EXPECT_TRUE(image.primaryGPSPoint() == QGeoCoordinate(0.0, 0.0) &&
                image.secondaryGPSPoint() == QGeoCoordinate(0.0, 0.0));
    EXPECT_TRUE(image.primaryXYPoint().isNull() && image.secondaryXYPoint().isNull());
    EXPECT_EQ(image.scaling(), 1.0);
    EXPECT_EQ(image.northRotation(), 0.0);
}

TEST(AerialImage, NonsenseCoordinatesGiveTheNeutralScale)
{
    AerialImage image;
    // Qt keeps out-of-range values as not-a-number; the geodesic solver then gives no distance.
    image.setPoints(QGeoCoordinate(), QPointF(0.0, 0.0), QGeoCoordinate(95.0, 400.0), QPointF(0.0, -100.0));
    EXPECT_EQ(image.scaling(), 1.0);
}

} // namespace
