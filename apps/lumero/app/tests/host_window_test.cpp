// The host in a real window (run under xvfb-run): the example scene at 65 s, the
// plug-in taken from its built file, the properties page, new recordings and failures.

#include <lumero_app/lumero_host.h>

#include <instrument_interface/instrument_model.h>
#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>
#include <om_ui/viewport.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include <cstdlib>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGeoCoordinate>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Sanitizer builds under software OpenGL are slow to start.
constexpr int READY_TIMEOUT_MS = 120'000;

lum::HostOptions exampleOptions()
{
    lum::HostOptions options;
    options.setup_path = QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml");
    options.data_paths = QStringList{QStringLiteral(LUMERO_EXAMPLES_DIR "/recordings/car1_drive_100hz.csv"),
                                     QStringLiteral(LUMERO_EXAMPLES_DIR "/recordings/car2_drive_100hz.csv")};
    options.time = 65.0;
    options.window_size = QSize(1200, 750);
    return options;
}

int objectCount(QObject* instrument)
{
    auto* model = instrument->property("geoModel").value<QObject*>();
    auto* manager = model ? model->property("objectsManager").value<QObject*>() : nullptr;
    auto* all = manager ? manager->property("allObjects").value<QObject*>() : nullptr;
    return all ? all->property("count").toInt() : -1;
}

void saveGrab(const QImage& picture, const QString& name)
{
    QDir().mkpath(QStringLiteral(LUMERO_GRAB_DIR));
    EXPECT_TRUE(picture.save(QStringLiteral(LUMERO_GRAB_DIR "/") + name)) << name.toStdString();
}

bool waitForFirstFrame(lum::LumeroHost& host)
{
    bool seen = false;
    QObject::connect(&host, &lum::LumeroHost::firstFrame, &host, [&seen] { seen = true; });
    return QTest::qWaitFor([&] { return host.isReady(); }, READY_TIMEOUT_MS) &&
           QTest::qWaitFor([&] { return seen; }, READY_TIMEOUT_MS);
}

TEST(HostWindow, ShowsTheExampleAtSixtyFiveSecondsFromTheBuiltPlugin)
{
    lum::LumeroHost host(exampleOptions());
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(waitForFirstFrame(host)) << host.errorText().toStdString();
    EXPECT_EQ(host.errorText(), QString());

    // The instrument comes from the file the build made, not from anything linked in.
    EXPECT_EQ(QFileInfo(host.pluginFile()).canonicalFilePath(),
              QFileInfo(QStringLiteral(OVERMAP_PLUGIN_FILE)).canonicalFilePath());
    im::InstrumentModel* instrument = host.instrument();
    ASSERT_NE(instrument, nullptr);
    EXPECT_EQ(instrument->getType(), "lum::overmap");
    EXPECT_EQ(objectCount(instrument), 19);
    EXPECT_EQ(instrument->getDataWindows().size(), 8u) << "the recordings' channels are bound";
    // A new instrument looks where the setup's view does (before, it opened at 0/0, far from the scene).
    const QGeoCoordinate center = instrument->property("center").value<QGeoCoordinate>();
    EXPECT_NEAR(center.latitude(), 47.996798719261, 1e-9);
    EXPECT_NEAR(center.longitude(), 10.245669948843, 1e-9);
    EXPECT_GT(host.application()->getChannels()->rowCount(), 0);

    // The setup's six calculations run in the host: their result channels are in the window's list.
    for (std::uint32_t id = 1; id <= 6; ++id) {
        const lum::qchannel::QChannel* result = host.application()->getChannels()->getChannelByID(
            channel_config::ChannelID(0x7f, 0x40000000u + id));
        ASSERT_NE(result, nullptr) << "calculation " << id;
        EXPECT_EQ(result->unit(), QStringLiteral("m"));
        bool ok = false;
        EXPECT_TRUE(std::isfinite(result->valueAtTime(65.0).toDouble(&ok)) && ok) << "calculation " << id;
    }
    EXPECT_EQ(host.application()
                  ->getChannels()
                  ->getChannelByID(channel_config::ChannelID(0x7f, 0x40000001u))
                  ->name(),
              QStringLiteral("Gap car 1 front to car 2 front"));

    EXPECT_EQ(host.timeBar()->time(), 65.0);
    EXPECT_EQ(host.timeBar()->timeText(), QStringLiteral("1:05.00"));
    EXPECT_EQ(host.application()->getState()->displayedTime(), 65.0);
    EXPECT_EQ(host.application()->getState()->mode(), lum::IfApplicationState::REPLAY);
    EXPECT_EQ(host.application()->getState()->measurementName(),
              QStringLiteral("car1_drive_100hz, car2_drive_100hz"));
    EXPECT_GT(host.timeBar()->end(), 65.0);
    EXPECT_NEAR(host.timeBar()->step(), 0.01, 1e-12) << "100 Hz recordings step by 10 ms";

    // The view and the page are loaded by their URLs and given the instrument.
    QObject* view = host.viewItem();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->property("instrumentModel").value<QObject*>(), instrument);
    if (view->metaObject()->indexOfProperty("displayedTime") >= 0) {
        EXPECT_EQ(view->property("displayedTime").toDouble(), 65.0);
        EXPECT_EQ(instrument->property("geoModel").value<QObject*>()->property("displayTime").toDouble(),
                  65.0);
    }
    ASSERT_NE(host.propertiesItem(), nullptr);

    const QImage picture = host.grab();
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(1200, 750) * host.window()->devicePixelRatio());
    saveGrab(picture, QStringLiteral("host_example_65s.png"));
}

