// The scene item without a window: painted into an image through its viewport, the
// locator's colour by its quality ranges, and the calculation values from result channels.

#include "example_scene.h"

#include <om_qml/qscene_item.h>

#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qtrack.h>
#include <om_ui/viewport.h>

#include <config_items/string_config_item.h>
#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>
#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>
#include <om_model/calculation.h>
#include <qchannel/qchannel.h>

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainter>

#include <cmath>

namespace {

using overmap_qml::QSceneItem;

class SceneItemTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // Text and items need a QGuiApplication; one for the binary, kept to its end as the
        // offscreen platform does not take its screen down cleanly.
        static int argc = 1;
        static char name[] = "om_qml_tests";
        static char* argv[] = {name, nullptr};
        static QGuiApplication* const application = new QGuiApplication(argc, argv);
        Q_UNUSED(application);
        om_qml_test::prepareProcess();
    }

    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(m_scene.load(error)) << error.toStdString();
        m_viewport.setSize(QSizeF(400, 300));
        m_item.setSize(QSizeF(400, 300));
        m_item.setViewport(&m_viewport);
        m_item.setObjectsModel(m_scene.instrument.objectsFilterModel());
        m_item.setShowCoordinateSystem(false);
    }

    overmap_ui::QTrack* track(int id)
    {
        return qobject_cast<overmap_ui::QTrack*>(m_scene.geoModel()->objectsManager()->getObjectById(id));
    }

    QImage paint()
    {
        QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        m_item.paint(&painter);
        return image;
    }

    /// The result channel of calculation @p calc_id as the host's extension makes it, one value.
    void addResultChannel(int calc_id, double value)
    {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(0x7f, overmap::CALCULATION_RESULT_LOCAL_ID_BASE +
                                                       static_cast<std::uint32_t>(calc_id));
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem("result"));
        setup.config_manager = &m_config;
        const std::uint64_t stream = setup.id.toUInt64();
        auto channel =
            lum::data::SyncScalarChannel::create(std::move(setup), {value, value}, m_regions, stream);
        m_config.addChannel(channel);
        m_scene.host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
    }

    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager m_config;
    om_qml_test::ExampleScene m_scene;
    overmap_ui::Viewport m_viewport;
    QSceneItem m_item;
};

TEST_F(SceneItemTest, LocatorTakesTheColourOfTheRangeItsQualityLiesIn)
{
    auto* locator =
        qobject_cast<overmap_ui::QPositionObject*>(m_scene.geoModel()->objectsManager()->getObjectById(3));
    ASSERT_NE(locator, nullptr);
    // The example's fix quality: 4 (first range), from 24.23 s 5 (second), from 26.37 s 1 (third).
    const struct
    {
        const char* name;
        double time;
        QColor color;
    } rows[] = {
        {"fix 4 is the first range", 10.0, QSceneItem::QUALITY_COLORS[0]},
        {"fix 5 is the second range", 25.0, QSceneItem::QUALITY_COLORS[1]},
        {"fix 1 is the third range", 27.5, QSceneItem::QUALITY_COLORS[2]},
        {"no sample: its own colour", -5.0, QColor("#2ca02c")},
    };
    for (const auto& row : rows) {
        m_item.setDisplayTime(row.time);
        EXPECT_EQ(m_item.locatorColor(*locator), row.color) << row.name;
    }
}

TEST_F(SceneItemTest, CalculationShowsItsResultChannelsValueOrNothing)
{
    EXPECT_EQ(m_item.calculationText(1), "") << "no result channel: no invented number";
    addResultChannel(1, 12.345);
    m_item.setDisplayTime(0.05);
    EXPECT_EQ(m_item.calculationText(1), "12.35 m");
    EXPECT_EQ(m_item.calculationText(2), "");
    EXPECT_EQ(m_item.calculationText(-1), "");
    addResultChannel(2, std::nan(""));
    EXPECT_EQ(m_item.calculationText(2), "") << "no value at the time";
    QSceneItem without_model;
    EXPECT_EQ(without_model.calculationText(1), "");
}

