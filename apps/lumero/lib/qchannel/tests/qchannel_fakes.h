#pragma once

// Channels for the QChannel tests: the host's own scalar channels from lum_data, and
// small in-memory channels of the other kinds that hand out prepared samples.

#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/channel_kinds.h>
#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>
#include <ferrin_core/data_source.h>
#include <ferrin_core/tick_arithmetic.h>

#include <any>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qchannel_test {

using ferrin::Tick;

/// A data source that only names its stream; the samples are the channel's own.
class StreamOnlySource : public ferrin::DataSource
{
public:
    explicit StreamOnlySource(std::uint64_t stream_id) : m_stream_id(stream_id) {}
    std::uint64_t reductionFactor(std::uint32_t, std::uint64_t) const override { return 0; }
    std::uint64_t tickReductionFactor(std::uint32_t, std::uint64_t) const override { return 0; }
    std::shared_ptr<ferrin::ReducedStream> getReducedStream(std::uint32_t, std::uint32_t) const override
    {
        return nullptr;
    }
    std::uint64_t streamId() const override { return m_stream_id; }
    std::shared_ptr<ferrin::IfLoadableStream> getSampleStream() const override { return nullptr; }

private:
    std::uint64_t m_stream_id;
};

/// A channel of kind @p Base whose samples are given by tick; getSampleAtTime answers
/// the one at or before the time.
template <typename Base>
class PreparedChannel : public Base
{
public:
    PreparedChannel(ferrin::ChannelSetup setup, std::map<Tick, daq::SampleData> samples,
                    std::uint64_t stream_id)
        : Base(std::move(setup)), m_samples(std::move(samples)),
          m_source(std::make_shared<StreamOnlySource>(stream_id))
    {}

    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return m_source; }
    daq::SamplePtr getSampleAtTime(double time) const override
    {
        const Tick tick = ferrin::timeToTickFloor(time, *this->getTimeBase());
        if (tick == ferrin::NO_TICK)
            return nullptr;
        auto it = m_samples.upper_bound(tick);
        if (it == m_samples.begin())
            return nullptr;
        --it;
        return daq::makeSample(it->first, it->second);
    }
    std::optional<std::map<std::string, std::any>> getMetaData() const override { return metadata; }
    bool hasMetaData() const override { return metadata.has_value(); }

    std::optional<std::map<std::string, std::any>> metadata;

private:
    std::map<Tick, daq::SampleData> m_samples;
    std::shared_ptr<StreamOnlySource> m_source;
};

/// Builds channels that share a time base, a regions manager and a config manager.
class ChannelFactory
{
public:
    explicit ChannelFactory(double frequency = 10.0)
        : time_base(std::make_shared<lum::data::MemoryTimeBase>(frequency, 0.0))
    {}

    /// A setup with the usual items of a recorded channel.
    ferrin::ChannelSetup setup(const std::string& name, std::int32_t occurrence = ferrin::OCCURRENCE_SYNC)
    {
        ferrin::ChannelSetup result;
        result.id = channel_config::ChannelID(3, ++m_next_local);
        result.time_base = time_base;
        result.sample_occurrence = occurrence;
        result.regions_manager = regions;
        result.config_manager = &manager;
        result.items = std::make_shared<ferrin::ConfigItemStore>();
        result.items->set("Ferrin/Name", config_items::StringConfigItem(name));
        result.items->set("Ferrin/LongName", config_items::StringConfigItem(""));
        result.items->set("Used", config_items::SingleValueConfigItem<bool>(true));
        result.items->set("Ferrin/Color", config_items::StringConfigItem("#ff0000"));
        result.items->set("Unit", config_items::StringConfigItem("V"));
        return result;
    }

    std::shared_ptr<lum::data::SyncScalarChannel> sync(const std::string& name, std::vector<double> values)
    {
        auto channel =
            lum::data::SyncScalarChannel::create(setup(name), std::move(values), regions, ++m_next_stream);
        manager.addChannel(channel);
        return channel;
    }

    std::shared_ptr<lum::data::AsyncScalarChannel> async(const std::string& name,
                                                         const std::vector<std::pair<Tick, double>>& samples)
    {
        auto channel = lum::data::AsyncScalarChannel::create(setup(name, ferrin::OCCURRENCE_ASYNC), samples,
                                                             regions, ++m_next_stream);
        manager.addChannel(channel);
        return channel;
    }

    /// A channel of kind @p Base with @p samples; the ticks from the first to the last
    /// sample count as recorded.
    template <typename Base>
    std::shared_ptr<PreparedChannel<Base>> prepared(const std::string& name,
                                                    std::map<Tick, daq::SampleData> samples,
                                                    std::int32_t resolution = 11, std::uint32_t dimension = 1)
    {
        ferrin::ChannelSetup channel_setup = setup(name);
        channel_setup.sample_resolution = resolution;
        channel_setup.sample_dimension = dimension;
        const std::uint64_t stream = ++m_next_stream;
        if (!samples.empty())
            regions->addRegion(stream, ferrin::REGION_KIND_SAMPLES, samples.begin()->first,
                               samples.rbegin()->first);
        auto channel =
            std::make_shared<PreparedChannel<Base>>(std::move(channel_setup), std::move(samples), stream);
        manager.addChannel(channel);
        return channel;
    }

    std::shared_ptr<lum::data::MemoryTimeBase> time_base;
    std::shared_ptr<ferrin::DataRegionsManager> regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager manager;

private:
    std::uint32_t m_next_local = 0;
    std::uint64_t m_next_stream = 0;
};

} // namespace qchannel_test
