// The map item in a real window on the example scene at t = 65 s: pixels at the places the
// viewport gives for the objects, hiding, following and heading-up. Needs an X server with
// OpenGL (run under xvfb-run).

#include "example_scene.h"

#include <om_qml/qscene_item.h>

#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qcar.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/viewport.h>

#include <lum_host/qextension_module.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QQuickView>
#include <QTest>
#include <QWheelEvent>

#include <cmath>
#include <memory>

namespace {

const QColor CAR1_COLOR(0xd6, 0x27, 0x28);
const QColor CAR2_COLOR(0x1f, 0x77, 0xb4);
const QColor CONE_COLOR(0xff, 0x7f, 0x0e);

bool near(const QColor& a, const QColor& b)
{
    return std::abs(a.red() - b.red()) < 40 && std::abs(a.green() - b.green()) < 40 &&
           std::abs(a.blue() - b.blue()) < 40;
}

::testing::AssertionResult colorAt(const QImage& image, QPointF at, const QColor& expected)
{
    const QPoint pixel = at.toPoint();
    if (!image.rect().contains(pixel))
        return ::testing::AssertionFailure() << "outside the picture: " << pixel.x() << "," << pixel.y();
    const QColor found = image.pixelColor(pixel);
    if (near(found, expected))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "at " << pixel.x() << "," << pixel.y() << " " << found.name().toStdString() << " instead of "
           << expected.name().toStdString();
}

class MapItemWindowTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { om_qml_test::prepareProcess(); }

    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(m_scene.load(error)) << error.toStdString();
        geoModel()->setDisplayTime(65.0);

        m_view = std::make_unique<QQuickView>();
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->resize(640, 480);
        m_view->setSource(QUrl(QStringLiteral("qrc:///overmap/Map/OvermapMap.qml")));
        ASSERT_EQ(m_view->status(), QQuickView::Ready);
        m_map = qobject_cast<overmap_ui::Viewport*>(m_view->rootObject());
        ASSERT_NE(m_map, nullptr);
        m_map->setProperty("objectsModel", QVariant::fromValue<QObject*>(m_instrument.objectsFilterModel()));
        m_map->setProperty("showCoordinateSystem", false);
        m_map->setScaling(8.0);
        m_map->setCenter(car(1)->centerPosition());
        m_view->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
    }

    overmap_ui::OvermapModel* geoModel() { return m_scene.geoModel(); }
    overmap_ui::QCar* car(int id) { return m_scene.car(id); }

    QImage grab()
    {
        // A frame after every change, so that the picture shows the present state.
        QTest::qWait(50);
        return m_view->grabWindow();
    }

    om_qml_test::ExampleScene m_scene;
    im::OvermapInstrument& m_instrument = m_scene.instrument;
    std::unique_ptr<QQuickView> m_view;
    overmap_ui::Viewport* m_map = nullptr;
};

TEST_F(MapItemWindowTest, CarsAndConeStandWhereTheViewportPutsThem)
{
    m_map->setScaling(0.8); // both cars and the slalom on the screen
    m_map->setCenter(geoModel()->objectsManager()->allObjectsCenter());
    const QImage picture = grab();
    picture.save(QDir::current().filePath(QStringLiteral("map_item_t65.png")));
    EXPECT_TRUE(colorAt(picture, m_map->projectGPSToScreen(car(1)->centerPosition()), CAR1_COLOR));
    EXPECT_TRUE(colorAt(picture, m_map->projectGPSToScreen(car(2)->centerPosition()), CAR2_COLOR));
    // The last cone of the slalom: no calculation's line ends on it.
    auto* cone = qobject_cast<overmap_ui::QPositionObject*>(geoModel()->objectsManager()->getObjectById(22));
    ASSERT_NE(cone, nullptr);
    EXPECT_TRUE(colorAt(picture, m_map->projectGPSToScreen(cone->position()), CONE_COLOR));

    // A view that only moves shifts the picture of what stands still, by whole pixels; one that
    // moves far draws it anew. Either way the cone stays where the viewport puts it.
    const QPointF middle(m_map->width() / 2, m_map->height() / 2);
    for (const QPointF& by : {QPointF(37.4, -21.6), QPointF(-23.0, 55.2), QPointF(300.0, 0.0)}) {
        m_map->setCenter(m_map->projectScreenToGPS(middle + by));
        const QPointF at = m_map->projectGPSToScreen(cone->position());
        if (m_map->boundingRect().contains(at)) {
            EXPECT_TRUE(colorAt(grab(), at, CONE_COLOR)) << "moved by " << by.x() << "," << by.y();
        }
    }
    m_map->setCenter(cone->position());
    EXPECT_TRUE(colorAt(grab(), middle, CONE_COLOR)) << "centred on the cone";
}

TEST_F(MapItemWindowTest, HidingACarRemovesItFromThePicture)
{
    const QPointF at = m_map->projectGPSToScreen(car(1)->centerPosition());
    ASSERT_TRUE(colorAt(grab(), at, CAR1_COLOR));
    m_instrument.setObjectFiltered(1, true);
    EXPECT_FALSE(colorAt(grab(), at, CAR1_COLOR));
    m_instrument.setObjectFiltered(1, false);
    EXPECT_TRUE(colorAt(grab(), at, CAR1_COLOR));
}

TEST_F(MapItemWindowTest, FollowedCarStaysInTheMiddleWhileTimeMoves)
{
    m_map->setProperty("positionObjectToFollow", QVariant::fromValue<QObject*>(car(2)));
    const QPointF middle(m_map->width() / 2, m_map->height() / 2);
    for (double time : {66.0, 70.0, 80.0}) {
        geoModel()->setDisplayTime(time);
        EXPECT_TRUE(colorAt(grab(), middle, CAR2_COLOR)) << "t = " << time;
        EXPECT_EQ(m_map->center(), car(2)->position()) << "t = " << time;
    }
}

