#pragma once

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_channel_options.h>

#include <ferrin_core/scalar_channel.h>

#include <lum_import/recording.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace lum::data {

struct RecordingChannelOptions
{
    /// Node word of the channel ids; local words count from 1 in the recording's order.
    std::uint32_t node_id = 1;
    /// Stream ids in the regions manager count from here.
    std::uint64_t first_stream_id = 1;
    /// Ticks per second of the clock of channels whose samples are not evenly spaced.
    double async_frequency = 1e6;
    /// Largest deviation of a sample interval, relative to the first one, for which a
    /// channel counts as evenly spaced and becomes a synchronous channel.
    double sync_tolerance = 1e-6;
    MemoryChannelOptions memory;
};

/// Makes one scalar channel for each channel of an imported recording, on the time axis
/// of the recording (seconds from its first sample), and registers them with
/// @p manager, which also becomes their config manager. Evenly spaced channels are
/// synchronous at their rate, the others asynchronous. Items: `Ferrin/Name`,
/// `Ferrin/LongName`, `Ferrin/PhysicalUnit`, `Unit`, `Ferrin/Color`, `Used`,
/// `Ferrin/Stored`, `ChannelType` (GPS kinds for the names GPS readers give) and
/// `Visibility`.
std::vector<std::shared_ptr<ferrin::ScalarChannel>>
makeRecordingChannels(const lum::import::Recording& recording, MemoryChannelConfigManager& manager,
                      const std::shared_ptr<ferrin::DataRegionsManager>& regions,
                      const RecordingChannelOptions& options = {});

} // namespace lum::data
