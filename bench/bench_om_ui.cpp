// The display layer's time step against the plain model's, on the same recorded
// channels in the same run, and the segments of a long track after a plane change.
#include "bench_ratio.h"

#include <om_ui/qcar.h>
#include <om_ui/qtrack.h>

#include <om_model/car.h>
#include <om_model/track_path.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/data_regions_manager.h>
#include <math_geo/geo_tools.h>
#include <qchannel/qchannel.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace {

const math_geo::GeoPosition SITE(48.2, 11.6);

constexpr std::size_t SAMPLES = 1000000;
constexpr double RATE = 100.0; // Hz: 10,000 s of recording
constexpr int CARS = 100;
/// Ten recorded drives (1,000,000 samples a channel) shared by the hundred cars.
constexpr int DRIVES = 10;

std::shared_ptr<ferrin::ScalarChannel> recordedChannel(std::uint32_t local_id, double base, double amplitude,
                                                       double period)
{
    static const auto regions = std::make_shared<ferrin::DataRegionsManager>();
    std::vector<double> values(SAMPLES);
    for (std::size_t i = 0; i < SAMPLES; ++i)
        values[i] = base + amplitude * std::sin(2.0 * M_PI * static_cast<double>(i) / RATE / period);
    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(1, local_id);
    setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(RATE, 0.0);
    return lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), regions, local_id);
}

/// The recorded drives, wrapped as the host's channel list would wrap them.
struct Drives
{
    Drives()
    {
        for (int d = 0; d < DRIVES; ++d) {
            const auto id = static_cast<std::uint32_t>(3 * d);
            std::array<std::shared_ptr<ferrin::ScalarChannel>, 3> drive{
                recordedChannel(id + 1, 48.2 + 0.0005 * d, 0.002, 97.0 + d),
                recordedChannel(id + 2, 11.6 + 0.0005 * d, 0.003, 131.0 + d),
                recordedChannel(id + 3, 180.0, 179.0, 61.0 + d)};
            std::array<std::unique_ptr<lum::qchannel::QChannel>, 3> wrapped;
            for (std::size_t k = 0; k < 3; ++k)
                wrapped[k] = std::make_unique<lum::qchannel::QChannel>(drive[k]);
            raw.push_back(drive);
            qt.push_back(std::move(wrapped));
        }
    }
    std::vector<std::array<std::shared_ptr<ferrin::ScalarChannel>, 3>> raw;
    std::vector<std::array<std::unique_ptr<lum::qchannel::QChannel>, 3>> qt;
};

Drives& drives()
{
    static Drives instance;
    return instance;
}

/// A new time each step, landing on a new sample.
double nextTime(double time)
{
    time += 7.31;
    return time >= static_cast<double>(SAMPLES) / RATE ? time - static_cast<double>(SAMPLES) / RATE : time;
}

void perCar(benchmark::State& state)
{
    state.counters["per_car_ns"] =
        benchmark::Counter(static_cast<double>(state.iterations() * CARS),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_StepPlainModel(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 15.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    std::vector<std::shared_ptr<overmap::Car>> cars;
    for (int c = 0; c < CARS; ++c) {
        auto car = std::make_shared<overmap::Car>(&plane);
        const auto& drive = drives().raw[static_cast<std::size_t>(c % DRIVES)];
        car->setLatitudeChannel(drive[0]);
        car->setLongitudeChannel(drive[1]);
        car->setHeadingChannel(drive[2]);
        cars.push_back(std::move(car));
    }
    double time = 0.0;
    for (auto _ : state) {
        time = nextTime(time);
        for (const auto& car : cars)
            car->update(time);
        benchmark::DoNotOptimize(cars.front()->getXYPosition());
    }
    perCar(state);
}
BENCHMARK(BM_StepPlainModel)->Unit(benchmark::kMicrosecond);

/// The same step through the display objects, each with a view bound to its position
/// and heading signals.
void BM_StepDisplayObjects(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 15.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    std::vector<std::unique_ptr<overmap_ui::QCar>> cars;
    QObject view;
    long told = 0;
    for (int c = 0; c < CARS; ++c) {
        auto car = std::make_unique<overmap_ui::QCar>(std::make_shared<overmap::Car>(&plane), nullptr);
        const auto& drive = drives().qt[static_cast<std::size_t>(c % DRIVES)];
        car->setLatitudeChannel(drive[0].get());
        car->setLongitudeChannel(drive[1].get());
        car->setHeadingChannel(drive[2].get());
        QObject::connect(car.get(), &overmap_ui::QPositionObject::positionChanged, &view,
                         [&told] { ++told; });
        QObject::connect(car.get(), &overmap_ui::QPositionObject::headingChanged, &view, [&told] { ++told; });
        cars.push_back(std::move(car));
    }
    double time = 0.0;
    for (auto _ : state) {
        time = nextTime(time);
        for (const auto& car : cars)
            car->updatePositionData(time);
        benchmark::DoNotOptimize(told);
    }
    perCar(state);
}
BENCHMARK(BM_StepDisplayObjects)->Unit(benchmark::kMicrosecond);

/// A 100,000-vertex drive around a 250 m loop, 10 cm apart, with a little wander, whose
/// segments are made anew after each turn of the reference plane.
void BM_TrackSegmentsAfterPlaneChange(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    auto model = std::make_shared<overmap::TrackPath>(&plane);
    constexpr int VERTICES = 100000;
    constexpr double RADIUS = 250.0;
    std::vector<math_geo::GeoPosition> positions;
    positions.reserve(VERTICES);
    const double circumference = 2.0 * M_PI * RADIUS;
    for (int i = 0; i < VERTICES; ++i) {
        const double angle = 360.0 * std::fmod(i * 0.1, circumference) / circumference;
        const double wander = 0.3 * std::sin(i * 0.001);
        positions.push_back(math_geo::destinationPoint(SITE, angle, RADIUS + wander));
    }
    model->setPositions(positions);
    overmap_ui::QTrackPath track(model, nullptr);
    double rotation = 0.0;
    for (auto _ : state) {
        rotation += 0.5;
        plane.setRotation(rotation);
        track.refresh();
        benchmark::DoNotOptimize(track.segments()->size());
    }
    state.counters["segments"] = static_cast<double>(track.segments()->size());
}
BENCHMARK(BM_TrackSegmentsAfterPlaneChange)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv, {{"BM_StepDisplayObjects", "BM_StepPlainModel", 1.5}});
}
