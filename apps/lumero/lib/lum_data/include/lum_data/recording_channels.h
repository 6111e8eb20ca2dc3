#pragma once

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_channel_options.h>

#include <ferrin_core/scalar_channel.h>

#include <lum_import/recording.h>

#include <cstdint>
#include <memory>
#include <string>
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
    /// Absolute time (seconds since 1970) that becomes time 0 of the channels. At 0 the
    /// time bases start at the recording's absolute start; a replay of several
    /// recordings passes the earliest start, so that all share one small time axis.
    /// Ignored for a recording that does not know its start: it starts at 0.
    double time_origin = 0.0;
    /// Long names "<file stem>.<name>", so that several recordings of the same kind stay
    /// apart by long name; otherwise the long name is left empty and reads as the name.
    bool qualified_long_names = false;
    MemoryChannelOptions memory;
};

/// Makes one scalar channel for each channel of an imported recording and registers them
/// with @p manager, which also becomes their config manager. The time bases start at the
/// recording's absolute start less options.time_origin (at 0 for a recording without
/// one). Evenly spaced channels are synchronous at their rate, the others asynchronous.
/// Ids: node options.node_id, local 1..N in the recording's order. Items: `Ferrin/Name`,
/// `Ferrin/LongName` (see qualified_long_names), `Ferrin/PhysicalUnit`, `Unit`, `Ferrin/Color`, `Used`,
/// `Ferrin/Stored`, `ChannelType` (GPS kinds for the names GPS readers give) and
/// `Visibility`.
std::vector<std::shared_ptr<ferrin::ScalarChannel>>
makeRecordingChannels(const lum::import::Recording& recording, MemoryChannelConfigManager& manager,
                      const std::shared_ptr<ferrin::DataRegionsManager>& regions,
                      const RecordingChannelOptions& options = {});

/// The long name a channel of @p recording gets: "car1_drive.latitude" for the channel
/// "latitude" of "/data/car1_drive.csv".
std::string recordingLongName(const lum::import::Recording& recording, const std::string& name);

} // namespace lum::data
