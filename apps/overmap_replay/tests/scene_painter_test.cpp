#include <overmap_replay/scene_painter.h>

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/object_manager.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <math_geo/projection_plane.h>

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>

#include <cmath>
#include <memory>

namespace {

using math_geo::GeoPosition;
using math_geo::Point2D;
using overmap_replay::ScenePainter;

/// Text needs a QGuiApplication; one for the whole test binary, kept to its end as the
/// tool keeps its own.
class GuiEnvironment : public ::testing::Environment
{
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "overmap_replay_view_tests";
        static char* argv[] = {name, nullptr};
        static QGuiApplication* const application = new QGuiApplication(argc, argv);
        Q_UNUSED(application);
    }
};

const auto* const GUI_ENVIRONMENT = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

const QColor CAR_COLOR(32, 80, 192);
const QSize SIZE(400, 300);

/// A scene around a plane at 48 N 11 E, north up, whose objects are placed by metres east
/// and north of the plane's centre: the picture frame of a north-up plane, worked out here
/// from the plane's scales alone.
class SceneFixture : public ::testing::Test
{
protected:
    SceneFixture() { m_manager.getReferencePlane()->setCenter(CENTER); }

    GeoPosition at(double east, double north) const
    {
        const auto* plane = m_manager.getReferencePlane();
        return GeoPosition(CENTER.latitude + north / plane->getLatitudeScale(),
                           CENTER.longitude + east / plane->getLongitudeScale());
    }

    /// A 4 m by 2 m car whose reference point stands at (east, north).
    std::shared_ptr<overmap::Car> addCar(double east, double north, double heading)
    {
        auto car = std::make_shared<overmap::Car>(m_manager.getReferencePlane());
        const auto local = car->localCoordinateSystem();
        car->setContour(
            {Point2D(2, 1, local), Point2D(-2, 1, local), Point2D(-2, -1, local), Point2D(2, -1, local)});
        car->setGeoPosition(at(east, north));
        car->setHeading(heading);
        car->setName("Test car");
        car->setColor(CAR_COLOR.name().toStdString());
        m_manager.addObject(car);
        return car;
    }

    std::shared_ptr<overmap::Cone> addCone(double east, double north)
    {
        auto cone = std::make_shared<overmap::Cone>(m_manager.getReferencePlane());
        cone->setGeoPosition(at(east, north));
        m_manager.addObject(cone);
        return cone;
    }

    QImage render(ScenePainter& painter) const
    {
        painter.setGridVisible(false);
        painter.setLegendVisible(false);
        return painter.render(SIZE);
    }

    /// The pixel under a point of the picture frame (east and north on a north-up plane).
    static QColor pixel(const QImage& image, const ScenePainter& painter, double east, double north)
    {
        const QPointF p = painter.viewTransform(image.size()).map(QPointF(east, north));
        return image.pixelColor(static_cast<int>(std::floor(p.x())), static_cast<int>(std::floor(p.y())));
    }

    static constexpr GeoPosition CENTER{48.0, 11.0};
    overmap::ObjectManager m_manager;
};

// --- Pixels where the plane puts the objects -------------------------------------------

TEST_F(SceneFixture, CarConeAndBackgroundHaveTheirColoursWhereThePlanePutsThem)
{
    // Heading 90 turns the car across: its length runs east-west whichever way it faces.
    addCar(0.0, 0.0, 90.0);
    addCone(0.0, 12.0);
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    ASSERT_EQ(image.size(), SIZE);

    EXPECT_EQ(pixel(image, painter, 1.5, 0.5), CAR_COLOR) << "inside the turned contour, east";
    EXPECT_EQ(pixel(image, painter, -1.5, -0.5), CAR_COLOR) << "inside the turned contour, west";
    EXPECT_EQ(pixel(image, painter, 0.0, 1.6), ScenePainter::BACKGROUND)
        << "inside the contour as it would stand unturned";
    EXPECT_EQ(pixel(image, painter, 0.0, 12.0), ScenePainter::CONE_COLOR) << "the cone, north of the car";
    EXPECT_EQ(pixel(image, painter, 0.0, 6.0), ScenePainter::BACKGROUND);
    EXPECT_EQ(pixel(image, painter, 5.0, 0.0), ScenePainter::BACKGROUND);
}

TEST_F(SceneFixture, TheCarFollowsItsHeadingAndTheConeIsAboveWhenNorthOfIt)
{
    addCar(0.0, 0.0, 0.0);
    addCone(0.0, 12.0);
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    EXPECT_EQ(pixel(image, painter, 0.5, 1.5), CAR_COLOR) << "heading 0 keeps the car along north";
    EXPECT_EQ(pixel(image, painter, 1.6, 0.0), ScenePainter::BACKGROUND);
    const QTransform view = painter.viewTransform(SIZE);
    EXPECT_LT(view.map(QPointF(0.0, 12.0)).y(), view.map(QPointF(0.0, 0.0)).y()) << "north is up";
    EXPECT_GT(view.map(QPointF(5.0, 0.0)).x(), view.map(QPointF(0.0, 0.0)).x()) << "east is right";
}

