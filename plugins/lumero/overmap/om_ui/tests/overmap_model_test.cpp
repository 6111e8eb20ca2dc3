// The display model against a real extension module: the example setup with its
// recordings, write-back and its debounce, several models on one extension, damaged
// texts, the file operations and the online probe.

#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/qcalculation.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>

#include <lum_host/qextension_module.h>
#include <lum_utils/image_store.h>
#include <math_geo/projection_plane.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>
#include <uni_testing/log_capture.h>

#include <ferrin_core/scalar_channel.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <cmath>

namespace {

using overmap_ui::OvermapModel;
using overmap_ui::QGeoObject;
using overmap_ui::QPositionObject;

const QString EXAMPLE_SETUP = QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml");
const char* const LOG = "overmap";

/// Models probe a local port that refuses at once: tests never reach the internet.
void useLocalProbe()
{
    static QTemporaryDir settings_dir;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
    QSettings().setValue(OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
}

QString readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeFile(const QString& path, const QString& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0;
}

/// The two example recordings in one channel list, node 1 and node 2 as the setup expects.
class Recordings
{
public:
    Recordings()
        : m_loaded(overmap_replay::loadRecordings({LUMERO_EXAMPLES_DIR "/recordings/car1_drive_100hz.csv",
                                                   LUMERO_EXAMPLES_DIR "/recordings/car2_drive_100hz.csv"})),
          m_list(lum::qchannel::QChannelListModel::DELIVERY_IMMEDIATE, true)
    {
        EXPECT_TRUE(m_loaded) << m_loaded.error;
        for (const auto& channel : m_loaded.manager->channels())
            m_list.appendChannel(new lum::qchannel::QChannel(channel));
    }
    lum::qchannel::QChannelListModel* list() { return &m_list; }
    double valueAt(channel_config::ChannelID id, double time) const
    {
        return m_list.getChannelByID(id)->ferrinScalarChannel()->getValueAtTime(time, nullptr);
    }

private:
    overmap_replay::LoadedRecordings m_loaded;
    lum::qchannel::QChannelListModel m_list;
};

/// One line per object and calculation: what a graph and a setup text must agree on.
QStringList summary(const overmap::ObjectManager& record)
{
    QStringList lines;
    for (const auto& object : record.getObjects())
        lines << QString("%1 %2").arg(object->getId()).arg(QString::fromStdString(object->getName()));
    for (const auto& calculation : record.getCalculations())
        lines << QString("calc %1 %2")
                     .arg(calculation->getId())
                     .arg(QString::fromStdString(calculation->getName()));
    return lines;
}

class NoChannels : public overmap::IfChannelFetcher
{
public:
    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID) override { return nullptr; }
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string) override { return nullptr; }
};

QStringList summary(const QString& setup_text)
{
    overmap::ObjectManager record;
    NoChannels no_channels;
    overmap::XmlReadWriter(&record, &no_channels).read(setup_text.toStdString());
    return summary(record);
}

/// Position objects first, then tracks, as a written setup orders them.
QStringList summary(const OvermapModel& model)
{
    QStringList lines;
    const auto* manager = model.objectsManager();
    for (QGeoObject* object : manager->positionObjects()->typedList())
        lines << QString("%1 %2").arg(object->objectId()).arg(object->name());
    for (QGeoObject* object : manager->tracks()->typedList())
        lines << QString("%1 %2").arg(object->objectId()).arg(object->name());
    for (auto* calculation : manager->calculations()->typedList())
        lines << QString("calc %1 %2").arg(calculation->calcId()).arg(calculation->name());
    return lines;
}

class OvermapModelTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { useLocalProbe(); }

    /// A model wired as a host wires it, on the shared extension.
    std::unique_ptr<OvermapModel> makeModel()
    {
        auto model = std::make_unique<OvermapModel>();
        model->setImageStore(&m_images);
        model->setExtension(&m_extension);
        model->setChannelList(m_recordings.list());
        return model;
    }

    static void settle() { QCoreApplication::processEvents(); }

    Recordings m_recordings;
    lum_utils::ImageStore m_images;
    QExtensionModule m_extension{"EB69CED9-93DA-4E49-A377-2161F674DC1D", 0x7f};
    QTemporaryDir m_dir;
};

