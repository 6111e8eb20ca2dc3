// The whole replay on recordings shaped as real receivers write them: import, channels,
// replay at 1 s steps and CSV rows, each against the floor of reading the same file and
// converting its numbers with std::from_chars. Peak heap per fix and channel is counted
// by the operator new below.
#include "bench_ratio.h"

#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_scene.h>

#include <ferrin_core/scalar_channel.h>

#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::atomic<std::size_t> g_heap{0};
std::atomic<std::size_t> g_peak{0};

// Each block carries its size in front, so that delete knows what it gives back.
constexpr std::size_t HEADER = alignof(std::max_align_t);

void* allocate(std::size_t size)
{
    auto* block = static_cast<unsigned char*>(std::malloc(size + HEADER));
    if (!block)
        throw std::bad_alloc();
    *reinterpret_cast<std::size_t*>(block) = size;
    const std::size_t now = g_heap.fetch_add(size, std::memory_order_relaxed) + size;
    std::size_t peak = g_peak.load(std::memory_order_relaxed);
    while (now > peak && !g_peak.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
    }
    return block + HEADER;
}

void deallocate(void* pointer) noexcept
{
    if (!pointer)
        return;
    auto* block = static_cast<unsigned char*>(pointer) - HEADER;
    g_heap.fetch_sub(*reinterpret_cast<std::size_t*>(block), std::memory_order_relaxed);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return allocate(size);
}
void operator delete(void* pointer) noexcept
{
    deallocate(pointer);
}
void operator delete[](void* pointer) noexcept
{
    deallocate(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept
{
    deallocate(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept
{
    deallocate(pointer);
}

namespace {

constexpr double LATITUDE = 48.1;
constexpr double LONGITUDE = 11.5;

/// Laps of about 3.5 km at 50 km/h: positions that change at every fix.
void positionAt(double t, double& latitude, double& longitude)
{
    latitude = LATITUDE + 0.005 * std::sin(t / 40.0);
    longitude = LONGITUDE + 0.0075 * std::cos(t / 40.0);
}

std::string withChecksum(const std::string& body)
{
    unsigned sum = 0;
    for (char c : body)
        sum ^= static_cast<unsigned char>(c);
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
    return "$" + body + tail;
}

std::string nmeaAngle(double degrees, bool latitude)
{
    const double a = std::fabs(degrees);
    const double whole = std::floor(a);
    char text[32];
    std::snprintf(text, sizeof text, latitude ? "%02.0f%07.4f,%c" : "%03.0f%07.4f,%c", whole,
                  (a - whole) * 60.0, latitude ? (degrees < 0 ? 'S' : 'N') : (degrees < 0 ? 'W' : 'E'));
    return text;
}

/// 1 Hz for 24 hours from midnight, RMC and GGA per fix, with a gap of an hour in each
/// of the first ten of every 2.4 hours.
std::string nmeaDay()
{
    std::string text;
    for (int second = 0; second < 86400; ++second) {
        if (second % 8640 < 3600 && second > 0)
            continue;
        double latitude, longitude;
        positionAt(second, latitude, longitude);
        char time[16];
        std::snprintf(time, sizeof time, "%02d%02d%02d.00", second / 3600, second / 60 % 60, second % 60);
        const std::string position = nmeaAngle(latitude, true) + "," + nmeaAngle(longitude, false);
        text += withChecksum("GPRMC," + std::string(time) + ",A," + position + ",12.5,84.4,010524,,,A");
        text += withChecksum("GPGGA," + std::string(time) + "," + position + ",1,09,0.9,512.3,M,47.1,M,,");
    }
    return text;
}

/// 10 Hz for 3 hours, GPX 1.1 with elevation.
std::string gpxThreeHours()
{
    std::string text = "<?xml version=\"1.0\"?>\n<gpx version=\"1.1\" creator=\"bench\" "
                       "xmlns=\"http://www.topografix.com/GPX/1/1\">\n<trk><trkseg>\n";
    char point[256];
    for (int tenth = 0; tenth < 108000; ++tenth) {
        const double t = tenth / 10.0;
        double latitude, longitude;
        positionAt(t, latitude, longitude);
        const int second = tenth / 10;
        std::snprintf(point, sizeof point,
                      "<trkpt lat=\"%.7f\" lon=\"%.7f\"><ele>%.1f</ele>"
                      "<time>2024-05-01T%02d:%02d:%02d.%dZ</time></trkpt>\n",
                      latitude, longitude, 500.0 + std::sin(t / 60.0), 8 + second / 3600, second / 60 % 60,
                      second % 60, tenth % 10);
        text += point;
    }
    return text + "</trkseg></trk>\n</gpx>\n";
}

/// 100 Hz for an hour, with a dropout of 5 s every 10 minutes.
std::string csvHour()
{
    std::string text =
        "# start_time=2024-05-01T08:00:00Z\ntime,latitude,longitude,heading [deg],speed [km/h]\n";
    char row[160];
    for (int step = 0; step < 360000; ++step) {
        if (step % 60000 >= 59500)
            continue;
        const double t = step / 100.0;
        double latitude, longitude;
        positionAt(t, latitude, longitude);
        std::snprintf(row, sizeof row, "%.2f,%.8f,%.8f,%.2f,%.2f\n", t, latitude, longitude,
                      std::fmod(t / 40.0 * 57.29577951308232 + 90.0, 360.0), 54.0 + std::sin(t));
        text += row;
    }
    return text;
}

struct Shape
{
    const char* name;
    const char* file;
    std::string (*make)();
};

const Shape SHAPES[] = {{"nmea_1hz_24h_gaps", "overmap_bench_day.nmea", nmeaDay},
                        {"gpx_10hz_3h", "overmap_bench_drive.gpx", gpxThreeHours},
                        {"csv_100hz_1h_dropouts", "overmap_bench_hour.csv", csvHour}};

/// The file of a shape, written once per run.
const std::string& pathOf(const Shape& shape)
{
    static std::string paths[std::size(SHAPES)];
    std::string& path = paths[&shape - SHAPES];
    if (path.empty()) {
        const char* folder = std::getenv("TMPDIR");
        path = std::string(folder ? folder : "/tmp") + "/" + shape.file;
        std::ofstream(path, std::ios::binary) << shape.make();
    }
    return path;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/// Reading the file and converting every number in it: what no reader can beat by much.
void BM_Floor(benchmark::State& state, const Shape* shape)
{
    const std::string& path = pathOf(*shape);
    for (auto _ : state) {
        const std::string text = readFile(path);
        double sum = 0.0;
        const char* p = text.data();
        const char* end = p + text.size();
        while (p < end) {
            if ((*p >= '0' && *p <= '9') || *p == '-') {
                double value = 0.0;
                const auto result = std::from_chars(p, end, value);
                sum += value;
                p = result.ec == std::errc() ? result.ptr : p + 1;
            } else {
                ++p;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
}

struct PipelineRun
{
    std::size_t samples = 0; ///< of every channel
    std::size_t rows = 0;
};

PipelineRun runPipeline(const std::string& path, std::ostream& out, bool count_samples)
{
    PipelineRun run;
    const overmap_replay::LoadedRecordings recordings = overmap_replay::loadRecordings({path});
    if (!recordings)
        return run;
    overmap_replay::ChannelListFetcher fetcher(*recordings.manager);
    overmap_replay::SetupResult scene = overmap_replay::defaultScene(recordings, fetcher);
    std::vector<double> times;
    for (double t = 0.0; t <= recordings.end_time; t += 1.0)
        times.push_back(t);
    const overmap_replay::ReplayResult result = overmap_replay::replayScene(*scene.manager, times);
    overmap_replay::writeCsv(out, result.rows);
    for (const auto& channel :
         count_samples ? recordings.manager->channels() : std::vector<std::shared_ptr<ferrin::Channel>>{}) {
        const auto* scalar = dynamic_cast<const ferrin::ScalarChannel*>(channel.get());
        if (!scalar)
            continue;
        // Samples of a channel: its iterator walked from the start.
        for (auto it = scalar->getSampleIterator(0, daq::SEEK_AT_OR_AFTER); it->isValid(); it->next())
            ++run.samples;
    }
    run.rows = result.rows.size();
    return run;
}

void BM_Pipeline(benchmark::State& state, const Shape* shape)
{
    const std::string& path = pathOf(*shape);
    std::ofstream out("/dev/null", std::ios::binary);
    PipelineRun run;
    for (auto _ : state) {
        run = runPipeline(path, out, false);
        benchmark::DoNotOptimize(run.rows);
    }
    // Peak heap of one more run above what was held before it.
    const std::size_t before = g_heap.load();
    g_peak.store(before);
    run = runPipeline(path, out, true);
    const double peak = static_cast<double>(g_peak.load() - before);
    state.counters["samples"] = static_cast<double>(run.samples);
    state.counters["rows"] = static_cast<double>(run.rows);
    state.counters["peak_MB"] = peak / 1e6;
    state.counters["peak_B_per_sample"] = run.samples ? peak / static_cast<double>(run.samples) : 0.0;
}

} // namespace

BENCHMARK_CAPTURE(BM_Floor, nmea_1hz_24h_gaps, &SHAPES[0])->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Pipeline, nmea_1hz_24h_gaps, &SHAPES[0])->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Floor, gpx_10hz_3h, &SHAPES[1])->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Pipeline, gpx_10hz_3h, &SHAPES[1])->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Floor, csv_100hz_1h_dropouts, &SHAPES[2])->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Pipeline, csv_100hz_1h_dropouts, &SHAPES[2])->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    return bench::runWithRatios(
        argc, argv,
        {{"BM_Pipeline/nmea_1hz_24h_gaps", "BM_Floor/nmea_1hz_24h_gaps", 3.0},
         {"BM_Pipeline/gpx_10hz_3h", "BM_Floor/gpx_10hz_3h", 3.0},
         {"BM_Pipeline/csv_100hz_1h_dropouts", "BM_Floor/csv_100hz_1h_dropouts", 3.0}});
}
