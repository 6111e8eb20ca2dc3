#pragma once

#include <lum_data/memory_channel_config_manager.h>

#include <om_model/if_channel_fetcher.h>
#include <om_model/object_manager.h>

#include <math_geo/geo_position.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace overmap_replay {

/// One loaded recording, as the default scene needs it.
struct LoadedRecording
{
    std::string path;
    std::string stem;                       ///< file name without folder and extension
    std::uint32_t node_id = 0;              ///< 1 for the first recording, 2 for the second, ...
    std::vector<std::string> channel_names; ///< in channel order; empty for one without samples
    /// The first sample with both latitude and longitude, when there is one.
    std::optional<math_geo::GeoPosition> first_position;
};

/// Every recording in channels on one time axis: seconds from the earliest absolute start.
struct LoadedRecordings
{
    std::unique_ptr<lum::data::MemoryChannelConfigManager> manager;
    std::shared_ptr<ferrin::DataRegionsManager> regions;
    std::vector<LoadedRecording> recordings;
    /// Absolute time of replay time 0, seconds since 1970; 0 when no recording knows its start.
    double time_origin = 0.0;
    /// Replay time of the last sample of any channel.
    double end_time = 0.0;
    std::string error; ///< one line; set when anything could not be loaded

    explicit operator bool() const { return error.empty(); }
};

/// Imports each file (CSV, NMEA, GPX) into channels: recording n gets node id n.
/// Recordings that say when they started are aligned by that start; one that does not
/// starts at replay time 0. Any file that cannot be read or yields no samples is an error.
LoadedRecordings loadRecordings(const std::vector<std::string>& paths);

/// A scene, or why there is none.
struct SetupResult
{
    std::unique_ptr<overmap::ObjectManager> manager;
    std::string error; ///< one line

    explicit operator bool() const { return manager != nullptr && error.empty(); }
};

/// Reads a setup file with XmlReadWriter, binding its channels through @p fetcher. A
/// setup that reads only in part is refused: it would replay another scene than the saved one.
SetupResult loadSetup(const std::string& path, overmap::IfChannelFetcher& fetcher);

/// The scene without a setup file: one car per recording, id = node id, named by the
/// file stem, driven by its latitude, longitude and (when present) heading channels;
/// the reference plane is centred on the first recorded position.
SetupResult defaultScene(const LoadedRecordings& recordings, overmap::IfChannelFetcher& fetcher);

} // namespace overmap_replay