// The map item's viewport, once the real view draws one.
overmap_ui::Viewport* findViewport(QQuickItem* item)
{
    if (auto* viewport = qobject_cast<overmap_ui::Viewport*>(item))
        return viewport;
    for (QQuickItem* child : item->childItems()) {
        if (auto* viewport = findViewport(child))
            return viewport;
    }
    return nullptr;
}

QPoint pixelOf(const overmap_ui::Viewport& viewport, const QGeoCoordinate& position, qreal ratio)
{
    const QPointF scene = viewport.mapToScene(viewport.projectGPSToScreen(position));
    return (scene * ratio).toPoint();
}

// Whether a pixel within @p radius of @p at has @p colour, each channel within 40.
bool colourNear(const QImage& picture, QPoint at, const QColor& colour, int radius = 3)
{
    for (int dy = -radius; dy <= radius; ++dy) {
        for (int dx = -radius; dx <= radius; ++dx) {
            const QPoint p = at + QPoint(dx, dy);
            if (!picture.rect().contains(p))
                continue;
            const QColor c = picture.pixelColor(p);
            if (std::abs(c.red() - colour.red()) <= 40 && std::abs(c.green() - colour.green()) <= 40 &&
                std::abs(c.blue() - colour.blue()) <= 40)
                return true;
        }
    }
    return false;
}

bool textShown(QQuickItem* item, const QString& text)
{
    if (item->isVisible() && item->property("text").toString() == text)
        return true;
    for (QQuickItem* child : item->childItems()) {
        if (textShown(child, text))
            return true;
    }
    return false;
}

