// The display model on a large scene (100 channel-driven cars, 1,000 cones, 10 tracks of
// 10,000 vertices, 50 calculations): loading it from the extension's text against the
// setup reader alone, one display-time step, and the write-back of one changed cone
// against the plain writer, each pair measured in the same run.
#include "bench_ratio.h"

#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/qchannel_fetcher.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>
#include <lum_host/qextension_module.h>
#include <lum_utils/image_store.h>
#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_path.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <ferrin_core/data_regions_manager.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QSettings>

#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int CARS = 100;
constexpr int CONES = 1000;
constexpr int TRACKS = 10;
constexpr int TRACK_VERTICES = 10000;
constexpr int CALCULATIONS = 50;
constexpr double RATE = 100.0;
constexpr std::size_t SAMPLES = 360000; // one hour at 100 Hz

/// The channels and the setup text of the scene, made once.
struct Scene
{
    lum::qchannel::QChannelListModel channels{lum::qchannel::QChannelListModel::DELIVERY_IMMEDIATE, true};
    QString text;

    Scene()
    {
        const auto regions = std::make_shared<ferrin::DataRegionsManager>();
        const auto add = [&](std::uint32_t local_id, double base, double amplitude, double period) {
            std::vector<double> values(SAMPLES);
            for (std::size_t i = 0; i < SAMPLES; ++i)
                values[i] = base + amplitude * std::sin(2.0 * M_PI * static_cast<double>(i) / RATE / period);
            ferrin::ChannelSetup setup;
            setup.id = channel_config::ChannelID(1, local_id);
            setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(RATE, 0.0);
            auto channel =
                lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), regions, local_id);
            channels.appendChannel(new lum::qchannel::QChannel(channel));
            return channel;
        };
        overmap_ui::QChannelFetcher fetcher;
        fetcher.setChannelList(&channels);

        overmap::ObjectManager record;
        record.setReferencePlane(math_geo::ProjectionPlane(math_geo::GeoPosition(47.995, 10.245), 0.0,
                                                           math_geo::CoordinateSystem::X_FRONT_Y_LEFT));
        const math_geo::ProjectionPlane* plane = record.getReferencePlane();
        std::vector<std::shared_ptr<overmap::GeoObject>> objects;
        for (int c = 0; c < CARS; ++c) {
            auto car = std::make_shared<overmap::Car>(plane);
            const auto id = static_cast<std::uint32_t>(3 * c);
            car->setLatitudeChannel(add(id + 1, 47.995 + 1e-4 * c, 0.002, 97.0 + c));
            car->setLongitudeChannel(add(id + 2, 10.245 + 1e-4 * c, 0.003, 131.0 + c));
            car->setHeadingChannel(add(id + 3, 180.0, 179.0, 61.0 + c));
            car->setName("car " + std::to_string(c));
            record.addObject(car);
            objects.push_back(car);
        }
        for (int c = 0; c < CONES; ++c) {
            auto cone = std::make_shared<overmap::Cone>(plane);
            cone->setName("cone " + std::to_string(c));
            cone->setGeoPosition(math_geo::GeoPosition(47.995 + 1e-5 * c, 10.246 + 2e-5 * (c % 37)));
            record.addObject(cone);
            objects.push_back(cone);
        }
        for (int t = 0; t < TRACKS; ++t) {
            auto path = std::make_shared<overmap::TrackPath>(plane);
            std::vector<math_geo::GeoPosition> vertices;
            vertices.reserve(TRACK_VERTICES);
            for (int i = 0; i < TRACK_VERTICES; ++i)
                vertices.emplace_back(47.99 + 1e-3 * t + i * 4.5e-7, 10.24 + (i % 500) * 6.7e-7);
            path->setPositions(std::move(vertices));
            path->setName("track " + std::to_string(t));
            record.addObject(path);
        }
        for (int c = 0; c < CALCULATIONS; ++c) {
            auto calculation = std::make_shared<overmap::Calculation>();
            calculation->setName("calculation " + std::to_string(c));
            calculation->setFrom(objects[static_cast<std::size_t>(c % CARS)]);
            calculation->setTo(objects[static_cast<std::size_t>(CARS + c)]);
            record.addCalculation(calculation);
        }
        std::string out;
        overmap::XmlReadWriter(&record, nullptr).write(out);
        text = QString::fromStdString(out);
    }
};

Scene& scene()
{
    static Scene instance;
    return instance;
}

/// A model on the scene, as a host wires it.
struct Host
{
    lum_utils::ImageStore images;
    QExtensionModule extension{"bench", 0x7f};
    overmap_ui::OvermapModel model;

    Host()
    {
        model.setImageStore(&images);
        model.setChannelList(&scene().channels);
        extension.setExtensionConfiguration(scene().text);
        model.setExtension(&extension);
    }
};

void BM_ModelLoadFromExtension(benchmark::State& state)
{
    Host host;
    const QString texts[2] = {scene().text, scene().text + QLatin1Char('\n')};
    int i = 0;
    for (auto _ : state)
        host.extension.setExtensionConfiguration(texts[++i % 2]);
    state.counters["objects"] = host.model.objectsManager()->allObjects()->size();
}
BENCHMARK(BM_ModelLoadFromExtension)->Unit(benchmark::kMillisecond);

void BM_SetupReadAlone(benchmark::State& state)
{
    overmap_ui::QChannelFetcher fetcher;
    fetcher.setChannelList(&scene().channels);
    const std::string text = scene().text.toStdString();
    for (auto _ : state) {
        overmap::ObjectManager record;
        benchmark::DoNotOptimize(overmap::XmlReadWriter(&record, &fetcher).read(text));
    }
}
BENCHMARK(BM_SetupReadAlone)->Unit(benchmark::kMillisecond);

void BM_DisplayTimeStep(benchmark::State& state)
{
    Host host;
    double time = 10.0;
    for (auto _ : state) {
        time += 0.01;
        host.model.setDisplayTime(time);
    }
}
BENCHMARK(BM_DisplayTimeStep)->Unit(benchmark::kMicrosecond);

void BM_WriteBackOneCone(benchmark::State& state)
{
    Host host;
    auto* cone = host.model.objectsManager()->positionObjects()->at(CARS);
    double latitude = cone->latitude();
    for (auto _ : state) {
        latitude += 1e-7;
        cone->setLatitude(latitude);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(BM_WriteBackOneCone)->Unit(benchmark::kMillisecond);

void BM_SetupWriteAlone(benchmark::State& state)
{
    overmap_ui::QChannelFetcher fetcher;
    fetcher.setChannelList(&scene().channels);
    overmap::ObjectManager record;
    overmap::XmlReadWriter(&record, &fetcher).read(scene().text.toStdString());
    for (auto _ : state) {
        std::string out;
        overmap::XmlReadWriter(&record, nullptr).write(out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_SetupWriteAlone)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // No network probe from a benchmark: a local port that refuses at once.
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QCoreApplication::applicationDirPath());
    QSettings().setValue(overmap_ui::OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
    return bench::runWithRatios(argc, argv,
                                {{"BM_ModelLoadFromExtension", "BM_SetupReadAlone", 3.0},
                                 {"BM_WriteBackOneCone", "BM_SetupWriteAlone", 3.0}});
}
