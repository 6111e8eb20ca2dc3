// Any bytes as the setup text of the calculation extension: reading never crashes, and
// every calculation it keeps gives a number or no value at any time, through its channel.
#include <lum_calc_extension/calculation_scene.h>
#include <lum_calc_extension/result_channel.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <om_model/if_channel_fetcher.h>

#include <uni_base/uni_log.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

/// Every channel a setup asks for exists: a short drive whose values depend on the id's
/// local word, so that latitude, longitude and heading channels differ, and that runs
/// through invalid values too.
class AnyChannel : public overmap::IfChannelFetcher
{
public:
    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID id) override
    {
        return make(id.getLocalId());
    }
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string name) override
    {
        return make(static_cast<std::uint32_t>(name.size()));
    }

private:
    std::shared_ptr<ferrin::ScalarChannel> make(std::uint32_t seed)
    {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(1, seed);
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(2.0, 0.0);
        std::vector<double> values;
        for (int i = 0; i < 8; ++i)
            values.push_back(i == 5 ? std::numeric_limits<double>::quiet_NaN()
                                    : 47.0 + (seed % 7) * 0.001 * i);
        return lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), m_regions, seed);
    }

    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)quiet;
    AnyChannel fetcher;
    const auto scene =
        lum::calc::CalculationScene::read(std::string(reinterpret_cast<const char*>(data), size), fetcher);
    if (!scene)
        return 0;
    std::int32_t n = 0;
    for (const auto& calculation : scene->measurableCalculations()) {
        const auto channel = lum::calc::ResultChannel::create(channel_config::ChannelID(2, n++), "result",
                                                              {scene, calculation}, nullptr);
        for (const double time : {-1.0, 0.0, 1.25, 2.5, 3.0, 100.0, 1e300, std::nan("")}) {
            ferrin::Tick tick = 0;
            const double value = channel->getValueAtTime(time, &tick);
            if (std::isinf(value) || (std::isnan(value) != (tick == ferrin::NO_TICK)))
                std::abort();
        }
        channel->calculateValue(0.0, 4.0, ferrin::CALC_RMS);
        for (auto it = channel->getSampleIterator(0, daq::SEEK_AT_OR_AFTER); it->isValid(); it->next())
            (void)it->getValue();
    }
    return 0;
}