TEST(HostWindow, CarsAndConesStandWhereTheViewportPutsThem)
{
    lum::LumeroHost host(exampleOptions());
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(waitForFirstFrame(host));
    overmap_ui::Viewport* viewport = findViewport(host.window()->contentItem());
    if (viewport == nullptr)
        GTEST_SKIP() << "the view draws no map item yet";
    QTest::qWait(1500); // the offline probe and the first frames settle
    auto* model =
        qobject_cast<overmap_ui::OvermapModel*>(host.instrument()->property("geoModel").value<QObject*>());
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(textShown(host.window()->contentItem(), QStringLiteral("No map in offline mode")));
    const qreal ratio = host.window()->devicePixelRatio();
    QImage picture = host.grab();
    saveGrab(picture, QStringLiteral("host_example_65s_pixels.png"));
    int cars = 0;
    int cones = 0;
    overmap_ui::QPositionObject* first_car = nullptr;
    const QList<overmap_ui::QPositionObject*> objects =
        model->objectsManager()->positionObjects()->typedList();
    QList<QPoint> car_pixels;
    for (overmap_ui::QPositionObject* object : objects) {
        if (object->getType() == overmap_ui::QGeoObject::CAR)
            car_pixels << pixelOf(*viewport, object->position(), ratio);
    }
    int checked = 0;
    for (overmap_ui::QPositionObject* object : objects) {
        const auto type = object->getType();
        if (type != overmap_ui::QGeoObject::CAR && type != overmap_ui::QGeoObject::CONE)
            continue;
        (type == overmap_ui::QGeoObject::CAR ? cars : cones) += 1;
        if (type == overmap_ui::QGeoObject::CAR && first_car == nullptr)
            first_car = object;
        const QPoint at = pixelOf(*viewport, object->position(), ratio);
        // A car driving through the slalom covers the cone it passes.
        const bool under_a_car = type == overmap_ui::QGeoObject::CONE &&
                                 std::any_of(car_pixels.begin(), car_pixels.end(), [&](const QPoint& car) {
                                     return (car - at).manhattanLength() < 12 * ratio;
                                 });
        if (picture.rect().contains(at) && !under_a_car) {
            ++checked;
            EXPECT_TRUE(colourNear(picture, at, object->color()))
                << object->name().toStdString() << " at " << at.x() << "," << at.y();
        }
    }
    EXPECT_EQ(cars, 2);
    EXPECT_GT(cones, 0);
    EXPECT_GE(checked, 10) << "the scene is in the picture";
    ASSERT_NE(first_car, nullptr);

    // Hidden in the properties, gone from the picture.
    const QPoint car_at = pixelOf(*viewport, first_car->position(), ratio);
    QMetaObject::invokeMethod(host.instrument(), "setObjectFiltered", Q_ARG(int, first_car->objectId()),
                              Q_ARG(bool, true));
    QTest::qWait(300);
    EXPECT_FALSE(colourNear(host.grab(), car_at, first_car->color(), 1)) << "the hidden car is still drawn";
    QMetaObject::invokeMethod(host.instrument(), "setObjectFiltered", Q_ARG(int, first_car->objectId()),
                              Q_ARG(bool, false));

    // Followed, the car stays in the middle while the time moves.
    host.instrument()->setProperty("positionObjectToFollow", first_car->objectId());
    host.instrument()->setProperty("followObjectPosition", true);
    for (double time : {66.0, 70.0}) {
        host.timeBar()->setTime(time);
        QTest::qWait(300);
        const QPointF middle(viewport->width() / 2.0, viewport->height() / 2.0);
        const QPointF car = viewport->projectGPSToScreen(first_car->position());
        EXPECT_NEAR(car.x(), middle.x(), 2.0) << "at " << time << " s";
        EXPECT_NEAR(car.y(), middle.y(), 2.0) << "at " << time << " s";
    }
}

TEST(HostWindow, DoubleClickActionTogglesThePropertiesPage)
{
    lum::LumeroHost host(exampleOptions());
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(waitForFirstFrame(host));
    auto* page = qobject_cast<QQuickItem*>(host.window()->findChild<QObject*>("instrumentPropertiesLoader"));
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(page->isVisible());
    // The views reach the action through the context object "actions".
    QObject* context_actions = nullptr;
    for (QObject* child : host.children()) {
        if (qobject_cast<lum::HostActions*>(child) != nullptr)
            context_actions = child;
    }
    ASSERT_NE(context_actions, nullptr);
    QMetaObject::invokeMethod(context_actions, "toggleInstrumentProperties");
    EXPECT_FALSE(page->isVisible());
    auto* view = qobject_cast<QQuickItem*>(host.viewItem());
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->width() > 1100; }, 5000))
        << "the view takes the page's room, width " << view->width();
    QMetaObject::invokeMethod(context_actions, "toggleInstrumentProperties");
    EXPECT_TRUE(page->isVisible());
}

