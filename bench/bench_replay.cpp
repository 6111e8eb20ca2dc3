// The replay tool's core: ten cars, each driven by its own 100 Hz recording, brought to
// 10,000 times and written as CSV rows, the way overmap-replay runs.
#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_scene.h>

#include <lum_data/recording_channels.h>

#include <om_model/car.h>

#include <ferrin_core/data_regions_manager.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <fstream>
#include <memory>
#include <vector>

namespace {

constexpr int OBJECTS = 10;
constexpr std::size_t TIMES = 10000;
constexpr std::size_t SAMPLES = 20000; // 200 s at 100 Hz

/// One drive around a circle per recording, each on its own phase.
lum::import::Recording drive(int index)
{
    lum::import::Recording recording;
    recording.source = "car" + std::to_string(index) + ".csv";
    recording.start_time = 1.7e9;
    lum::import::ImportedChannel latitude{"latitude", "deg", {}, {}};
    lum::import::ImportedChannel longitude{"longitude", "deg", {}, {}};
    lum::import::ImportedChannel heading{"heading", "deg", {}, {}};
    for (std::size_t i = 0; i < SAMPLES; ++i) {
        const double t = static_cast<double>(i) / 100.0;
        const double angle = 0.05 * t + index;
        for (auto* channel : {&latitude, &longitude, &heading})
            channel->times.push_back(t);
        latitude.values.push_back(48.0 + 0.001 * std::sin(angle));
        longitude.values.push_back(11.0 + 0.0015 * std::cos(angle));
        heading.values.push_back(std::fmod(angle * 180.0 / M_PI + 90.0, 360.0));
    }
    recording.channels = {latitude, longitude, heading};
    return recording;
}

struct Scene
{
    Scene()
    {
        for (int i = 0; i < OBJECTS; ++i) {
            lum::data::RecordingChannelOptions options;
            options.node_id = static_cast<std::uint32_t>(i + 1);
            options.first_stream_id = static_cast<std::uint64_t>(i) * 3 + 1;
            options.time_origin = 1.7e9;
            options.qualified_long_names = true;
            lum::data::makeRecordingChannels(drive(i), manager, regions, options);
        }
        overmap_replay::ChannelListFetcher fetcher(manager);
        objects.setReferencePlane(math_geo::ProjectionPlane(math_geo::GeoPosition(48.0, 11.0), 0.0));
        for (int i = 0; i < OBJECTS; ++i) {
            auto car = std::make_shared<overmap::Car>(i + 1, objects.getReferencePlane());
            const std::string stem = "car" + std::to_string(i);
            car->setName(stem);
            car->setLatitudeChannel(fetcher.findByName(stem + ".latitude"));
            car->setLongitudeChannel(fetcher.findByName(stem + ".longitude"));
            car->setHeadingChannel(fetcher.findByName(stem + ".heading"));
            objects.addObject(car);
        }
        for (std::size_t i = 0; i < TIMES; ++i)
            times.push_back(static_cast<double>(i) * 0.0195);
    }

    // With regions, as the tool has them: each read also asks whether the time was recorded.
    std::shared_ptr<ferrin::DataRegionsManager> regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager manager;
    overmap::ObjectManager objects;
    std::vector<double> times;
};

Scene& scene()
{
    static Scene instance;
    return instance;
}

void BM_ReplayTenObjectsTenThousandTimes(benchmark::State& state)
{
    Scene& s = scene();
    for (auto _ : state) {
        auto result = overmap_replay::replayScene(s.objects, s.times);
        benchmark::DoNotOptimize(result.rows.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * OBJECTS * TIMES);
}
BENCHMARK(BM_ReplayTenObjectsTenThousandTimes)->Unit(benchmark::kMillisecond);

void BM_ReplayAndWriteCsv(benchmark::State& state)
{
    Scene& s = scene();
    // To a file, as the tool writes: a growing string stream would measure its own copies.
    std::ofstream out("/dev/null", std::ios::binary);
    for (auto _ : state) {
        overmap_replay::writeCsv(out, overmap_replay::replayScene(s.objects, s.times).rows);
        benchmark::DoNotOptimize(out.tellp());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * OBJECTS * TIMES);
}
BENCHMARK(BM_ReplayAndWriteCsv)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