TEST_F(SceneFixture, ARotatedPlaneTurnsThePicture)
{
    // A plane turned by 90 degrees shows north to the left.
    m_manager.getReferencePlane()->setRotation(90.0);
    addCar(0.0, 0.0, 0.0);
    addCone(0.0, 12.0);
    ScenePainter painter(m_manager);
    const QPointF cone = painter.geoToPicture(at(0.0, 12.0));
    EXPECT_NEAR(cone.x(), -12.0, 1e-6);
    EXPECT_NEAR(cone.y(), 0.0, 1e-6);
    const QImage image = render(painter);
    const QPointF on_image = painter.viewTransform(SIZE).map(cone);
    EXPECT_EQ(image.pixelColor(on_image.toPoint()), ScenePainter::CONE_COLOR);
    EXPECT_EQ(pixel(image, painter, -1.5, 0.5), CAR_COLOR) << "the car, along north, lies across";
}

TEST_F(SceneFixture, HiddenObjectsAreNeitherDrawnNorFitted)
{
    addCar(0.0, 0.0, 0.0);
    const auto cone = addCone(0.0, 8.0);
    const auto far_cone = addCone(5000.0, 0.0);
    ScenePainter painter(m_manager);
    painter.setHiddenObjects({cone->getId(), far_cone->getId()});
    EXPECT_LT(painter.sceneBounds().width(), 100.0);
    const QImage image = render(painter);
    EXPECT_EQ(pixel(image, painter, 0.0, 8.0), ScenePainter::BACKGROUND);
}

TEST_F(SceneFixture, ASmallCarIsEnlargedAroundItsReferencePoint)
{
    addCar(0.0, 0.0, 0.0);
    addCone(300.0, 200.0);
    ScenePainter painter(m_manager);
    const double scale = painter.viewTransform(SIZE).m11();
    ASSERT_LT(4.0 * scale, 10.0) << "the car is a few pixels long at true scale";
    painter.setMinimumCarLength(40.0);
    const QImage image = render(painter);
    // 40 pixels long: a point 15 pixels ahead of the reference point is still car.
    EXPECT_EQ(pixel(image, painter, 4.0 / scale, 15.0 / scale), CAR_COLOR);
    EXPECT_EQ(pixel(image, painter, 0.0, -25.0 / scale), ScenePainter::BACKGROUND);
}

TEST_F(SceneFixture, CarsOfOneColourAreFilledInColoursOfTheirOwn)
{
    addCar(-6.0, 0.0, 0.0);
    addCar(6.0, 0.0, 0.0);
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    EXPECT_EQ(pixel(image, painter, -6.5, 1.0), CAR_COLOR) << "the first keeps its colour";
    const QColor second = pixel(image, painter, 6.5, 1.0);
    EXPECT_NE(second, CAR_COLOR);
    EXPECT_NE(second, ScenePainter::BACKGROUND);
    EXPECT_EQ(second, ScenePainter::paletteColor(0)) << "the first palette colour, which no car has";
}

// --- Tracks ----------------------------------------------------------------------------

TEST_F(SceneFixture, AStraightTrackIsAFilledRibbon)
{
    auto line = std::make_shared<overmap::TrackLine>(m_manager.getReferencePlane());
    line->setWidth(4.0);
    line->setStart(at(-10.0, 0.0));
    line->setEnd(at(10.0, 0.0));
    m_manager.addObject(line);
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    EXPECT_EQ(pixel(image, painter, -5.0, 1.0), ScenePainter::TRACK_FILL);
    EXPECT_EQ(pixel(image, painter, 5.0, -1.0), ScenePainter::TRACK_FILL);
    EXPECT_EQ(pixel(image, painter, 0.0, 3.5), ScenePainter::BACKGROUND);
}