TEST(HostWindow, NewRecordingsKeepTheInstrumentsSettings)
{
    lum::HostOptions options = exampleOptions();
    options.time.reset();
    lum::LumeroHost host(options);
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(waitForFirstFrame(host));
    QPointer<im::InstrumentModel> first = host.instrument();
    ASSERT_TRUE(first->setProperty("zoomFactor", 2.5));
    ASSERT_TRUE(first->setProperty("filteredObjects", QStringLiteral("2")));
    host.timeBar()->setTime(30.0);

    QSignalSpy ready(&host, &lum::LumeroHost::ready);
    ASSERT_TRUE(ready.isValid());
    host.openRecordings(QStringList{options.data_paths.at(1)});
    EXPECT_TRUE(host.isLoading());
    ASSERT_TRUE(ready.wait(READY_TIMEOUT_MS));
    ASSERT_NE(host.instrument(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }, 5000)) << "the old instrument is gone";
    im::InstrumentModel* second = host.instrument();
    EXPECT_EQ(second->property("zoomFactor").toDouble(), 2.5);
    EXPECT_EQ(second->property("filteredObjects").toString(), QStringLiteral("2"));
    EXPECT_EQ(host.application()->getState()->measurementName(), QStringLiteral("car2_drive_100hz"));
    EXPECT_EQ(host.timeBar()->time(), 30.0);
    EXPECT_EQ(host.viewItem()->property("instrumentModel").value<QObject*>(), second);
}

TEST(HostWindow, AnUnreadableRecordingLeavesTheSetupShown)
{
    lum::HostOptions options = exampleOptions();
    options.data_paths = QStringList{QStringLiteral(LUMERO_EXAMPLES_DIR "/recordings/no_such_drive.csv")};
    lum::LumeroHost host(options);
    uni_testing::QtMessageCapture capture; // the setup's channels are missing: the model says so
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(QTest::qWaitFor([&] { return host.isReady(); }, READY_TIMEOUT_MS));
    EXPECT_TRUE(host.errorText().startsWith(QStringLiteral("Cannot open the recordings: ")))
        << host.errorText().toStdString();
    ASSERT_NE(host.instrument(), nullptr);
    EXPECT_EQ(objectCount(host.instrument()), 19);
    EXPECT_EQ(host.application()->getChannels()->rowCount(), 0);
}

TEST(HostWindow, AFolderWithoutAnInstrumentPluginIsReported)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    // A file that looks like a plug-in and is not, beside a text file.
    for (const char* name : {"libovermap_instrument.so", "README.txt"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not a library");
    }
    lum::HostOptions options = exampleOptions();
    options.plugin_folder = folder.path();
    lum::LumeroHost host(options);
    uni_testing::QtMessageCapture capture;
    ASSERT_TRUE(host.start()) << "the window shows even without an instrument";
    EXPECT_TRUE(host.errorText().startsWith(QStringLiteral("No instrument plug-in for lum::overmap in ")))
        << host.errorText().toStdString();
    EXPECT_TRUE(host.errorText().contains(QStringLiteral("libovermap_instrument.so (not a plug-in)")))
        << host.errorText().toStdString();
    EXPECT_FALSE(host.errorText().contains(QStringLiteral("README")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !host.isLoading(); }, READY_TIMEOUT_MS));
    QTest::qWait(50);
    EXPECT_EQ(host.instrument(), nullptr);
    EXPECT_EQ(host.viewItem(), nullptr);
}

