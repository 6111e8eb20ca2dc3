// The display path of the scene model: bringing 100 channel-driven cars to a new time,
// and the edges of a long driven track before and after the reference plane moves.
#include "bench_ratio.h"

#include <om_model/car.h>
#include <om_model/track_path.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

const math_geo::GeoPosition SITE(48.2, 11.6);

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
    const math_geo::ProjectionPlane plane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    math_geo::ProjectionPlane cached = plane;
    for (auto _ : state) {
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
