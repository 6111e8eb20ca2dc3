// Items per second for reading and printing configuration values: a mix of every
// readable alternative, as configuration loading sees it, and the costliest kinds alone.
#include <config_items/parse_string_visitor.h>

#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace config_items;
using namespace channel_config;

using Sample = std::pair<ConfigItemVariant, std::string>;

std::vector<Sample> mixedSamples()
{
    return {
        {StringConfigItem("", 64), "Front left wheel speed"},
        {SingleValueConfigItem<double>(), "0.10000000000000001"},
        {ScalarConfigItem(0, "V"), "1,5 mV"},
        {ScalarConfigItem(0, "s"), "1/3 s"},
        {SingleValueConfigItem<int>(), "-2147483648"},
        {SingleValueConfigItem<unsigned int>(), "4294967295"},
        {SingleValueConfigItem<bool>(), "true"},
        {RangeConfigItem<double>(), "-10 V .. 10 V"},
        {ValueListConfigItem<std::string>(), R"("alpha", "beta \"b\"", "gamma")"},
        {ValueListConfigItem<TupleValue<double, double>>(), "(0,0), (0.5,1.25), (1,2.5)"},
        {DecoratedNumberConfigItem(), "#12rpm"},
        {SingleValueConfigItem<UserScalingMode>(), "TwoPoint"},
        {SingleValueConfigItem<DAQChannelType>(), "Position_HorizontalDilution"},
        {SingleValueConfigItem<DAQSampleResolution>(), "double"},
        {SingleValueConfigItem<PhysicalQuantity>(), "Strain"},
        {GenericEnumConfigItem(), "ChannelStored:Auto"},
        {SingleValueConfigItem<ChannelID>(), "4294967297"},
        {RationalScalarConfigItem(), "1.25 ms"},
    };
}

void parseSamples(benchmark::State& state, const std::vector<Sample>& samples)
{
    const ParseStringVisitor parser;
    std::vector<ConfigItemVariant> targets;
    for (const Sample& sample : samples)
        targets.push_back(sample.first);
    for (auto _ : state) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const bool ok = parser.parse(samples[i].second, targets[i]);
            benchmark::DoNotOptimize(ok);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * samples.size()));
}

void BM_ParseMixed(benchmark::State& state)
{
    parseSamples(state, mixedSamples());
}
BENCHMARK(BM_ParseMixed);

void BM_PrintMixed(benchmark::State& state)
{
    const ParseStringVisitor parser;
    std::vector<ConfigItemVariant> items;
    for (Sample& sample : mixedSamples()) {
        if (!parser.parse(sample.second, sample.first))
            state.SkipWithError("sample does not parse");
        items.push_back(sample.first);
    }
    for (auto _ : state) {
        for (const ConfigItemVariant& item : items) {
            std::string text = channel_config::toString(item);
            benchmark::DoNotOptimize(text);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * items.size()));
}
BENCHMARK(BM_PrintMixed);

void BM_ParseDouble(benchmark::State& state)
{
    parseSamples(state, {{SingleValueConfigItem<double>(), "0.10000000000000001"}});
}
BENCHMARK(BM_ParseDouble);

void BM_ParseScalarByPattern(benchmark::State& state)
{
    parseSamples(state, {{ScalarConfigItem(0, "V"), "1,5 mV"}});
}
BENCHMARK(BM_ParseScalarByPattern);

void BM_ParseRange(benchmark::State& state)
{
    parseSamples(state, {{RangeConfigItem<double>(), "-10 V .. 10 V"}});
}
BENCHMARK(BM_ParseRange);

void BM_ParseChannelType(benchmark::State& state)
{
    parseSamples(state, {{SingleValueConfigItem<DAQChannelType>(), "Position_HorizontalDilution"}});
}
BENCHMARK(BM_ParseChannelType);

} // namespace

BENCHMARK_MAIN();
