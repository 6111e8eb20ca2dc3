#include <lum_data/recording_channels.h>

#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/tick_arithmetic.h>

#include <uni_base/uni_log.h>

#include <cmath>
#include <map>

namespace lum::data {

namespace {

using channel_config::DAQChannelType;

DAQChannelType channelTypeFor(const std::string& name)
{
    static const std::map<std::string, DAQChannelType> GPS_KINDS = {
        {"latitude", DAQChannelType::POSITION_LAT},
        {"longitude", DAQChannelType::POSITION_LONG},
        {"altitude", DAQChannelType::POSITION_ALT},
        {"heading", DAQChannelType::POSITION_HEAD},
        {"speed", DAQChannelType::POSITION_VEL},
        {"satellites", DAQChannelType::POSITION_NUM_SAT},
        {"fix_quality", DAQChannelType::POSITION_QUALITY},
        {"hdop", DAQChannelType::POSITION_HORIZONTAL_DILUTION},
    };
    const auto it = GPS_KINDS.find(name);
    return it == GPS_KINDS.end() ? DAQChannelType::ANALOG : it->second;
}

std::shared_ptr<ferrin::ConfigItemStore> itemsFor(const lum::import::ImportedChannel& imported,
                                                  const std::string& long_name)
{
    auto items = std::make_shared<ferrin::ConfigItemStore>();
    items->set("Ferrin/Name", config_items::StringConfigItem(imported.name));
    items->set("Ferrin/LongName", config_items::StringConfigItem(long_name));
    items->set("Ferrin/PhysicalUnit", config_items::StringConfigItem(imported.unit));
    items->set("Unit", config_items::StringConfigItem(imported.unit));
    items->set("Ferrin/Color", config_items::StringConfigItem("black"));
    items->set("Used", config_items::SingleValueConfigItem<bool>(true));
    items->set("Ferrin/Stored", config_items::GenericEnumConfigItem("ChannelStored", "Auto"));
    items->set("ChannelType",
               config_items::SingleValueConfigItem<DAQChannelType>(channelTypeFor(imported.name)));
    items->set("Visibility", config_items::GenericEnumConfigItem("", "PUBLIC"));
    return items;
}

/// The sample interval when every interval matches the first within @p tolerance.
double evenInterval(const std::vector<double>& times, double tolerance)
{
    if (times.size() < 2)
        return 0.0;
    const double interval = times[1] - times[0];
    if (!(interval > 0.0))
        return 0.0;
    for (std::size_t i = 1; i < times.size(); ++i) {
        const double expected = times[0] + interval * static_cast<double>(i);
        if (std::abs(times[i] - expected) > tolerance * interval * static_cast<double>(i))
            return 0.0;
    }
    return interval;
}

} // namespace

std::string recordingLongName(const lum::import::Recording& recording, const std::string& name)
{
    std::string stem = recording.source;
    const std::size_t slash = stem.find_last_of("/\\");
    if (slash != std::string::npos)
        stem.erase(0, slash + 1);
    const std::size_t dot = stem.rfind('.');
    if (dot != std::string::npos && dot > 0)
        stem.erase(dot);
    return stem.empty() ? name : stem + "." + name;
}

std::vector<std::shared_ptr<ferrin::ScalarChannel>>
makeRecordingChannels(const lum::import::Recording& recording, MemoryChannelConfigManager& manager,
                      const std::shared_ptr<ferrin::DataRegionsManager>& regions,
                      const RecordingChannelOptions& options)
{
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> result;
    std::uint32_t local_id = 0;
    std::uint64_t stream_id = options.first_stream_id;
    const double start =
        std::isfinite(recording.start_time) ? recording.start_time - options.time_origin : 0.0;
    for (const lum::import::ImportedChannel& imported : recording.channels) {
        ++local_id;
        if (imported.times.size() != imported.values.size() || imported.times.empty()) {
            UNI_LOG("lum_data", SEV_ERROR)
                << "channel " << imported.name << " of " << recording.source << " has no usable samples";
            continue;
        }
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(options.node_id, local_id);
        setup.items = itemsFor(
            imported, options.qualified_long_names ? recordingLongName(recording, imported.name) : "");
        setup.config_manager = &manager;
        setup.sample_resolution = static_cast<std::int32_t>(channel_config::DAQSampleResolution::DOUBLE);

        std::shared_ptr<ferrin::ScalarChannel> channel;
        const double interval = evenInterval(imported.times, options.sync_tolerance);
        if (interval > 0.0) {
            setup.time_base =
                std::make_shared<MemoryTimeBase>(1.0 / interval, start + imported.times.front());
            channel = SyncScalarChannel::create(std::move(setup), imported.values, regions, stream_id++,
                                                options.memory);
        } else {
            setup.time_base = std::make_shared<MemoryTimeBase>(options.async_frequency, start);
            // Samples go straight into the channel: a list of ticks first would hold every
            // sample once more at the moment memory peaks.
            const auto async =
                AsyncScalarChannel::create(std::move(setup), regions, stream_id++, options.memory);
            ferrin::Tick last = ferrin::NO_TICK;
            for (std::size_t i = 0; i < imported.times.size(); ++i) {
                // Ticks from the recording's own times: an absolute start would cost precision.
                const ferrin::Tick tick =
                    ferrin::timeToTickFloor(imported.times[i], options.async_frequency, 0.0);
                // Two samples closer than a tick keep the first: ticks must grow.
                if (tick == ferrin::NO_TICK || (last != ferrin::NO_TICK && tick <= last))
                    continue;
                async->append(tick, imported.values[i]);
                last = tick;
            }
            async->finish();
            channel = async;
        }
        manager.addChannel(channel);
        result.push_back(std::move(channel));
    }
    return result;
}

} // namespace lum::data