TEST_F(OvermapModelTest, ExampleSetupLoadsBindsChannelsAndFollowsTheTime)
{
    auto model = makeModel();
    QSignalSpy updated(model.get(), &OvermapModel::configurationUpdated);
    ASSERT_TRUE(updated.isValid());
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    EXPECT_EQ(updated.count(), 1);
    EXPECT_EQ(model->configFile(), EXAMPLE_SETUP);
    EXPECT_EQ(model->description(), "Proving ground: handling loop and slalom");

    const auto* manager = model->objectsManager();
    EXPECT_EQ(manager->positionObjects()->size(), 16);
    EXPECT_EQ(manager->tracks()->size(), 3);
    EXPECT_EQ(manager->allObjects()->size(), 19);
    EXPECT_EQ(manager->calculations()->size(), 6);
    ASSERT_NE(model->locator(), nullptr);
    EXPECT_EQ(model->locator()->name(), "Base GPS");
    // Two cars with latitude, longitude and heading, and the locator on car 1's position
    // channels: six distinct channels, each listed once.
    EXPECT_EQ(model->inputChannels()->size(), 6);

    auto* car1 = qobject_cast<QPositionObject*>(manager->getObjectById(1));
    ASSERT_NE(car1, nullptr);
    ASSERT_NE(car1->latitudeChannel(), nullptr);
    EXPECT_EQ(car1->latitudeChannel()->ferrinScalarChannel()->getChannelId(),
              channel_config::ChannelID(1, 1));

    model->setDisplayTime(65.0);
    EXPECT_NEAR(car1->latitude(), m_recordings.valueAt(channel_config::ChannelID(1, 1), 65.0), 1e-12);
    EXPECT_NEAR(car1->longitude(), m_recordings.valueAt(channel_config::ChannelID(1, 2), 65.0), 1e-12);

    // Loading alone writes nothing back.
    settle();
    EXPECT_EQ(m_extension.getExtensionConfiguration(), readFile(EXAMPLE_SETUP));
}

TEST_F(OvermapModelTest, ChangedExampleIsSavedAndReadBackWhole)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    QSignalSpy written(&m_extension, &QExtensionModule::extensionConfigurationChanged);
    ASSERT_TRUE(written.isValid());

    auto* manager = model->objectsManager();
    manager->getObjectById(1)->setName("Lead car");
    QGeoObject* cone = manager->addObject(QGeoObject::CONE);
    ASSERT_NE(cone, nullptr);
    ASSERT_TRUE(manager->removeCalculation(0));
    settle();
    EXPECT_EQ(written.count(), 1) << "three changes in one turn make one write";
    const QString text = m_extension.getExtensionConfiguration();
    EXPECT_EQ(summary(text), summary(*model));
    EXPECT_TRUE(summary(text).contains("1 Lead car"));

    const QString path = m_dir.filePath("changed.xml");
    ASSERT_TRUE(model->saveSetup(QUrl::fromLocalFile(path)));
    EXPECT_EQ(model->configFile(), path);

    QExtensionModule other("other", 0x7f);
    OvermapModel reader;
    reader.setImageStore(&m_images);
    reader.setExtension(&other);
    reader.setChannelList(m_recordings.list());
    ASSERT_TRUE(reader.loadSetup(QUrl::fromLocalFile(path)));
    EXPECT_EQ(summary(reader), summary(*model));
    EXPECT_EQ(other.getExtensionConfiguration(), text);
}