TEST(HostWindow, TheTileFolderIsRememberedAndRemakesTheView)
{
    QTemporaryDir tiles;
    QTemporaryDir other_tiles;
    ASSERT_TRUE(tiles.isValid() && other_tiles.isValid());
    lum::HostOptions options = exampleOptions();
    options.data_paths.clear();
    options.tile_folder = tiles.path();
    {
        lum::LumeroHost host(options);
        uni_testing::QtMessageCapture capture; // no recordings: the setup's channels are missing
        ASSERT_TRUE(host.start());
        ASSERT_TRUE(QTest::qWaitFor([&] { return host.viewItem() != nullptr; }, READY_TIMEOUT_MS));
        const QString context_folder = qmlContext(host.window())->contextProperty("mapTileFolder").toString();
        EXPECT_EQ(context_folder, QFileInfo(tiles.path()).absoluteFilePath());
        QPointer<QObject> first_view = host.viewItem();
        QSignalSpy remade(&host, &lum::LumeroHost::viewGenerationChanged);
        ASSERT_TRUE(remade.isValid());
        host.setTileFolder(other_tiles.path());
        EXPECT_EQ(remade.count(), 1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return first_view.isNull(); }, 5000)) << "the old view is gone";
        ASSERT_NE(host.viewItem(), nullptr);
        EXPECT_EQ(host.viewItem()->property("instrumentModel").value<QObject*>(), host.instrument());
        EXPECT_EQ(qmlContext(host.window())->contextProperty("mapTileFolder").toString(), other_tiles.path());
        host.setTileFolder(other_tiles.path());
        EXPECT_EQ(remade.count(), 1) << "the same folder remakes nothing";
    }
    // The next start without the option finds the folder in the settings.
    options.tile_folder.clear();
    lum::LumeroHost again(options);
    EXPECT_EQ(again.tileFolder(), other_tiles.path());
}

// Tiles of one colour in the flat folder that the osm plug-in reads offline, named as it
// looks them up, around the example's place at every zoom the view may choose.
void writeTiles(const QString& folder, const QColor& colour)
{
    QImage tile(256, 256, QImage::Format_RGB32);
    tile.fill(colour);
    const double latitude = 47.9968 * M_PI / 180.0;
    const double longitude = 10.2457;
    for (int z = 12; z <= 19; ++z) {
        const double n = std::pow(2.0, z);
        const int x = static_cast<int>((longitude + 180.0) / 360.0 * n);
        const int y = static_cast<int>(
            (1.0 - std::log(std::tan(latitude) + 1.0 / std::cos(latitude)) / M_PI) / 2.0 * n);
        for (int dx = -3; dx <= 3; ++dx) {
            for (int dy = -3; dy <= 3; ++dy) {
                const QString name =
                    QStringLiteral("osm_100-l-1-%1-%2-%3.png").arg(z).arg(x + dx).arg(y + dy);
                ASSERT_TRUE(tile.save(folder + QLatin1Char('/') + name)) << name.toStdString();
            }
        }
    }
}

TEST(HostWindow, StreetMapShowsFromTheTileFolderOffline)
{
    QTemporaryDir tiles;
    ASSERT_TRUE(tiles.isValid());
    const QColor magenta(230, 20, 200);
    writeTiles(tiles.path(), magenta);
    lum::HostOptions options = exampleOptions();
    options.tile_folder = tiles.path();
    lum::LumeroHost host(options);
    ASSERT_TRUE(host.start());
    ASSERT_TRUE(waitForFirstFrame(host)) << host.errorText().toStdString();
    // Tiles arrive on their own time, even from files: count the map's pixels in their colour.
    QQuickItem* view = qobject_cast<QQuickItem*>(host.viewItem());
    ASSERT_NE(view, nullptr);
    const qreal ratio = host.window()->devicePixelRatio();
    const auto tiled = [&] {
        const QImage picture = host.grab();
        int hits = 0;
        int samples = 0;
        for (double fx = 0.05; fx < 1.0; fx += 0.1) {
            for (double fy = 0.05; fy < 1.0; fy += 0.1) {
                const QPointF at = view->mapToScene(QPointF(view->width() * fx, view->height() * fy)) * ratio;
                ++samples;
                hits += colourNear(picture, at.toPoint(), magenta, 0) ? 1 : 0;
            }
        }
        return hits * 2 > samples;
    };
    EXPECT_TRUE(QTest::qWaitFor(tiled, 30000)) << "most of the view shows the folder's tiles";
    saveGrab(host.grab(), QStringLiteral("host_tile_folder.png"));
}

