// The map's screen projection and the instrument's hidden-objects filter.

#include "om_ui_test_support.h"

#include <om_ui/combo_box_object_list_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qcone.h>
#include <om_ui/viewport.h>

#include <om_model/cone.h>

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <cmath>

namespace {

using overmap_ui::Viewport;

const QGeoCoordinate CENTER(47.9968, 10.2457);

/// A 400 x 300 pixel item at CENTER, @p scaling pixels per metre, turned by @p rotation.
void setUp(Viewport& viewport, double rotation, double scaling)
{
    viewport.setSize(QSizeF(400.0, 300.0));
    viewport.setCenter(CENTER);
    viewport.setRotation(rotation);
    viewport.setScaling(scaling);
}

/// @p metres from CENTER at @p azimuth degrees, on the ellipsoid.
QGeoCoordinate away(double azimuth, double metres)
{
    double latitude = 0.0;
    double longitude = 0.0;
    GeographicLib::Geodesic::WGS84().Direct(CENTER.latitude(), CENTER.longitude(), azimuth, metres, latitude,
                                            longitude);
    return QGeoCoordinate(latitude, longitude);
}

TEST(Viewport, ScreenToGlobeToScreenOverRotationsAndScales)
{
    Viewport viewport;
    for (double rotation : {0.0, 37.5, 90.0, 215.0, 359.5}) {
        for (double scaling : {0.01, 1.0, 25.0, 400.0}) {
            setUp(viewport, rotation, scaling);
            for (const QPointF pixel : {QPointF(0, 0), QPointF(400, 300), QPointF(13.25, 287.5)}) {
                const QPointF back = viewport.projectGPSToScreen(viewport.projectScreenToGPS(pixel));
                EXPECT_NEAR(back.x(), pixel.x(), 1e-6) << rotation << " deg, " << scaling << " px/m";
                EXPECT_NEAR(back.y(), pixel.y(), 1e-6) << rotation << " deg, " << scaling << " px/m";
            }
        }
    }
}

/// North up, 2 px/m: 50 m north is 100 px above the middle, 50 m east 100 px right of it.
TEST(Viewport, MetresOnTheGroundBecomePixelsAroundTheMiddle)
{
    Viewport viewport;
    setUp(viewport, 0.0, 2.0);
    const struct
    {
        double azimuth;
        QPointF pixel;
    } rows[] = {{0.0, {200, 50}}, {90.0, {300, 150}}, {180.0, {200, 250}}, {270.0, {100, 150}}};
    for (const auto& row : rows) {
        const QPointF pixel = viewport.projectGPSToScreen(away(row.azimuth, 50.0));
        // The plane is equirectangular: within a millimetre of the ellipsoid at 50 m.
        EXPECT_NEAR(pixel.x(), row.pixel.x(), 2e-3) << row.azimuth;
        EXPECT_NEAR(pixel.y(), row.pixel.y(), 2e-3) << row.azimuth;
    }
    EXPECT_EQ(viewport.projectGPSToScreen(CENTER), QPointF(200, 150));
    // A turned view keeps the distance from the middle.
    viewport.setRotation(30.0);
    const QPointF turned = viewport.projectGPSToScreen(away(0.0, 50.0)) - QPointF(200, 150);
    EXPECT_NEAR(std::hypot(turned.x(), turned.y()), 100.0, 2e-3);
    EXPECT_GT(std::fabs(turned.x()), 40.0);
}

TEST(Viewport, AgreesWithItsProjectionPlane)
{
    Viewport viewport;
    setUp(viewport, 123.0, 3.5);
    const QGeoCoordinate pos = away(40.0, 70.0);
    math_geo::Point2D planar =
        viewport.plane().toPlane(math_geo::GeoPosition(pos.latitude(), pos.longitude()));
    planar.toCoordSystem(math_geo::CoordinateSystem::X_RIGHT_Y_FRONT);
    const QPointF pixel = viewport.projectGPSToScreen(pos);
    EXPECT_NEAR(pixel.x(), 200.0 + 3.5 * planar.x, 1e-9);
    EXPECT_NEAR(pixel.y(), 150.0 - 3.5 * planar.y, 1e-9);
}

TEST(Viewport, SettersRefuseWhatTheyMustAndWrapTheRotation)
{
    Viewport viewport;
    setUp(viewport, 0.0, 2.0);
    QSignalSpy changed(&viewport, &Viewport::viewportChanged);
    QSignalSpy rotation(&viewport, &Viewport::rotationChanged);
    QSignalSpy scaling(&viewport, &Viewport::scalingChanged);
    QSignalSpy center(&viewport, &Viewport::centerChanged);
    for (const QSignalSpy* spy : {&changed, &rotation, &scaling, &center})
        ASSERT_TRUE(spy->isValid());

    viewport.setScaling(0.0);
    viewport.setScaling(-1.0);
    viewport.setScaling(2.0 + 1e-13);
    viewport.setCenter(QGeoCoordinate());
    viewport.setCenter(CENTER);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(viewport.scaling(), 2.0);

    viewport.setRotation(370.0);
    ASSERT_EQ(rotation.count(), 1);
    EXPECT_DOUBLE_EQ(rotation.at(0).at(0).toDouble(), 10.0);
    EXPECT_DOUBLE_EQ(viewport.rotation(), 10.0);
    viewport.setScaling(4.0);
    EXPECT_EQ(scaling.count(), 1);
    EXPECT_EQ(changed.count(), 2);
    viewport.setSize(QSizeF(100, 100));
    EXPECT_GE(changed.count(), 3) << "a new size moves the middle";
    EXPECT_EQ(viewport.projectGPSToScreen(CENTER), QPointF(50, 50));
}

TEST(Viewport, CullingIsConservativeAndNeedsAnArea)
{
    Viewport viewport;
    setUp(viewport, 0.0, 1.0);
    // 100 m north and south of the middle: one vertical screen line crossing the item.
    EXPECT_TRUE(viewport.isSegmentInside(away(0.0, 100.0), away(180.0, 100.0)));
    EXPECT_TRUE(viewport.isSegmentInside(away(0.0, 10.0), away(0.0, 20.0)));
    EXPECT_FALSE(viewport.isSegmentInside(away(90.0, 300.0), away(90.0, 400.0)));
    EXPECT_TRUE(viewport.isInside(CENTER));
    EXPECT_FALSE(viewport.isInside(away(0.0, 160.0)));
    // A quad larger than the screen, around it, is inside.
    EXPECT_TRUE(viewport.isQuadInside(away(45, 1000), away(135, 1000), away(225, 1000), away(315, 1000)));
    EXPECT_FALSE(viewport.isQuadInside(away(90, 300), away(90, 310), away(80, 305), away(100, 305)));
    viewport.setSize(QSizeF(0.0, 300.0));
    EXPECT_FALSE(viewport.isQuadInside(CENTER, CENTER, CENTER, CENTER));
}

TEST(Viewport, GeoExtentAlongTheMiddleLines)
{
    Viewport viewport;
    setUp(viewport, 0.0, 1.0);
    // 400 m across and 300 m down, in degrees of the site (equirectangular radii).
    const double metres_per_degree_lat = 111132.954 - 559.822 * std::cos(2 * CENTER.latitude() * M_PI / 180);
    EXPECT_NEAR(viewport.geoHeight(), 300.0 / metres_per_degree_lat, 1e-6);
    EXPECT_NEAR(viewport.geoWidth() * std::cos(CENTER.latitude() * M_PI / 180) / viewport.geoHeight(),
                400.0 / 300.0, 1e-2);
}

TEST(PositionObjectsFilteredModel, HidesTheIdsOfItsSetAndFollowsTheSource)
{
    const math_geo::ProjectionPlane plane = om_ui_test::sitePlane();
    om_ui_test::FakeManager manager;
    overmap_ui::ComboBoxObjectListModel<overmap_ui::QPositionObject*> objects;
    overmap_ui::PositionObjectsFilteredModel filter;
    filter.setSourceModel(&objects);
    QAbstractItemModelTester tester(&filter, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::vector<overmap_ui::QCone*> cones;
    for (int i = 0; i < 3; ++i) {
        cones.push_back(new overmap_ui::QCone(std::make_shared<overmap::Cone>(&plane), &manager));
        objects.append(cones.back());
    }
    objects.append(static_cast<QObject*>(nullptr));
    EXPECT_EQ(filter.rowCount(), 3) << "a null row is refused";

    QSignalSpy removed(&filter, &QAbstractItemModel::rowsRemoved);
    ASSERT_TRUE(removed.isValid());
    filter.setFiltered(cones[1]->objectId(), true);
    EXPECT_EQ(filter.rowCount(), 2);
    EXPECT_TRUE(filter.isFiltered(cones[1]->objectId()));
    EXPECT_EQ(filter.index(1, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>(), cones[2]);

    objects.append(new overmap_ui::QCone(std::make_shared<overmap::Cone>(&plane), &manager));
    EXPECT_EQ(filter.rowCount(), 3);
    filter.setFiltered(cones[0]->objectId(), false);
    EXPECT_EQ(filter.getFilteredIds(), std::set<int>{cones[1]->objectId()});
    filter.clearFilter();
    EXPECT_EQ(filter.rowCount(), 4);
    EXPECT_EQ(removed.count(), 1);
}

} // namespace