TEST_F(SceneItemTest, TrackRibbonIsPaintedUntilTheTrackIsHidden)
{
    overmap_ui::QTrack* straight = track(101);
    ASSERT_NE(straight, nullptr);
    const int pieces = straight->segments()->size();
    const auto* first = qobject_cast<overmap_ui::QTrackSegment*>(straight->segments()->get(pieces / 2));
    ASSERT_NE(first, nullptr);
    // The middle of the ribbon's middle piece, away from the other tracks, in the middle of the screen.
    const QGeoCoordinate middle((first->posA().latitude() + first->posC().latitude()) / 2,
                                (first->posA().longitude() + first->posC().longitude()) / 2);
    // The view's middle 5 m east of the track: the ribbon stands 50 pixels left of it.
    m_viewport.setCenter(middle.atDistanceAndAzimuth(5.0, 90.0));
    m_viewport.setScaling(10.0);
    const QPointF track_middle = m_viewport.projectGPSToScreen(middle);
    EXPECT_NEAR(track_middle.x(), 150.0, 0.5);
    EXPECT_NEAR(track_middle.y(), 150.0, 0.5);
    // Beside the centre line, along which a calculation's line runs, inside the 4 m ribbon.
    const QPoint at(160, 150);
    const QPoint mirrored(240, 150);
    m_item.setBackgroundColor(Qt::white);
    // The handling loop runs along the straight here: hidden, the straight still covers the place.
    m_scene.instrument.objectsFilterModel()->setFiltered(100, true);
    const QImage painted = paint();
    EXPECT_LT(painted.pixelColor(at).red(), 220) << "the ribbon's fill darkens the white background";
    EXPECT_EQ(painted.pixelColor(mirrored), QColor(Qt::white)) << "nothing on the other side of the middle";
    m_scene.instrument.objectsFilterModel()->setFiltered(101, true);
    EXPECT_EQ(paint().pixelColor(at), QColor(Qt::white));
}

/// A cone is kept in the layer that is painted once for each view: moved by hand, it must
/// still be drawn at its new place.
TEST_F(SceneItemTest, MovedConeIsDrawnWhereItStandsNow)
{
    auto* cone =
        qobject_cast<overmap_ui::QPositionObject*>(m_scene.geoModel()->objectsManager()->getObjectById(22));
    ASSERT_NE(cone, nullptr);
    const QGeoCoordinate before = cone->position();
    m_viewport.setCenter(before);
    m_viewport.setScaling(2.0);
    m_item.setBackgroundColor(Qt::white);
    const QColor cone_color("#ff7f0e");
    EXPECT_EQ(paint().pixelColor(200, 150), cone_color);
    cone->setPosition(before.atDistanceAndAzimuth(30.0, 90.0)); // 60 pixels to the right
    m_item.setDisplayTime(1.0);
    const QImage moved = paint();
    EXPECT_NE(moved.pixelColor(200, 150), cone_color);
    EXPECT_EQ(moved.pixelColor(m_viewport.projectGPSToScreen(cone->position()).toPoint()), cone_color);
}

TEST_F(SceneItemTest, BackgroundIsItsColourOrLeftAlone)
{
    m_viewport.setCenter(QGeoCoordinate(10.0, 10.0)); // far from every object
    m_item.setBackgroundColor(QColor(10, 20, 30));
    EXPECT_EQ(paint().pixelColor(200, 150), QColor(10, 20, 30));
    m_item.setBackgroundColor(Qt::transparent);
    EXPECT_EQ(paint().pixelColor(200, 150).alpha(), 0) << "over the street map nothing hides it";
    m_item.setShowCoordinateSystem(true);
    const QImage grid = paint();
    int grid_pixels = 0;
    for (int x = 0; x < 400; ++x)
        grid_pixels += grid.pixelColor(x, 150).alpha() > 0 ? 1 : 0;
    EXPECT_GT(grid_pixels, 2) << "grid lines cross the middle row";
}

} // namespace