TEST_F(SceneFixture, AnArcIsDrawnAlongItsCircleNotAlongItsChord)
{
    // A quarter circle of radius 20 from (0, 0): centre 20 m east, ending 20 m north of it.
    auto arc = std::make_shared<overmap::TrackLine>(m_manager.getReferencePlane());
    arc->setWidth(4.0);
    arc->setStart(at(0.0, 0.0));
    arc->setEnd(at(20.0, 20.0));
    arc->setRadius(20.0);
    arc->setArcLength(20.0 * M_PI / 2);
    arc->setArcBearing(0.0);
    m_manager.addObject(arc);
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    const double s = 20.0 * std::sqrt(0.5);
    EXPECT_EQ(pixel(image, painter, 20.0 - s + 0.3, s - 0.3), ScenePainter::TRACK_FILL) << "halfway round";
    EXPECT_EQ(pixel(image, painter, 19.0, 19.0), ScenePainter::TRACK_FILL) << "near the end";
    EXPECT_EQ(pixel(image, painter, 10.0, 10.0), ScenePainter::BACKGROUND) << "the chord";
    EXPECT_EQ(pixel(image, painter, 20.0, 0.0), ScenePainter::BACKGROUND) << "the centre";
    const QRectF bounds = painter.sceneBounds();
    EXPECT_NEAR(bounds.left(), -2.0, 0.1) << "the outer edge at the start";
    EXPECT_NEAR(bounds.top(), 0.0, 0.1) << "y grows north: top() is the southern end";
    EXPECT_NEAR(bounds.right(), 20.0, 0.1);
    EXPECT_NEAR(bounds.bottom(), 22.0, 0.1) << "the outer edge at the end";
}

TEST_F(SceneFixture, ARepeatedVertexIsBridgedWithoutAHoleOrStrayLines)
{
    // The repeated vertex at 0 m leaves the model's edges not-a-number there and at its copy.
    auto path = std::make_shared<overmap::TrackPath>(m_manager.getReferencePlane());
    path->setWidth(4.0);
    path->setPositions(
        {at(-20.0, 0.0), at(-10.0, 0.0), at(0.0, 0.0), at(0.0, 0.0), at(10.0, 0.0), at(20.0, 0.0)});
    m_manager.addObject(path);
    ASSERT_TRUE(std::isnan(path->firstEdge()[2].x)) << "the model's part of the premise";
    ScenePainter painter(m_manager);
    const QImage image = render(painter);
    EXPECT_EQ(pixel(image, painter, 0.0, 1.0), ScenePainter::TRACK_FILL) << "no hole at the repeat";
    EXPECT_EQ(pixel(image, painter, -15.0, -1.0), ScenePainter::TRACK_FILL);
    EXPECT_EQ(pixel(image, painter, 0.0, 6.0), ScenePainter::BACKGROUND);
    EXPECT_EQ(pixel(image, painter, 0.0, -6.0), ScenePainter::BACKGROUND);
    const QRectF bounds = painter.sceneBounds();
    EXPECT_NEAR(bounds.left(), -20.0, 0.1);
    EXPECT_NEAR(bounds.right(), 20.0, 0.1);
    EXPECT_NEAR(bounds.center().y(), 0.0, 0.1) << "the ribbon is 4 m across, padded to the least extent";
}

TEST_F(SceneFixture, ATrackLineNotPlacedYetIsLeftOut)
{
    m_manager.addObject(std::make_shared<overmap::TrackLine>(m_manager.getReferencePlane()));
    addCone(0.0, 0.0);
    ScenePainter painter(m_manager);
    EXPECT_LT(painter.sceneBounds().width(), 100.0);
    EXPECT_FALSE(render(painter).isNull());
}

// --- Fitting ---------------------------------------------------------------------------

TEST_F(SceneFixture, EveryObjectAndPathFitsInsideTheMarginAtAnySize)
{
    addCar(-40.0, 10.0, 30.0);
    addCone(60.0, -25.0);
    auto path = std::make_shared<overmap::TrackPath>(m_manager.getReferencePlane());
    path->setWidth(6.0);
    path->setPositions({at(-80.0, -30.0), at(-20.0, -30.0), at(0.0, 40.0)});
    m_manager.addObject(path);
    ScenePainter painter(m_manager);
    overmap_replay::DrivenPath driven;
    driven.object_id = 1;
    driven.times = {0.0, 1.0};
    driven.positions = {at(10.0, 90.0), at(20.0, 95.0)};
    painter.setPaths({driven});

    const QPointF extremes[] = {{-80.0, -33.0}, {60.0, -25.0}, {20.0, 95.0}, {-40.0, 10.0}};
    for (const QSize size : {QSize(400, 300), QSize(300, 900), QSize(1600, 200)}) {
        const QTransform view = painter.viewTransform(size);
        double left = size.width(), right = 0.0, top = size.height(), bottom = 0.0;
        for (const QPointF& point : extremes) {
            const QPointF p = view.map(point);
            EXPECT_GE(p.x(), 20.0) << size.width() << "x" << size.height();
            EXPECT_LE(p.x(), size.width() - 20.0);
            EXPECT_GE(p.y(), 20.0);
            EXPECT_LE(p.y(), size.height() - 20.0);
            left = std::min(left, p.x());
            right = std::max(right, p.x());
            top = std::min(top, p.y());
            bottom = std::max(bottom, p.y());
        }
        // Fitted, not merely inside: the scene spans most of one side.
        EXPECT_TRUE(right - left > 0.7 * size.width() || bottom - top > 0.7 * size.height())
            << size.width() << "x" << size.height();
        EXPECT_NEAR(view.m11(), -view.m22(), 1e-12) << "one metre is as long across as down";
    }
}