TEST_F(OvermapModelTest, OwnWriteIsNoRebuildAndChangesDuringALoadWriteNothing)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();
    QSignalSpy updated(model.get(), &OvermapModel::configurationUpdated);
    QSignalSpy written(&m_extension, &QExtensionModule::extensionConfigurationChanged);
    ASSERT_TRUE(updated.isValid() && written.isValid());
    QPointer<QGeoObject> car = model->objectsManager()->getObjectById(1);

    car->setName("Renamed");
    settle();
    EXPECT_EQ(written.count(), 1);
    EXPECT_EQ(updated.count(), 0);
    EXPECT_FALSE(car.isNull()) << "the model rebuilt from its own write";

    // A model rebuilding from a foreign text sends nothing back, even though every
    // object it makes reports a change.
    m_extension.setExtensionConfiguration(readFile(EXAMPLE_SETUP));
    settle();
    EXPECT_EQ(updated.count(), 1);
    EXPECT_EQ(written.count(), 2);
    EXPECT_TRUE(car.isNull());
}

TEST_F(OvermapModelTest, PendingWriteWinsOverAForeignText)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();
    uni_testing::LogCapture log;
    model->objectsManager()->getObjectById(2)->setName("Mine");
    m_extension.setExtensionConfiguration("<?xml version=\"1.0\"?><Overmap version=\"1.0\"/>");
    EXPECT_TRUE(log.contains(LOG, 1,
                             "Update in this UI-extension is pending - ignoring update from the model "
                             "(assuming just a topology change)"));
    EXPECT_EQ(model->objectsManager()->allObjects()->size(), 19);
    settle();
    EXPECT_TRUE(summary(m_extension.getExtensionConfiguration()).contains("2 Mine"));
}

TEST_F(OvermapModelTest, DamagedTextKeepsTheShownScene)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();
    QPointer<QGeoObject> car = model->objectsManager()->getObjectById(1);
    QSignalSpy updated(model.get(), &OvermapModel::configurationUpdated);
    ASSERT_TRUE(updated.isValid());
    uni_testing::LogCapture log;

    const QString damaged = readFile(EXAMPLE_SETUP).left(5000);
    m_extension.setExtensionConfiguration(damaged);
    EXPECT_TRUE(log.contains(LOG, 1, "Unanble to load overmap setup for the UI"));
    EXPECT_EQ(updated.count(), 0);
    EXPECT_FALSE(car.isNull());
    EXPECT_EQ(model->objectsManager()->allObjects()->size(), 19);
    EXPECT_EQ(model->configFile(), EXAMPLE_SETUP);

    // The model keeps working: its next change writes its whole graph over the damage.
    car->setName("Still here");
    settle();
    EXPECT_EQ(summary(m_extension.getExtensionConfiguration()), summary(*model));
}

