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
using om_ui_test::SignalRecorder;
using overmap_ui::AerialImage;
using overmap_ui::ReferencePlane;

constexpr double PI = 3.14159265358979323846;
const QGeoCoordinate SITE(48.2, 11.6);

/// The position @p metres from @p from along the geodesic of initial @p azimuth degrees.
QGeoCoordinate direct(const QGeoCoordinate& from, double azimuth, double metres)
{
    double lat = 0.0;
    double lon = 0.0;
    GeographicLib::Geodesic::WGS84().Direct(from.latitude(), from.longitude(), azimuth, metres, lat, lon);
    return QGeoCoordinate(lat, lon);
}

std::string joined(const QStringList& names)
{
    return names.join(' ').toStdString();
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

// ---- ReferencePlane: which signals a change gives, in which order ----

struct PlaneRow
{
    const char* name;
    std::function<void(ReferencePlane&)> prepare;
    std::function<void(ReferencePlane&)> change;
    QStringList expected;
};

class PlaneSignals : public ::testing::TestWithParam<PlaneRow>
{};

TEST_P(PlaneSignals, FollowTheChangeInTheirOrder)
{
    ReferencePlane plane;
    if (GetParam().prepare)
        GetParam().prepare(plane);
    SignalRecorder recorder(&plane);
    GetParam().change(plane);
    EXPECT_EQ(joined(recorder.names()), joined(GetParam().expected));
}

void fourPoints(ReferencePlane& p)
{
    p.setPrimaryGPSPoint(SITE);
    p.setSecondaryGPSPoint(direct(SITE, 30.0, 100.0));
    p.setSecondaryXYPoint(QPointF(0.0, 100.0));
}

const QStringList FIT{"planeOriginChanged", "planeRotationChanged"};

INSTANTIATE_TEST_SUITE_P(
    ReferencePlane, PlaneSignals,
    ::testing::Values(
        PlaneRow{
            "origin", {}, [](auto& p) { p.setPlaneOrigin(SITE); }, {"planeOriginChanged", "planeChanged"}},
        PlaneRow{"rotation",
                 {},
                 [](auto& p) { p.setPlaneRotation(1e-6); },
                 {"planeRotationChanged", "planeChanged"}},
        PlaneRow{"GPS point without points definition",
                 {},
                 [](auto& p) { p.setPrimaryGPSPoint(SITE); },
                 {"primaryGPSPointChanged", "planeChanged"}},
        PlaneRow{"XY point without points definition",
                 fourPoints,
                 [](auto& p) { p.setPrimaryXYPoint(QPointF(1.0, 0.0)); },
                 {"primaryXYPointChanged", "planeChanged"}},
        PlaneRow{"secondary GPS point refits",
                 [](auto& p) {
                     fourPoints(p);
                     p.setUsePointsDefinition(true);
                 },
                 [](auto& p) { p.setSecondaryGPSPoint(direct(SITE, 40.0, 100.0)); },
                 QStringList{"secondaryGPSPointChanged"} + FIT + QStringList{"planeChanged"}},
        PlaneRow{"primary GPS point refits",
                 [](auto& p) {
                     fourPoints(p);
                     p.setUsePointsDefinition(true);
                 },
                 [](auto& p) { p.setPrimaryGPSPoint(direct(SITE, 0.0, 10.0)); },
                 QStringList{"primaryGPSPointChanged"} + FIT + QStringList{"planeChanged"}},
        PlaneRow{"secondary XY point refits",
                 [](auto& p) {
                     fourPoints(p);
                     p.setUsePointsDefinition(true);
                 },
                 [](auto& p) { p.setSecondaryXYPoint(QPointF(5.0, 100.0)); },
                 QStringList{"secondaryXYPointChanged"} + FIT + QStringList{"planeChanged"}},
        PlaneRow{"primary XY point refits",
                 [](auto& p) {
                     fourPoints(p);
                     p.setUsePointsDefinition(true);
                 },
                 [](auto& p) { p.setPrimaryXYPoint(QPointF(1.0, 0.0)); },
                 QStringList{"primaryXYPointChanged"} + FIT + QStringList{"planeChanged"}},
        PlaneRow{"points definition fits before it is announced", fourPoints,
                 [](auto& p) { p.setUsePointsDefinition(true); },
                 FIT + QStringList{"usePointsDefinitionChanged", "planeChanged"}},
        PlaneRow{"points definition with coinciding GPS points does not fit",
                 [](auto& p) { p.setSecondaryXYPoint(QPointF(0.0, 100.0)); },
                 [](auto& p) { p.setUsePointsDefinition(true); },
                 {"usePointsDefinitionChanged", "planeChanged"}},
        PlaneRow{"points definition with coinciding XY points does not fit",
                 [](auto& p) { p.setSecondaryGPSPoint(SITE); },
                 [](auto& p) { p.setUsePointsDefinition(true); },
                 {"usePointsDefinitionChanged", "planeChanged"}},
        PlaneRow{"background image is not a plane change",
                 {},
                 [](auto& p) { p.setBackgroundImage(new AerialImage); },
                 {"backgroundImageChanged"}},
        PlaneRow{"own image path",
                 {},
                 [](auto& p) { p.backgroundImage()->setImagePath("a.png"); },
                 {"planeChanged"}},
        PlaneRow{
            "view center", {}, [](auto& p) { p.setViewCenter(SITE); }, {"viewCenterChanged", "planeChanged"}},
        PlaneRow{"view rotation",
                 {},
                 [](auto& p) { p.setViewRotation(-1.0); },
                 {"viewRotationChanged", "planeChanged"}},
        PlaneRow{"view scaling beyond the relative step",
                 {},
                 [](auto& p) { p.setViewScaling(1.0 + 1e-11); },
                 {"viewScalingChanged", "planeChanged"}},
        PlaneRow{"description",
                 {},
                 [](auto& p) { p.setDescription("Track"); },
                 {"descriptionChanged", "planeChanged"}},
        PlaneRow{"clear announces everything, the view center twice",
                 fourPoints,
                 [](auto& p) { p.clear(); },
                 {"planeChanged", "planeOriginChanged", "planeRotationChanged", "primaryGPSPointChanged",
                  "secondaryGPSPointChanged", "primaryXYPointChanged", "secondaryXYPointChanged",
                  "usePointsDefinitionChanged", "backgroundImageChanged", "viewCenterChanged",
                  "viewRotationChanged", "viewScalingChanged", "viewCenterChanged", "descriptionChanged",
                  "planeChanged"}},
        // Unchanged values give no signal.
        PlaneRow{"same origin", {}, [](auto& p) { p.setPlaneOrigin(QGeoCoordinate(0.0, 0.0)); }, {}},
        PlaneRow{"same rotation",
                 [](auto& p) { p.setPlaneRotation(90.0); },
                 [](auto& p) { p.setPlaneRotation(90.0 + 5e-14); },
                 {}},
        PlaneRow{"same GPS point",
                 fourPoints,
                 [](auto& p) { p.setSecondaryGPSPoint(direct(SITE, 30.0, 100.0)); },
                 {}},
        PlaneRow{
            "same XY point", fourPoints, [](auto& p) { p.setSecondaryXYPoint(QPointF(0.0, 100.0)); }, {}},
        PlaneRow{"same points definition", {}, [](auto& p) { p.setUsePointsDefinition(false); }, {}},
        PlaneRow{"same image", {}, [](auto& p) { p.setBackgroundImage(p.backgroundImage()); }, {}},
        PlaneRow{"same invalid view center", {}, [](auto& p) { p.setViewCenter(QGeoCoordinate()); }, {}},
        PlaneRow{"same view rotation", {}, [](auto& p) { p.setViewRotation(0.0); }, {}},
        PlaneRow{
            "view scaling within the relative step", {}, [](auto& p) { p.setViewScaling(1.0 + 5e-13); }, {}},
        PlaneRow{"same description", {}, [](auto& p) { p.setDescription(QString()); }, {}}),
    rowName<PlaneRow>);

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
    ::testing::Values(FitRow{"north-up plane, globe at 30 deg", CoordinateSystem::X_RIGHT_Y_FRONT, 30.0,
                             QPointF(10.0, 120.0), 30.0},
                      FitRow{"north-up plane, globe at 300 deg", CoordinateSystem::X_RIGHT_Y_FRONT, 300.0,
                             QPointF(10.0, 120.0), 300.0},
                      FitRow{"plane east, globe north", CoordinateSystem::X_RIGHT_Y_FRONT, 0.0,
                             QPointF(110.0, 20.0), 270.0},
                      FitRow{"forward-left plane, globe at 30 deg", CoordinateSystem::X_FRONT_Y_LEFT, 30.0,
                             QPointF(110.0, 20.0), 30.0}),
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
    plane.setPlaneOrigin(SITE);
    plane.setPlaneRotation(30.0);
    fourPoints(plane);
    plane.setUsePointsDefinition(true);
    plane.setViewCenter(SITE);
    plane.setViewRotation(10.0);
    plane.setViewScaling(2.0);
    plane.setDescription("Track");
    plane.backgroundImage()->setImagePath("a.png");
    QSignalSpy description(&plane, &ReferencePlane::descriptionChanged);
    ASSERT_TRUE(description.isValid());

    plane.clear();
    EXPECT_EQ(plane.planeOrigin(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(plane.planeRotation(), 0.0);
    EXPECT_EQ(plane.planeCoordinateSystem(), 0);
    EXPECT_EQ(plane.primaryGPSPoint(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(plane.secondaryGPSPoint(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(plane.secondaryXYPoint(), QPointF(0.0, 100.0));
    EXPECT_FALSE(plane.usePointsDefinition());
    EXPECT_EQ(plane.viewCenter(), QGeoCoordinate(0.0, 0.0));
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
    auto* second = new AerialImage;
    plane->setBackgroundImage(second);
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(second->parent(), plane.get());

    QSignalSpy changed(plane.get(), &ReferencePlane::planeChanged);
    ASSERT_TRUE(changed.isValid());
    second->setImagePath("b.png");
    EXPECT_EQ(changed.count(), 0);

    QPointer<AerialImage> held = second;
    plane.reset();
    EXPECT_TRUE(held.isNull());
}

// ---- AerialImage: scale and north from two points ----

struct GeoreferenceRow
{
    const char* name;
    QGeoCoordinate primary_gps;
    QGeoCoordinate secondary_gps;
    QPointF secondary_xy; ///< the primary XY point is (50, 50)
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
    EXPECT_NEAR(image.scaling(), row.scaling, 1e-9);
    EXPECT_NEAR(image.northRotation(), row.north_rotation, 1e-6);
    EXPECT_EQ(image.rotationCenter(), QPointF(50.0, 50.0));
}

// Along the equator a geodesic of d degrees is a·d·π/180 metres long.
constexpr double EQUATOR_METRES_PER_DEGREE = 6378137.0 * PI / 180.0;

INSTANTIATE_TEST_SUITE_P(
    AerialImage, Georeference,
    ::testing::Values(GeoreferenceRow{"image up, globe north", SITE, direct(SITE, 0.0, 50.0),
                                      QPointF(50.0, -50.0), 0.5, 0.0},
                      GeoreferenceRow{"image right, globe north", SITE, direct(SITE, 0.0, 50.0),
                                      QPointF(150.0, 50.0), 0.5, -90.0},
                      GeoreferenceRow{"image up-right, globe north", SITE, direct(SITE, 0.0, 50.0),
                                      QPointF(150.0, -50.0), 50.0 / std::sqrt(2.0) / 100.0, -45.0},
                      GeoreferenceRow{"image left, globe south", SITE, direct(SITE, 180.0, 50.0),
                                      QPointF(-50.0, 50.0), 0.5, 270.0},
                      GeoreferenceRow{"image down, globe south", SITE, direct(SITE, 180.0, 50.0),
                                      QPointF(50.0, 150.0), 0.5, 0.0},
                      GeoreferenceRow{"image up, globe east", QGeoCoordinate(0.0, 10.0),
                                      QGeoCoordinate(0.0, 10.001), QPointF(50.0, -50.0),
                                      EQUATOR_METRES_PER_DEGREE * 0.001 / 100.0, 90.0},
                      GeoreferenceRow{"image up, globe west", QGeoCoordinate(0.0, 10.0),
                                      QGeoCoordinate(0.0, 9.999), QPointF(50.0, -50.0),
                                      EQUATOR_METRES_PER_DEGREE * 0.001 / 100.0, 270.0},
                      GeoreferenceRow{"image up, east across the antimeridian", QGeoCoordinate(0.0, 179.0),
                                      QGeoCoordinate(0.0, -179.0), QPointF(50.0, -50.0),
                                      EQUATOR_METRES_PER_DEGREE * 2.0 / 100.0, 90.0},
                      GeoreferenceRow{"image up, west across the antimeridian", QGeoCoordinate(0.0, -179.0),
                                      QGeoCoordinate(0.0, 179.0), QPointF(50.0, -50.0),
                                      EQUATOR_METRES_PER_DEGREE * 2.0 / 100.0, 270.0},
                      GeoreferenceRow{"both GPS points at 0, 0", QGeoCoordinate(0.0, 0.0),
                                      QGeoCoordinate(0.0, 0.0), QPointF(150.0, 50.0), 1.0, -90.0},
                      GeoreferenceRow{"coinciding XY points", SITE, direct(SITE, 90.0, 50.0),
                                      QPointF(50.0, 50.0), 1.0, 0.0}),
    rowName<GeoreferenceRow>);

struct ImageRow
{
    const char* name;
    std::function<void(AerialImage&)> change;
    QStringList expected;
};

// On the meridian of SITE, so that the bearing from SITE is exactly 0.
const QGeoCoordinate NORTH_OF_SITE(48.2005, 11.6);

class ImageSignals : public ::testing::TestWithParam<ImageRow>
{};

TEST_P(ImageSignals, FollowTheChangeInTheirOrder)
{
    AerialImage image;
    image.setPoints(SITE, QPointF(0.0, 0.0), NORTH_OF_SITE, QPointF(0.0, -100.0));
    image.setImagePath("a.png");
    SignalRecorder recorder(&image);
    GetParam().change(image);
    EXPECT_EQ(joined(recorder.names()), joined(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    AerialImage, ImageSignals,
    ::testing::Values(
        ImageRow{"path", [](auto& i) { i.setImagePath("b.png"); }, {"imagePathChanged", "imageChanged"}},
        ImageRow{"GPS point that turns the image",
                 [](auto& i) { i.setSecondaryGPSPoint(direct(SITE, 90.0, 50.0)); },
                 {"secondaryGPSPointChanged", "scalingChanged", "northRotationChanged", "imageChanged"}},
        ImageRow{"GPS point along the same line, same rotation",
                 [](auto& i) { i.setPrimaryGPSPoint(QGeoCoordinate(48.1995, 11.6)); },
                 {"primaryGPSPointChanged", "scalingChanged", "imageChanged"}},
        ImageRow{"XY point that turns the image",
                 [](auto& i) { i.setPrimaryXYPoint(QPointF(-100.0, 0.0)); },
                 {"primaryXYPointChanged", "scalingChanged", "northRotationChanged", "imageChanged"}},
        ImageRow{"XY point that keeps scale and rotation",
                 [](auto& i) { i.setSecondaryXYPoint(QPointF(0.0, -100.0 + 1e-9)); },
                 {"secondaryXYPointChanged", "scalingChanged", "imageChanged"}},
        ImageRow{"all points unchanged",
                 [](auto& i) { i.setPoints(SITE, QPointF(0.0, 0.0), NORTH_OF_SITE, QPointF(0.0, -100.0)); },
                 {"primaryGPSPointChanged", "secondaryGPSPointChanged", "primaryXYPointChanged",
                  "secondaryXYPointChanged", "scalingChanged", "imageChanged"}},
        ImageRow{"clear, without northRotationChanged",
                 [](auto& i) {
                     i.setPrimaryXYPoint(QPointF(-100.0, 0.0));
                     i.clear();
                 },
                 {"primaryXYPointChanged", "scalingChanged", "northRotationChanged", "imageChanged",
                  "imagePathChanged", "primaryGPSPointChanged", "secondaryGPSPointChanged",
                  "primaryXYPointChanged", "secondaryXYPointChanged", "scalingChanged", "imageChanged"}},
        ImageRow{"same path", [](auto& i) { i.setImagePath("a.png"); }, {}},
        ImageRow{"GPS point 0.00005 m away",
                 [](auto& i) { i.setPrimaryGPSPoint(direct(SITE, 45.0, 0.00005)); },
                 {}},
        ImageRow{"same XY point", [](auto& i) { i.setSecondaryXYPoint(QPointF(0.0, -100.0)); }, {}}),
    rowName<ImageRow>);

TEST(AerialImage, ClearResetsEverything)
{
    AerialImage image;
    image.setPoints(SITE, QPointF(1.0, 2.0), direct(SITE, 90.0, 50.0), QPointF(1.0, -98.0));
    image.setImagePath("a.png");
    image.clear();
    EXPECT_EQ(image.imagePath(), QString());
    EXPECT_EQ(image.primaryGPSPoint(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(image.secondaryGPSPoint(), QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(image.primaryXYPoint(), QPointF(0.0, 0.0));
    EXPECT_EQ(image.secondaryXYPoint(), QPointF(0.0, 0.0));
    EXPECT_EQ(image.scaling(), 1.0);
    EXPECT_EQ(image.northRotation(), 0.0);
}

} // namespace
