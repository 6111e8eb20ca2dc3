// Geometry hot paths: projection per vertex, track simplification against Boost's, distance methods.
#include "bench_ratio.h"

#include <math_geo/geo_tools.h>
#include <math_geo/projection_plane.h>
#include <math_geo/simplify_track.h>

#include <boost/geometry/algorithms/simplify.hpp>
#include <boost/geometry/core/cs.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/strategies/spherical/distance_cross_track.hpp>
#include <boost/geometry/strategies/spherical/distance_haversine.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace {

using math_geo::GeoPosition;
using math_geo::Point2D;
using math_geo::ProjectionPlane;

namespace bg = boost::geometry;
using SpherePoint = bg::model::point<double, 2, bg::cs::spherical_equatorial<bg::degree>>;

constexpr double TOLERANCE = 0.1; // metres, as the display uses it

/// A drive logged at 100 Hz: about 15 m/s on straights and curves of a handling course, with GPS noise
/// of a few centimetres.
const std::vector<GeoPosition>& drive()
{
    static const std::vector<GeoPosition> positions = [] {
        std::mt19937 rng(42);
        std::normal_distribution<double> noise(0.0, 0.02);
        std::vector<GeoPosition> out;
        const std::size_t n = 1000000;
        out.reserve(n);
        GeoPosition p(48.2031, 11.6012);
        double heading = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t phase = (i / 1500) % 4;
            heading += phase == 0 ? 0.0 : phase == 1 ? 0.04 : phase == 2 ? 0.0 : -0.025;
            p = math_geo::destinationPoint(p, heading, 0.15);
            const GeoPosition fix(p.latitude + noise(rng) / 111000.0, p.longitude + noise(rng) / 74000.0);
            out.push_back(fix);
        }
        return out;
    }();
    return positions;
}

std::vector<GeoPosition> sitePositions()
{
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> offset(-0.01, 0.01);
    std::vector<GeoPosition> out(1024);
    for (GeoPosition& p : out)
        p = GeoPosition(48.2 + offset(rng), 11.6 + offset(rng));
    return out;
}

void BM_ToPlane(benchmark::State& state)
{
    const ProjectionPlane plane(GeoPosition(48.2, 11.6), 23.5, math_geo::CoordinateSystem::DIN70000);
    const std::vector<GeoPosition> positions = sitePositions();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plane.toPlane(positions[i++ & 1023]));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ToPlane);

void BM_ToGeoPosition(benchmark::State& state)
{
    const ProjectionPlane plane(GeoPosition(48.2, 11.6), 23.5, math_geo::CoordinateSystem::DIN70000);
    std::vector<Point2D> points;
    for (const GeoPosition& p : sitePositions())
        points.push_back(plane.toPlane(p));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plane.toGeoPosition(points[i++ & 1023]));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ToGeoPosition);

void BM_SimplifyTrack(benchmark::State& state)
{
    const std::vector<GeoPosition>& in = drive();
    std::size_t kept = 0;
    for (auto _ : state) {
        const std::vector<GeoPosition> out = math_geo::simplifyTrack(in, TOLERANCE);
        kept = out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["kept"] = static_cast<double>(kept);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(in.size()));
}
BENCHMARK(BM_SimplifyTrack)->Unit(benchmark::kMillisecond);

/// Boost's Douglas-Peucker on the same drive, also on the sphere (cross-track on a unit sphere, so the
/// tolerance is given in radians of the local Gaussian radius).
void BM_BoostSimplify(benchmark::State& state)
{
    bg::model::linestring<SpherePoint> in;
    for (const GeoPosition& p : drive())
        in.emplace_back(p.longitude, p.latitude);
    const double tolerance = TOLERANCE / math_geo::gaussianRadius(48.2);
    std::size_t kept = 0;
    for (auto _ : state) {
        bg::model::linestring<SpherePoint> out;
        bg::simplify(in, out, tolerance);
        kept = out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["kept"] = static_cast<double>(kept);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(in.size()));
}
BENCHMARK(BM_BoostSimplify)->Unit(benchmark::kMillisecond);

void BM_DistanceGeodesic(benchmark::State& state)
{
    const std::vector<GeoPosition> positions = sitePositions();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            positions[i & 1023].distanceTo(positions[(i + 1) & 1023], math_geo::DistanceMethod::GEODESIC));
        ++i;
    }
}
BENCHMARK(BM_DistanceGeodesic);

void BM_DistanceHaversine(benchmark::State& state)
{
    const std::vector<GeoPosition> positions = sitePositions();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            positions[i & 1023].distanceTo(positions[(i + 1) & 1023], math_geo::DistanceMethod::HAVERSINE));
        ++i;
    }
}
BENCHMARK(BM_DistanceHaversine);

} // namespace

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv,
                                {{"BM_SimplifyTrack", "BM_BoostSimplify", 1.0},
                                 {"BM_DistanceGeodesic", "BM_DistanceHaversine", 0.0}});
}