/// Three models on one extension take turns in changing the scene; after each turn all
/// three graphs and the text agree.
TEST_F(OvermapModelTest, ThreeModelsOnOneExtensionConverge)
{
    std::vector<std::unique_ptr<OvermapModel>> models;
    for (int i = 0; i < 3; ++i)
        models.push_back(makeModel());
    ASSERT_TRUE(models[0]->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();

    const std::vector<std::function<void(overmap_ui::QObjectManager&)>> turns = {
        [](auto& m) { m.getObjectById(1)->setName("First"); },
        [](auto& m) { m.addObject(QGeoObject::CAR); },
        [](auto& m) {
            const QList<QGeoObject*> objects = m.allObjects()->typedList();
            for (int i = 0; i < objects.size(); ++i) {
                if (objects[i]->name() == "Car 3") {
                    EXPECT_TRUE(m.isItemRemovable(i));
                    EXPECT_TRUE(m.removeItem(i));
                }
            }
        },
        [](auto& m) {
            // A calculation stands in a setup only with both its objects.
            auto* calculation = m.addCalculation();
            calculation->setFromObject(m.getObjectById(1));
            calculation->setToObject(m.getObjectById(2));
        },
        [](auto& m) {
            m.getObjectById(2)->setName("Second");
            m.addObject(QGeoObject::TRACK_LINE);
        },
        [](auto& m) { m.setDescription("objects described"); },
    };
    for (std::size_t turn = 0; turn < turns.size(); ++turn) {
        turns[turn](*models[turn % 3]->objectsManager());
        settle();
        const std::string expected =
            summary(m_extension.getExtensionConfiguration()).join('\n').toStdString();
        for (std::size_t i = 0; i < models.size(); ++i)
            EXPECT_EQ(summary(*models[i]).join('\n').toStdString(), expected)
                << "turn " << turn << ", model " << i;
    }
    EXPECT_TRUE(m_extension.getExtensionConfiguration().contains("objects described"));
}

TEST_F(OvermapModelTest, PartialLoadsReplaceTheirElementsOrNothing)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();
    const QString before = m_extension.getExtensionConfiguration();

    const QString no_view = m_dir.filePath("no_view.xml");
    ASSERT_TRUE(writeFile(no_view, "<Overmap><GeoObjects/><Tracks/></Overmap>"));
    EXPECT_FALSE(model->loadLocation(QUrl::fromLocalFile(no_view)));
    EXPECT_FALSE(model->loadObjects(QUrl::fromLocalFile(no_view))) << "no Calculations element";
    EXPECT_FALSE(model->loadSetup(QUrl::fromLocalFile(m_dir.filePath("missing.xml"))));
    EXPECT_EQ(m_extension.getExtensionConfiguration(), before);

    const QString other_view = m_dir.filePath("view.xml");
    ASSERT_TRUE(writeFile(other_view, "<Overmap><View description=\"moved\" latitude=\"48\" longitude=\"11\" "
                                      "rotation=\"10\" usePlaneDefinitionPoints=\"false\"/></Overmap>"));
    ASSERT_TRUE(model->loadLocation(QUrl::fromLocalFile(other_view)));
    EXPECT_DOUBLE_EQ(model->referencePlane()->planeOrigin().latitude(), 48.0);
    EXPECT_DOUBLE_EQ(model->referencePlane()->planeRotation(), 10.0);
    EXPECT_EQ(model->referencePlane()->description(), "moved");
    EXPECT_EQ(model->objectsManager()->allObjects()->size(), 19) << "the objects stay";

    const QString empty_scene = m_dir.filePath("objects.xml");
    ASSERT_TRUE(writeFile(empty_scene, "<Overmap><GeoObjects/><Tracks/><Calculations/></Overmap>"));
    ASSERT_TRUE(model->loadObjects(QUrl::fromLocalFile(empty_scene)));
    EXPECT_EQ(model->objectsManager()->allObjects()->size(), 0);
    EXPECT_EQ(model->referencePlane()->description(), "moved") << "the view stays";
}

TEST_F(OvermapModelTest, BackgroundImageTravelsInsideTheSetupFile)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    const QByteArray png("\x89PNG\r\n\x1a\n-bytes-", 15);
    m_images.setImageData("ground.png", "image/png", png);
    model->referencePlane()->backgroundImage()->setImagePath("ground.png");
    settle();
    const QString path = m_dir.filePath("with_image.xml");
    ASSERT_TRUE(model->saveSetup(QUrl::fromLocalFile(path)));
    const QString saved = readFile(path);
    EXPECT_TRUE(saved.contains("<Images><Image ") && saved.contains("fileName=\"ground.png\""))
        << saved.right(300).toStdString();

    lum_utils::ImageStore other_images;
    QExtensionModule other("other", 1);
    OvermapModel reader;
    reader.setImageStore(&other_images);
    reader.setExtension(&other);
    reader.setChannelList(m_recordings.list());
    ASSERT_TRUE(reader.loadSetup(QUrl::fromLocalFile(path)));
    EXPECT_EQ(other_images.imageData("ground.png"), png);
    EXPECT_EQ(reader.referencePlane()->backgroundImage()->imagePath(), "ground.png");
}

