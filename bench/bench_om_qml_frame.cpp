// Frame time of the map item during playback at 1x: 100 cars moving on their recordings,
// 1,000 cones and tracks of 100,000 vertices in all, the whole scene on an 800x600 window.
// Needs an X server with OpenGL: run it under `xvfb-run -a` (software OpenGL on llvmpipe).
// Each frame moves the display time by 1/60 s and waits until the window has swapped; the
// second case follows a car, so that the view's centre moves at every frame.

#include <om_instrument/overmap_instrument.h>
#include <om_qml/register_qml_module.h>
#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/viewport.h>

#include <lum_host/host_application.h>
#include <lum_host/qextension_module.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>

#include <benchmark/benchmark.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QQuickView>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int CARS = 100;
constexpr int CONES = 1000;
constexpr int TRACKS = 10;
constexpr int TRACK_VERTICES = 10000; // per track: 100,000 in all
constexpr double LATITUDE = 47.995;
constexpr double LONGITUDE = 10.245;
constexpr double METRES_PER_DEGREE = 111194.9;
const double LONGITUDE_METRES = METRES_PER_DEGREE * std::cos(LATITUDE * M_PI / 180.0);

QString coordinate(double north, double east)
{
    return QString::number(LATITUDE + north / METRES_PER_DEGREE, 'f', 9) + ' ' +
           QString::number(LONGITUDE + east / LONGITUDE_METRES, 'f', 9);
}

/// Car n drives a circle of its own radius at 10 Hz for two minutes.
QString writeRecording(const QString& folder, int n)
{
    const QString path = folder + QString("/car%1.csv").arg(n);
    QFile file(path);
    file.open(QIODevice::WriteOnly | QIODevice::Text);
    QTextStream out(&file);
    out << "# start_time=2026-06-15T09:30:00Z\n"
           "time [s],latitude [deg],longitude [deg],altitude [m],heading [deg],speed "
           "[km/h],fix_quality,satellites\n";
    const double radius = 40.0 + 3.0 * n;
    for (int i = 0; i <= 1200; ++i) {
        const double t = i * 0.1;
        const double angle = t * 12.0 / radius + n; // 12 m/s
        const QStringList at = coordinate(radius * std::cos(angle), radius * std::sin(angle)).split(' ');
        const double heading =
            std::fmod(std::fmod(90.0 - angle * 180.0 / M_PI + 180.0, 360.0) + 360.0, 360.0);
        out << QString::number(t, 'f', 2) << ',' << at[0] << ',' << at[1] << ",600.0,"
            << QString::number(heading, 'f', 2) << ",43.2,4,15\n";
    }
    return path;
}

