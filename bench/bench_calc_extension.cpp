// The calculation extension at a new display time: 50 calculations over 100 cars, each
// car driven by its own 100 Hz recording, as result channels of the extension; and one
// result channel's look-up against the look-ups of two of its input channels.
#include "bench_ratio.h"

#include <lum_calc_extension/qcalculation_extension.h>
#include <lum_calc_extension/result_channel.h>

#include <overmap_replay/channel_list_fetcher.h>

#include <lum_host/qextension_module.h>

#include <lum_data/recording_channels.h>

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>

#include <ferrin_core/data_regions_manager.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int CARS = 100;
constexpr int CALCULATIONS = 50;
constexpr std::size_t SAMPLES = 12000; // 120 s at 100 Hz
constexpr double STEP = 0.0137;        // seconds: every step is a new time, between samples

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
        for (int i = 0; i < CARS; ++i) {
            lum::data::RecordingChannelOptions options;
            options.node_id = static_cast<std::uint32_t>(i + 1);
            options.first_stream_id = static_cast<std::uint64_t>(i) * 3 + 1;
            options.time_origin = 1.7e9;
            options.qualified_long_names = true;
            lum::data::makeRecordingChannels(drive(i), channels, regions, options);
        }
        overmap::ObjectManager manager;
        manager.getReferencePlane()->setCenter(math_geo::GeoPosition(48.0, 11.0));
        std::vector<std::shared_ptr<overmap::Car>> cars;
        for (int i = 0; i < CARS; ++i) {
            auto car = std::make_shared<overmap::Car>(i + 1, manager.getReferencePlane());
            const auto node = static_cast<std::uint32_t>(i + 1);
            car->setLatitudeChannel(fetcher.findById(channel_config::ChannelID(node, 1)));
            car->setLongitudeChannel(fetcher.findById(channel_config::ChannelID(node, 2)));
            car->setHeadingChannel(fetcher.findById(channel_config::ChannelID(node, 3)));
            manager.addObject(car);
            cars.push_back(car);
        }
        // Every car in one calculation; the kinds of distance in turn.
        for (int i = 0; i < CALCULATIONS; ++i) {
            auto calculation = std::make_shared<overmap::Calculation>(i + 1);
            calculation->setName("calculation " + std::to_string(i + 1));
            calculation->setFrom(cars[static_cast<std::size_t>(i)]);
            calculation->setTo(cars[static_cast<std::size_t>(i + CALCULATIONS)]);
            calculation->setFromPoiIdx(static_cast<std::uint32_t>(i % 3));
            calculation->setToPoiIdx(1);
            calculation->setDistanceType(static_cast<overmap::DistanceType>(i % 3));
            manager.addCalculation(calculation);
        }
        std::string text;
        overmap::XmlReadWriter(&manager, nullptr).write(text);
        module.setExtensionConfiguration(QString::fromStdString(text));
        extension = std::make_unique<lum::calc::QCalculationExtension>(module, channels, fetcher);
        for (const auto& entry : extension->resultChannels())
            results.push_back(entry.second);
        first_inputs = {fetcher.findById(channel_config::ChannelID(1, 1)),
                        fetcher.findById(channel_config::ChannelID(CALCULATIONS + 1, 1))};
        for (std::uint32_t node : {1u, static_cast<std::uint32_t>(CALCULATIONS + 1)}) {
            for (std::uint32_t local = 1; local <= 3; ++local)
                all_inputs.push_back(fetcher.findById(channel_config::ChannelID(node, local)));
        }
    }

    lum::data::MemoryChannelConfigManager channels;
    std::shared_ptr<ferrin::DataRegionsManager> regions = std::make_shared<ferrin::DataRegionsManager>();
    overmap_replay::ChannelListFetcher fetcher{channels};
    QExtensionModule module{QStringLiteral("overmap"), CARS + 1};
    std::unique_ptr<lum::calc::QCalculationExtension> extension;
    std::vector<std::shared_ptr<lum::calc::ResultChannel>> results;
    /// Latitude channels of the two cars of calculation 1.
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> first_inputs;
    /// Latitude, longitude and heading of both cars of calculation 1.
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> all_inputs;
};

Scene& scene()
{
    static Scene instance;
    return instance;
}

double nextTime(double& time)
{
    time += STEP;
    if (time > 110.0)
        time = 1.0;
    return time;
}

/// One display step: every result channel at a time none of them has seen.
void BM_AllCalculationsAtANewTime(benchmark::State& state)
{
    Scene& s = scene();
    if (s.results.size() != CALCULATIONS) {
        state.SkipWithError("the extension made no channel for each calculation");
        return;
    }
    double time = 1.0;
    for (auto _ : state) {
        const double t = nextTime(time);
        double sum = 0.0;
        for (const auto& channel : s.results)
            sum += channel->getValueAtTime(t, nullptr);
        benchmark::DoNotOptimize(sum);
    }
    state.counters["calculations"] = CALCULATIONS;
}
BENCHMARK(BM_AllCalculationsAtANewTime)->Unit(benchmark::kMicrosecond);

void BM_ResultChannelLookup(benchmark::State& state)
{
    Scene& s = scene();
    const auto& channel = s.results.front();
    double time = 1.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(channel->getValueAtTime(nextTime(time), nullptr));
}
BENCHMARK(BM_ResultChannelLookup);

void BM_TwoInputChannelLookups(benchmark::State& state)
{
    Scene& s = scene();
    double time = 1.0;
    for (auto _ : state) {
        const double t = nextTime(time);
        benchmark::DoNotOptimize(s.first_inputs[0]->getValueAtTime(t, nullptr) +
                                 s.first_inputs[1]->getValueAtTime(t, nullptr));
    }
}
BENCHMARK(BM_TwoInputChannelLookups);

/// Everything a result reads, for comparison: the six channels that move its two cars.
void BM_SixInputChannelLookups(benchmark::State& state)
{
    Scene& s = scene();
    double time = 1.0;
    for (auto _ : state) {
        const double t = nextTime(time);
        double sum = 0.0;
        for (const auto& channel : s.all_inputs)
            sum += channel->getValueAtTime(t, nullptr);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_SixInputChannelLookups);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv,
                                {{"BM_ResultChannelLookup", "BM_TwoInputChannelLookups", 3.0},
                                 {"BM_ResultChannelLookup", "BM_SixInputChannelLookups", 0.0}});
}
