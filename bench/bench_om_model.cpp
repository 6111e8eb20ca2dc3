// The display path of the scene model: bringing 100 channel-driven cars to a new time,
// and the edges of a long driven track before and after the reference plane moves.
#include "bench_ratio.h"

#include <om_model/car.h>
#include <om_model/track_path.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/data_regions_manager.h>

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
/// Distinct latitude/longitude/heading triples; 1,000,000-sample channels cost 8 MB each,
/// so the cars share ten recorded drives (240 MB) instead of a hundred.
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

void BM_UpdateHundredCars(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 15.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    std::vector<std::array<std::shared_ptr<ferrin::ScalarChannel>, 3>> drives;
    for (int d = 0; d < DRIVES; ++d) {
        const auto id = static_cast<std::uint32_t>(3 * d);
        drives.push_back({recordedChannel(id + 1, 48.2 + 0.0005 * d, 0.002, 97.0 + d),
                          recordedChannel(id + 2, 11.6 + 0.0005 * d, 0.003, 131.0 + d),
                          recordedChannel(id + 3, 180.0, 179.0, 61.0 + d)});
    }
    std::vector<std::shared_ptr<overmap::Car>> cars;
    for (int c = 0; c < CARS; ++c) {
        auto car = std::make_shared<overmap::Car>(&plane);
        const auto& drive = drives[static_cast<std::size_t>(c % DRIVES)];
        car->setLatitudeChannel(drive[0]);
        car->setLongitudeChannel(drive[1]);
        car->setHeadingChannel(drive[2]);
        car->setGpsOffset(math_geo::Point2D(1.2, 0.0, car->localCoordinateSystem()));
        cars.push_back(std::move(car));
    }
    // Jump through the recording in a stride that lands on a new sample every step.
    double time = 0.0;
    for (auto _ : state) {
        time += 7.31;
        if (time >= static_cast<double>(SAMPLES) / RATE)
            time -= static_cast<double>(SAMPLES) / RATE;
        for (const auto& car : cars)
            car->update(time);
        benchmark::DoNotOptimize(cars.front()->getXYPosition());
    }
    state.counters["per_car_ns"] =
        benchmark::Counter(static_cast<double>(state.iterations() * CARS),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_UpdateHundredCars)->Unit(benchmark::kMicrosecond);

/// A 100,000-vertex drive around a 250 m loop, 10 cm apart.
std::vector<math_geo::GeoPosition> loopDrive(const math_geo::ProjectionPlane& plane)
{
    std::vector<math_geo::GeoPosition> positions;
    positions.reserve(100000);
    for (int i = 0; i < 100000; ++i) {
        const double a = i * 0.1 / 250.0 * 2.0 * M_PI / 40.0; // 40 m radius
        positions.push_back(plane.toGeoPosition(math_geo::Point2D(
            40.0 * std::sin(a), 40.0 * (1.0 - std::cos(a)), plane.getXYCoordinateSystem())));
    }
    return positions;
}

void BM_FirstEdgeAfterPlaneChange(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    overmap::TrackPath track(&plane);
    track.setPositions(loopDrive(plane));
    double rotation = 0.0;
    for (auto _ : state) {
        rotation = rotation == 0.0 ? 1.0 : 0.0;
        plane.setRotation(rotation);
        benchmark::DoNotOptimize(track.firstEdge().data());
    }
    state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_FirstEdgeAfterPlaneChange)->Unit(benchmark::kMillisecond);

void BM_FirstEdgeCached(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    overmap::TrackPath track(&plane);
    track.setPositions(loopDrive(plane));
    track.firstEdge();
    for (auto _ : state)
        benchmark::DoNotOptimize(track.firstEdge().data());
}
BENCHMARK(BM_FirstEdgeCached);

/// The floor of the cached call: the comparison of the cached plane with the reference plane.
void BM_PlaneComparison(benchmark::State& state)
{
    math_geo::ProjectionPlane plane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    math_geo::ProjectionPlane cached = plane;
    for (auto _ : state) {
        // Both planes live in memory, as the track's cached plane and the scene's plane do.
        benchmark::DoNotOptimize(&plane);
        benchmark::DoNotOptimize(&cached);
        benchmark::DoNotOptimize(cached != plane);
    }
}
BENCHMARK(BM_PlaneComparison);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv, {{"BM_FirstEdgeCached", "BM_PlaneComparison", 1.0}});
}
