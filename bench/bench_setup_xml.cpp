// Reading and writing a large setup (200 position objects, a 100,000-vertex polyline)
// against floors measured in the same run: pugixml's own parse plus std::from_chars of
// every number for reading, fmt formatting of the same numbers for writing.
#include "bench_ratio.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/if_channel_fetcher.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_path.h>

#include <channel_config/channel_id.h>
#include <uni_base/uni_log.h>

#include <fmt/format.h>
#include <pugixml.hpp>

#include <charconv>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

class NoChannels : public overmap::IfChannelFetcher
{
public:
    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID) override { return nullptr; }
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string) override { return nullptr; }
};

void fillSetup(overmap::ObjectManager& manager)
{
    const math_geo::ProjectionPlane* plane = manager.getReferencePlane();
    for (int i = 0; i < 200; ++i) {
        std::shared_ptr<overmap::PositionObject> object;
        if (i % 10 == 0) {
            auto car = std::make_shared<overmap::Car>(plane);
            const auto system = car->localCoordinateSystem();
            car->setContour(
                {{2.3, 0.9, system}, {-2.3, 0.9, system}, {-2.3, -0.9, system}, {2.3, -0.9, system}});
            object = car;
        } else {
            object = std::make_shared<overmap::Cone>(plane);
        }
        object->setName("object " + std::to_string(i));
        object->setGeoPosition(math_geo::GeoPosition(47.995 + i * 1e-5, 10.245 + i * 2e-5));
        object->setHeading(i * 1.5);
        manager.addObject(object);
    }
    auto path = std::make_shared<overmap::TrackPath>(plane);
    std::vector<math_geo::GeoPosition> vertices;
    vertices.reserve(100000);
    for (int i = 0; i < 100000; ++i)
        vertices.emplace_back(47.995 + i * 4.5e-6, 10.245 + (i % 500) * 6.7e-6);
    path->setPositions(std::move(vertices));
    manager.addObject(path);
}

const std::string& setupText()
{
    static const std::string text = [] {
        overmap::ObjectManager manager;
        fillSetup(manager);
        std::string out;
        overmap::XmlReadWriter(&manager, nullptr).write(out);
        return out;
    }();
    return text;
}

/// Converts every number-looking token of @p text with from_chars; the sum keeps the
/// work from being optimised away.
double convertAll(const char* text, std::vector<double>* numbers)
{
    double sum = 0.0;
    const char* p = text;
    const char* end = p + std::strlen(p);
    while (p < end) {
        while (p < end && (*p == ' ' || *p == '\n' || *p == '\t' || *p == '\r'))
            ++p;
        const char* token = p;
        while (p < end && !(*p == ' ' || *p == '\n' || *p == '\t' || *p == '\r'))
            ++p;
        double value = 0.0;
        const std::from_chars_result result = std::from_chars(token, p, value);
        if (token != p && result.ec == std::errc() && result.ptr == p) {
            sum += value;
            if (numbers != nullptr)
                numbers->push_back(value);
        }
    }
    return sum;
}

double convertTree(const pugi::xml_node& node, std::vector<double>* numbers)
{
    double sum = 0.0;
    for (pugi::xml_attribute attribute : node.attributes())
        sum += convertAll(attribute.value(), numbers);
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata)
            sum += convertAll(child.value(), numbers);
        else if (child.type() == pugi::node_element)
            sum += convertTree(child, numbers);
    }
    return sum;
}

void BM_SetupRead(benchmark::State& state)
{
    const std::string& text = setupText();
    NoChannels fetcher;
    overmap::ObjectManager manager;
    overmap::XmlReadWriter reader(&manager, &fetcher);
    for (auto _ : state) {
        const bool ok = reader.read(text);
        benchmark::DoNotOptimize(ok);
    }
    const auto path = std::dynamic_pointer_cast<overmap::TrackPath>(manager.getObjects().back());
    if (manager.objectCount() != 201 || !path || path->getPositions().size() != 100000)
        state.SkipWithError("the setup was not read completely");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_SetupRead)->Unit(benchmark::kMillisecond);

void BM_FloorRead(benchmark::State& state)
{
    const std::string& text = setupText();
    for (auto _ : state) {
        pugi::xml_document document;
        document.load_buffer(text.data(), text.size());
        benchmark::DoNotOptimize(convertTree(document, nullptr));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_FloorRead)->Unit(benchmark::kMillisecond);

void BM_SetupWrite(benchmark::State& state)
{
    overmap::ObjectManager manager;
    fillSetup(manager);
    const overmap::XmlReadWriter writer(&manager, nullptr);
    std::string out;
    for (auto _ : state) {
        writer.write(out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_SetupWrite)->Unit(benchmark::kMillisecond);

void BM_FloorWrite(benchmark::State& state)
{
    std::vector<double> numbers;
    pugi::xml_document document;
    document.load_buffer(setupText().data(), setupText().size());
    convertTree(document, &numbers);
    for (auto _ : state) {
        fmt::memory_buffer buffer;
        for (double value : numbers)
            fmt::format_to(std::back_inserter(buffer), "{:.12f} ", value);
        benchmark::DoNotOptimize(buffer.data());
    }
    state.counters["numbers"] = static_cast<double>(numbers.size());
}
BENCHMARK(BM_FloorWrite)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    uni::initConsoleLogging(SEV_FATAL);
    return bench::runWithRatios(
        argc, argv, {{"BM_SetupRead", "BM_FloorRead", 3.0}, {"BM_SetupWrite", "BM_FloorWrite", 3.0}});
}