TEST_F(SceneFixture, AnEmptySceneGivesTwentyMetresAroundTheCentre)
{
    ScenePainter painter(m_manager);
    EXPECT_EQ(painter.sceneBounds(), QRectF(-10.0, -10.0, 20.0, 20.0));
    EXPECT_FALSE(render(painter).isNull());
    EXPECT_TRUE(painter.render(QSize(0, 10)).isNull());
    EXPECT_TRUE(painter.render(QSize(100000, 10)).isNull());
}

// --- Paths and calculations ------------------------------------------------------------

TEST_F(SceneFixture, APathIsDrawnUpToTheDisplayTimeOnly)
{
    const auto car = addCar(10.0, 0.0, 90.0);
    overmap_replay::DrivenPath driven;
    driven.object_id = car->getId();
    for (int i = 0; i <= 20; ++i) {
        driven.times.push_back(i);
        driven.positions.push_back(at(-10.0 + i, -5.0));
    }
    ScenePainter painter(m_manager);
    painter.setPaths({driven});
    painter.setTime(5.0);
    const QImage image = render(painter);
    EXPECT_NE(pixel(image, painter, -8.0, -5.0), ScenePainter::BACKGROUND) << "driven before the time";
    EXPECT_EQ(pixel(image, painter, 8.0, -5.0), ScenePainter::BACKGROUND) << "driven after the time";
}

TEST_F(SceneFixture, ACalculationIsADashedLineBetweenItsMeasuredPointsWithTheValueItIsGiven)
{
    const auto car = addCar(0.0, 0.0, 0.0);
    const auto cone = addCone(0.0, 22.0);
    auto calculation = std::make_shared<overmap::Calculation>();
    calculation->setFrom(car);
    calculation->setFromPoiIdx(2); // "Front center": 2 m ahead, so 20 m short of the cone
    calculation->setTo(cone);
    m_manager.addCalculation(calculation);
    ScenePainter painter(m_manager);

    QPointF from, to;
    EXPECT_FALSE(painter.calculationLine(*calculation, from, to)) << "no value from its channel: not drawn";
    const QImage without = render(painter);
    painter.setCalculationValues({{calculation->getId(), 20.0}});
    ASSERT_TRUE(painter.calculationLine(*calculation, from, to));
    EXPECT_NEAR(from.y(), 2.0, 1e-3);
    EXPECT_NEAR(to.y(), 22.0, 1e-3);

    const QImage image = render(painter);
    int on = 0;
    int off = 0;
    for (double north = 4.0; north < 10.0; north += 0.05) {
        if (pixel(image, painter, 0.0, north) == ScenePainter::BACKGROUND)
            ++off;
        else
            ++on;
        EXPECT_EQ(pixel(without, painter, 0.0, north), ScenePainter::BACKGROUND);
    }
    EXPECT_GT(on, 10) << "drawn along the line";
    EXPECT_GT(off, 10) << "with gaps: dashed";
}

TEST_F(SceneFixture, ATrackIsMeasuredAtItsNearestPointAndAHiddenSideIsNotDrawn)
{
    const auto cone = addCone(5.0, 10.0);
    auto line = std::make_shared<overmap::TrackLine>(m_manager.getReferencePlane());
    line->setWidth(4.0);
    line->setStart(at(-20.0, 0.0));
    line->setEnd(at(20.0, 0.0));
    m_manager.addObject(line);
    overmap::Calculation calculation;
    calculation.setFrom(cone);
    calculation.setTo(line);
    ScenePainter painter(m_manager);
    painter.setCalculationValues({{calculation.getId(), 10.0}});
    QPointF from, to;
    ASSERT_TRUE(painter.calculationLine(calculation, from, to));
    EXPECT_NEAR(to.x(), 5.0, 1e-3);
    EXPECT_NEAR(to.y(), 0.0, 1e-3);
    calculation.setTrackTarget(overmap::TrackTarget::EDGE);
    ASSERT_TRUE(painter.calculationLine(calculation, from, to));
    EXPECT_NEAR(to.y(), 2.0, 1e-3) << "the nearer edge";

    painter.setHiddenObjects({line->getId()});
    EXPECT_FALSE(painter.calculationLine(calculation, from, to));
    painter.setHiddenObjects({});
    calculation.setTo(nullptr);
    EXPECT_FALSE(painter.calculationLine(calculation, from, to));
}

} // namespace