/// The example's first car, cone and track path, each made the template of many: ids,
/// names, channels and places replaced.
QString setupText()
{
    QFile file(QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml"));
    file.open(QIODevice::ReadOnly);
    const QString example = QString::fromUtf8(file.readAll());
    const auto element = [&](const QString& name) {
        const QRegularExpression pattern(QString("<%1 .*?</%1>").arg(name),
                                         QRegularExpression::DotMatchesEverythingOption);
        return pattern.match(example).captured(0);
    };
    const auto replaced = [](QString text, const QString& attribute, const QString& value) {
        return text.replace(QRegularExpression(QString(" %1=\"[^\"]*\"").arg(attribute)),
                            QString(" %1=\"%2\"").arg(attribute, value));
    };
    const QString car = element("Car");
    const QString cone = element("Cone");
    const QString track_start = element("TrackPath").section('>', 0, 0) + '>';

    QString xml;
    QTextStream out(&xml);
    out << example.section("<GeoObjects", 0, 0) << "<GeoObjects description=\"Frame benchmark\">";
    for (int n = 1; n <= CARS; ++n) {
        const quint64 node = static_cast<quint64>(n) << 32;
        QString text = replaced(car, "objectId", QString::number(n));
        text = replaced(text, "name", QString("Car %1").arg(n));
        text = replaced(text, "color", "#" + QString::number(0x203040 + n * 0x020101, 16).right(6));
        text = replaced(text, "latitudeChannelID", QString::number(node + 1));
        text = replaced(text, "longitudeChannelID", QString::number(node + 2));
        out << replaced(text, "headingChannelID", QString::number(node + 4));
    }
    for (int i = 0; i < CONES; ++i) {
        const QStringList at = coordinate(-300.0 + (i % 40) * 15.0, -300.0 + (i / 40) * 24.0).split(' ');
        QString text = replaced(cone, "objectId", QString::number(1000 + i));
        text = replaced(text, "name", QString("Cone %1").arg(i + 1));
        text = replaced(text, "latitude", at[0]);
        out << replaced(text, "longitude", at[1]);
    }
    out << "</GeoObjects><Tracks>";
    for (int k = 0; k < TRACKS; ++k) {
        QString text = replaced(track_start, "objectId", QString::number(5000 + k));
        out << replaced(text, "name", QString("Track %1").arg(k + 1));
        // A wavy line of 0.5 m steps, one beside the other.
        for (int i = 0; i < TRACK_VERTICES; ++i) {
            const double along = -2500.0 + i * 0.5;
            out << coordinate(along * 0.1, -350.0 + k * 70.0 + 8.0 * std::sin(along / 20.0)) << " \n";
        }
        out << "</TrackPath>";
    }
    out << "</Tracks>" << example.section("</Calculations>", 1);
    return xml;
}

void BM_MapItemFrame(benchmark::State& state)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        state.SkipWithError("needs an X server: run under xvfb-run -a");
        return;
    }
    QTemporaryDir folder;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    QSettings().setValue(overmap_ui::OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
    std::vector<std::string> paths;
    for (int n = 1; n <= CARS; ++n)
        paths.push_back(writeRecording(folder.path(), n).toStdString());
    overmap_replay::LoadedRecordings recordings = overmap_replay::loadRecordings(paths);
    if (!recordings) {
        state.SkipWithError(recordings.error.c_str());
        return;
    }
    lum::HostApplication host;
    for (const auto& channel : recordings.manager->channels())
        host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
    auto* extension = new QExtensionModule(im::OvermapInstrument::EXTENSION_ID, 0x7f);
    extension->setExtensionConfiguration(setupText());
    host.addExtensionModule(extension);
    im::OvermapInstrument instrument;
    instrument.setApplication(&host);
    instrument.connectToApplication();

    overmap_qml::registerQmlModule();
    QQuickView view;
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(800, 600);
    view.setSource(QUrl(QStringLiteral("qrc:///overmap/Map/OvermapMap.qml")));
    auto* map = qobject_cast<overmap_ui::Viewport*>(view.rootObject());
    if (map == nullptr) {
        state.SkipWithError("the map item does not load");
        return;
    }
    map->setProperty("objectsModel", QVariant::fromValue<QObject*>(instrument.objectsFilterModel()));
    map->setCenter(QGeoCoordinate(LATITUDE, LONGITUDE));
    map->setScaling(600.0 / 760.0); // the whole scene, every object drawn
    if (state.range(0) == 1) {
        // Following a car: the centre moves with it at every frame, over half the scene.
        map->setScaling(1.5);
        QObject* first = instrument.geoModel()->objectsManager()->positionObjects()->list().front();
        map->setProperty("positionObjectToFollow", QVariant::fromValue(first));
    }
    view.show();

    QEventLoop loop;
    QObject::connect(&view, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit);
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, &loop, &QEventLoop::quit);
    const auto frame = [&](double time) {
        instrument.geoModel()->setDisplayTime(time);
        view.update();
        guard.start(2000);
        loop.exec();
    };
    double time = 1.0;
    for (int i = 0; i < 30; ++i) // tracks cached, window settled
        frame(time += 1.0 / 60.0);

    std::vector<double> milliseconds;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        frame(time += 1.0 / 60.0);
        const double elapsed = timer.nsecsElapsed() / 1e6;
        milliseconds.push_back(elapsed);
        state.SetIterationTime(elapsed / 1e3);
    }
    // The last frame, to see what was measured.
    if (qEnvironmentVariableIsSet("OM_QML_FRAME_PICTURE"))
        view.grabWindow().save(qEnvironmentVariable("OM_QML_FRAME_PICTURE"));
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto at = [&](double fraction) {
        return milliseconds[std::min(milliseconds.size() - 1,
                                     static_cast<std::size_t>(fraction * milliseconds.size()))];
    };
    state.counters["median_ms"] = at(0.5);
    state.counters["p99_ms"] = at(0.99);
}
// 0: the whole scene; 1: following a car closer up.
BENCHMARK(BM_MapItemFrame)->Arg(0)->Arg(1)->UseManualTime()->Iterations(600)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