TEST(HostWindow, SavingWritesTheSetupAndNeedsAFile)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    lum::HostOptions options;
    options.window_size = QSize(800, 600);
    lum::LumeroHost host(options);
    uni_testing::QtMessageCapture capture;
    ASSERT_TRUE(host.start());
    EXPECT_FALSE(host.saveSetup());
    EXPECT_TRUE(host.errorText().contains(QStringLiteral("Save setup as")));
    ASSERT_TRUE(host.openSetup(QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml")));
    const QString copy = folder.filePath("copy.xml");
    ASSERT_TRUE(host.saveSetupAs(copy));
    EXPECT_EQ(host.setupFile(), copy);
    QFile original(QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml"));
    QFile saved(copy);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), original.readAll()) << "an unchanged setup is saved as it was read";
    EXPECT_FALSE(host.openSetup(folder.filePath("absent.xml")));
    EXPECT_TRUE(host.errorText().startsWith(QStringLiteral("Cannot open the setup ")))
        << host.errorText().toStdString();
}

} // namespace

namespace {

// What instrument views import of the host: every widget, the theme and the bases.
TEST(HostQmlModules, TheBasesWidgetsAndThemeLoad)
{
    lum::registerHostQmlTypes();
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qml"));
    QQmlComponent component(&engine);
    component.setData(R"(
import QtQuick 2.15
import Lumero 1.0
import Lumero.Themes 1.0
import Lumero.Widgets 1.0
import instruments.private 1.0
Item {
    property var view: AbstractInstrument {}
    property var page: AbstractInstrumentProperties { title: "Overmap" }
    property color text: Theme.textColor
    property int tiny: Theme.tinySpacing
    Column {
        GroupHeader { text: "Street map" }
        Label { text: "label" }
        CheckBox { text: "Show map" }
        Slider {}
        LabeledSlider { text: "Map opacity"; value: 0.5 }
        ComboBox { model: ["a", "b"]; textRole: "" }
        Switch {}
        Button { text: "button" }
        PropertiesPage { title: "page"; Label { text: "inside" } }
    }
}
)",
                      QUrl(QStringLiteral("qrc:/test/Modules.qml")));
    std::unique_ptr<QObject> root(component.create());
    ASSERT_NE(root, nullptr) << component.errorString().toStdString();
    auto* view = root->property("view").value<QObject*>();
    ASSERT_NE(view, nullptr);
    EXPECT_FALSE(view->property("instrumentModel").isValid() &&
                 view->property("instrumentModel").value<QObject*>() != nullptr);
    EXPECT_EQ(view->property("displayedTime").toDouble(), 0.0);
    EXPECT_FALSE(view->property("isMaximizable").toBool());
    EXPECT_FALSE(view->property("showIcon").toBool());
    auto* area = view->property("instrumentArea").value<QObject*>();
    ASSERT_NE(area, nullptr);
    EXPECT_FALSE(area->property("designMode").toBool());
    EXPECT_FALSE(area->property("printMode").toBool());
    auto* page = root->property("page").value<QObject*>();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->metaObject()->indexOfProperty("instrument") >= 0, true);
    EXPECT_EQ(root->property("text").value<QColor>(), QColor("#1f2328"));
    EXPECT_EQ(root->property("tiny").toInt(), 4);
}

} // namespace
