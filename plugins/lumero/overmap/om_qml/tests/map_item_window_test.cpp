// The map item in a real window on the example scene at t = 65 s: pixels at the places the
// viewport gives for the objects, hiding, following and heading-up. Needs an X server with
// OpenGL (run under xvfb-run).

#include <om_qml/qscene_item.h>
#include <om_qml/register_qml_module.h>

#include <om_instrument/overmap_instrument.h>
#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qcar.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/viewport.h>

#include <lum_host/host_application.h>
#include <lum_host/qextension_module.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>
#include <uni_base/uni_assert.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>
#include <QQuickView>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

namespace {

const QString EXAMPLES = QStringLiteral(LUMERO_EXAMPLES_DIR);
const std::string EXAMPLE_RECORDINGS = LUMERO_EXAMPLES_DIR "/recordings/";
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
    static void SetUpTestSuite()
    {
        static QTemporaryDir settings_dir;
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
        // The online probe asks a local port that refuses at once, never the internet.
        QSettings().setValue(overmap_ui::OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
        overmap_qml::registerQmlModule();
    }

    void SetUp() override
    {
        m_recordings = overmap_replay::loadRecordings(
            {EXAMPLE_RECORDINGS + "car1_drive_100hz.csv", EXAMPLE_RECORDINGS + "car2_drive_100hz.csv"});
        ASSERT_TRUE(m_recordings) << m_recordings.error;
        for (const auto& channel : m_recordings.manager->channels())
            m_host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
        auto* extension = new QExtensionModule(im::OvermapInstrument::EXTENSION_ID, 0x7f);
        ASSERT_TRUE(extension->loadFromFile(EXAMPLES + "/setups/proving_ground.xml"));
        ASSERT_TRUE(m_host.addExtensionModule(extension));
        m_instrument.setApplication(&m_host);
        m_instrument.connectToApplication();
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

    overmap_ui::OvermapModel* geoModel() { return m_instrument.geoModel(); }

    overmap_ui::QCar* car(int id)
    {
        return qobject_cast<overmap_ui::QCar*>(geoModel()->objectsManager()->getObjectById(id));
    }

    QImage grab()
    {
        // A frame after every change, so that the picture shows the present state.
        QTest::qWait(50);
        return m_view->grabWindow();
    }

    overmap_replay::LoadedRecordings m_recordings;
    lum::HostApplication m_host;
    im::OvermapInstrument m_instrument;
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
    auto* cone = qobject_cast<overmap_ui::QPositionObject*>(geoModel()->objectsManager()->getObjectById(10));
    ASSERT_NE(cone, nullptr);
    EXPECT_TRUE(colorAt(picture, m_map->projectGPSToScreen(cone->position()), CONE_COLOR));
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

} // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication app(argc, argv);
    uni::setAssertHandler(&uni_testing::failingAssertHandler);
    return RUN_ALL_TESTS();
}