TEST_F(MapItemWindowTest, HeadingUpTurnsTheCarNoseUp)
{
    m_map->setProperty("positionObjectToFollow", QVariant::fromValue<QObject*>(car(1)));
    m_map->setProperty("headingUp", true);
    EXPECT_NEAR(m_map->rotation(), car(1)->heading(), 1e-9);
    const QImage picture = grab();
    const QPointF reference = m_map->projectGPSToScreen(car(1)->centerPosition());
    // Along the car (up and down the screen) its colour, across it the background.
    const double along = car(1)->length() * 0.35 * m_map->scaling();
    const double across = car(1)->width() * 0.9 * m_map->scaling();
    EXPECT_TRUE(colorAt(picture, reference + QPointF(0.0, -along), CAR1_COLOR));
    EXPECT_TRUE(colorAt(picture, reference + QPointF(0.0, along), CAR1_COLOR));
    EXPECT_FALSE(colorAt(picture, reference + QPointF(across, 0.0), CAR1_COLOR));
    EXPECT_FALSE(colorAt(picture, reference + QPointF(-across, 0.0), CAR1_COLOR));
}

// A click selects; a drag that starts on an object standing still moves it (and, through the
// model, the setup) when objects are movable, and pans the view otherwise or on a car.
TEST_F(MapItemWindowTest, ClickSelectsAndDragMovesOnlyWhatStandsStill)
{
    auto* cone = qobject_cast<overmap_ui::QPositionObject*>(geoModel()->objectsManager()->getObjectById(22));
    ASSERT_NE(cone, nullptr);
    m_map->setCenter(cone->position());
    grab();
    const QPoint middle(m_map->width() / 2, m_map->height() / 2);
    const auto drag = [&](QPoint from, QPoint to) {
        QTest::mousePress(m_view.get(), Qt::LeftButton, Qt::NoModifier, from);
        QTest::mouseMove(m_view.get(), (from + to) / 2);
        QTest::mouseMove(m_view.get(), to);
        QTest::mouseRelease(m_view.get(), Qt::LeftButton, Qt::NoModifier, to);
    };

    QTest::mouseClick(m_view.get(), Qt::LeftButton, Qt::NoModifier, middle + QPoint(3, -2));
    EXPECT_EQ(m_map->property("selectedObject").value<QObject*>(), cone);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_EQ(m_map->property("selectedObject").value<QObject*>(), nullptr) << "nothing there";

    const std::string text_before = geoModel()->extension()->getExtensionConfiguration().toStdString();
    const QGeoCoordinate view_center = m_map->center();
    drag(middle, middle + QPoint(60, 40));
    const QPointF dropped = m_map->projectGPSToScreen(cone->position());
    EXPECT_NEAR(dropped.x(), middle.x() + 60, 1.0);
    EXPECT_NEAR(dropped.y(), middle.y() + 40, 1.0);
    EXPECT_EQ(m_map->center(), view_center) << "moving an object does not pan";
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return geoModel()->extension()->getExtensionConfiguration().toStdString() != text_before;
    })) << "the move is written to the setup";
    EXPECT_TRUE(colorAt(grab(), dropped, CONE_COLOR)) << "drawn where it was dropped";

    // Not movable: the same drag pans, the cone keeps its place on the ground.
    m_map->setProperty("objectsMovable", false);
    const QGeoCoordinate placed = cone->position();
    drag(dropped.toPoint(), dropped.toPoint() + QPoint(-30, 0));
    EXPECT_EQ(cone->position(), placed);
    EXPECT_NE(m_map->center(), view_center);

    // A car moves with its channels: a drag on it pans even when objects are movable.
    m_map->setProperty("objectsMovable", true);
    m_map->setCenter(car(1)->centerPosition());
    grab();
    const QGeoCoordinate car_place = car(1)->position();
    drag(middle, middle + QPoint(20, 20));
    EXPECT_EQ(car(1)->position(), car_place);
    EXPECT_NE(m_map->center(), car(1)->centerPosition()) << "panned";
    m_map->setProperty("selectable", false);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, Qt::NoModifier,
                      m_map->projectGPSToScreen(cone->position()).toPoint());
    EXPECT_EQ(m_map->property("selectedObject").value<QObject*>(), nullptr) << "not selectable";
}

TEST_F(MapItemWindowTest, WheelZoomsAroundThePointerAndDragPans)
{
    grab();
    const QPoint pointer(500, 120);
    const QGeoCoordinate under = m_map->projectScreenToGPS(pointer);
    QWheelEvent wheel(QPointF(pointer), m_view->mapToGlobal(pointer), QPoint(), QPoint(0, 240), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_view.get(), &wheel);
    EXPECT_GT(m_map->scaling(), 8.0) << "the wheel turned forward zooms in";
    const QPointF still = m_map->projectGPSToScreen(under);
    EXPECT_NEAR(still.x(), pointer.x(), 0.5);
    EXPECT_NEAR(still.y(), pointer.y(), 0.5);

    const QGeoCoordinate at_start = m_map->projectScreenToGPS(QPointF(100, 100));
    QTest::mousePress(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    QTest::mouseMove(m_view.get(), QPoint(130, 120));
    QTest::mouseMove(m_view.get(), QPoint(160, 140));
    QTest::mouseRelease(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(160, 140));
    const QPointF dragged = m_map->projectGPSToScreen(at_start);
    EXPECT_NEAR(dragged.x(), 160.0, 0.5) << "the point taken moves with the pointer";
    EXPECT_NEAR(dragged.y(), 140.0, 0.5);
}

} // namespace
