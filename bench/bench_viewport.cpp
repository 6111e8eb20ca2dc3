// The map item's projection: one geographic position to a pixel, and the culling of
// 10,000 objects for one frame (each asked whether its quad is on the screen).
#include <om_ui/viewport.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <array>
#include <vector>

namespace {

struct Screen
{
    overmap_ui::Viewport viewport;
    std::vector<QGeoCoordinate> positions;

    Screen()
    {
        viewport.setSize(QSizeF(1920.0, 1080.0));
        viewport.setCenter(QGeoCoordinate(47.9968, 10.2457));
        viewport.setRotation(33.0);
        viewport.setScaling(2.5);
        // Objects spread over 2 km x 2 km around the centre: some on, most off the screen.
        for (int i = 0; i < 10000; ++i)
            positions.emplace_back(47.9968 + ((i * 7919) % 2000 - 1000) * 9e-6,
                                   10.2457 + ((i * 104729) % 2000 - 1000) * 1.34e-5);
    }
};

void BM_ViewportGeoToPixel(benchmark::State& state)
{
    Screen screen;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(screen.viewport.projectGPSToScreen(screen.positions[i]));
        i = (i + 1) % screen.positions.size();
    }
}
BENCHMARK(BM_ViewportGeoToPixel);

/// The objects' corners are known before the frame (they move with the time, not with
/// the drawing); the frame asks for each object's quad.
void BM_ViewportCullTenThousandObjects(benchmark::State& state)
{
    Screen screen;
    const double d = 2e-5; // a car's extent in degrees
    std::vector<std::array<QGeoCoordinate, 4>> quads;
    for (const QGeoCoordinate& p : screen.positions)
        quads.push_back({QGeoCoordinate(p.latitude() - d, p.longitude() - d),
                         QGeoCoordinate(p.latitude() - d, p.longitude() + d),
                         QGeoCoordinate(p.latitude() + d, p.longitude() + d),
                         QGeoCoordinate(p.latitude() + d, p.longitude() - d)});
    for (auto _ : state) {
        int visible = 0;
        for (const auto& q : quads)
            visible += screen.viewport.isQuadInside(q[0], q[1], q[2], q[3]) ? 1 : 0;
        benchmark::DoNotOptimize(visible);
        state.counters["visible"] = visible;
    }
}
BENCHMARK(BM_ViewportCullTenThousandObjects)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