TEST_F(OvermapModelTest, ViewCentreAtZeroOpensAtThePlaneOrigin)
{
    auto model = makeModel();
    m_extension.setExtensionConfiguration(
        "<Overmap><View latitude=\"47.5\" longitude=\"10.5\" rotation=\"0\" "
        "usePlaneDefinitionPoints=\"false\">"
        "<MapSetupView latitude=\"0\" longitude=\"0\" rotation=\"0\" mapScaleS=\"1\"/></View>"
        "<GeoObjects/><Tracks/><Calculations/></Overmap>");
    EXPECT_EQ(model->referencePlane()->viewCenter(), QGeoCoordinate(47.5, 10.5));
}

TEST_F(OvermapModelTest, DisplayTimeStepsBelowAMicrosecondAreIgnored)
{
    auto model = makeModel();
    QSignalSpy time(model.get(), &OvermapModel::displayTimeChanged);
    ASSERT_TRUE(time.isValid());
    model->setDisplayTime(1e-07);
    EXPECT_EQ(time.count(), 0);
    model->setDisplayTime(2e-06);
    EXPECT_EQ(time.count(), 1);
}

TEST_F(OvermapModelTest, DefaultPositionStepsOffOccupiedPlaces)
{
    auto model = makeModel();
    model->referencePlane()->setPlaneOrigin(QGeoCoordinate(48.0, 11.0));
    const math_geo::ProjectionPlane plane = *model->referencePlane()->projectionPlane();
    auto* manager = model->objectsManager();
    // Three cones, each where the walk would put the next candidate, in reverse order
    // so that the second walk is needed.
    for (double step : {2.0, 1.0, 0.0}) {
        auto* cone = qobject_cast<QPositionObject*>(manager->addObject(QGeoObject::CONE));
        ASSERT_NE(cone, nullptr);
        const math_geo::GeoPosition place =
            plane.toGeoPosition(math_geo::Point2D(-step, -step, plane.getXYCoordinateSystem()));
        cone->setPosition(QGeoCoordinate(place.latitude, place.longitude));
    }
    const QGeoCoordinate result = model->defaultPosition();
    const math_geo::Point2D xy = plane.toPlane(math_geo::GeoPosition(result.latitude(), result.longitude()));
    EXPECT_NEAR(xy.x, -3.0, 1e-6);
    EXPECT_NEAR(xy.y, -3.0, 1e-6);
}

TEST_F(OvermapModelTest, ResetModelWritesAnEmptyScene)
{
    auto model = makeModel();
    ASSERT_TRUE(model->loadSetup(QUrl::fromLocalFile(EXAMPLE_SETUP)));
    settle();
    model->resetModel();
    EXPECT_EQ(model->locator(), nullptr);
    EXPECT_TRUE(model->configFile().isEmpty());
    settle();
    EXPECT_TRUE(summary(m_extension.getExtensionConfiguration()).isEmpty());
}

/// The probe against a server of the test's own: online while it answers 200, offline
/// once it is gone, with one log line for the change.
TEST_F(OvermapModelTest, OnlineProbeFollowsTheReply)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::newConnection, [&server] {
        QTcpSocket* socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            socket->readAll();
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
            socket->disconnectFromHost();
        });
    });
    auto model = makeModel();
    QSignalSpy online(model.get(), &OvermapModel::isOnlineChanged);
    ASSERT_TRUE(online.isValid());
    ASSERT_TRUE(online.wait(5000)) << "the refused construction probe reports offline";
    EXPECT_FALSE(model->isOnline());

    const QUrl url(QString("http://127.0.0.1:%1/").arg(server.serverPort()));
    model->setProbeUrl(url);
    ASSERT_TRUE(online.wait(5000));
    EXPECT_TRUE(online.last().at(0).toBool());

    uni_testing::LogCapture log;
    server.close();
    QMetaObject::invokeMethod(model.get(), "checkNetwork");
    ASSERT_TRUE(online.wait(5000));
    EXPECT_FALSE(online.last().at(0).toBool());
    QMetaObject::invokeMethod(model.get(), "checkNetwork");
    EXPECT_FALSE(online.wait(300)) << "no change, no signal";
    EXPECT_EQ(log.count(LOG, 3, "not reachable"), 1u);
}

} // namespace
