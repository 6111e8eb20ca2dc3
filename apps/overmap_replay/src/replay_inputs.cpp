#include <overmap_replay/replay_inputs.h>

#include <overmap_replay/scene_painter.h>

#include <lum_data/recording_channels.h>

#include <lum_import/importers.h>

#include <om_model/car.h>
#include <om_model/overmap_xml_read_writer.h>

#include <ferrin_core/scalar_channel.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>

namespace overmap_replay {

namespace {

std::optional<math_geo::GeoPosition> firstPosition(const lum::import::Recording& recording)
{
    const lum::import::ImportedChannel* latitude = recording.channel("latitude");
    const lum::import::ImportedChannel* longitude = recording.channel("longitude");
    if (!latitude || !longitude)
        return std::nullopt;
    // Both channels come from the same rows or sentences, so equal times pair up.
    std::size_t j = 0;
    for (std::size_t i = 0; i < latitude->times.size(); ++i) {
        while (j < longitude->times.size() && longitude->times[j] < latitude->times[i])
            ++j;
        if (j < longitude->times.size() && longitude->times[j] == latitude->times[i]) {
            const math_geo::GeoPosition position(latitude->values[i], longitude->values[j]);
            if (position.valid())
                return position;
        }
    }
    return std::nullopt;
}

} // namespace

LoadedRecordings loadRecordings(const std::vector<std::string>& paths)
{
    LoadedRecordings result;
    result.manager = std::make_unique<lum::data::MemoryChannelConfigManager>();
    result.regions = std::make_shared<ferrin::DataRegionsManager>();
    if (paths.empty()) {
        result.error = "no recording given";
        return result;
    }
    std::vector<lum::import::Recording> imported;
    for (const std::string& path : paths) {
        lum::import::ImportResult import = lum::import::importRecording(path);
        if (!import) {
            result.error = import.error;
            return result;
        }
        imported.push_back(std::move(import.recording));
    }
    double origin = std::numeric_limits<double>::infinity();
    for (const lum::import::Recording& recording : imported) {
        if (std::isfinite(recording.start_time))
            origin = std::min(origin, recording.start_time);
    }
    result.time_origin = std::isfinite(origin) ? origin : 0.0;

    std::uint64_t stream_id = 1;
    for (std::size_t i = 0; i < imported.size(); ++i) {
        const lum::import::Recording& recording = imported[i];
        lum::data::RecordingChannelOptions options;
        options.node_id = static_cast<std::uint32_t>(i + 1);
        options.first_stream_id = stream_id;
        options.time_origin = result.time_origin;
        options.qualified_long_names = true;
        const auto channels =
            lum::data::makeRecordingChannels(recording, *result.manager, result.regions, options);
        stream_id += recording.channels.size();

        const double offset =
            std::isfinite(recording.start_time) ? recording.start_time - result.time_origin : 0.0;
        LoadedRecording loaded;
        loaded.path = paths[i];
        loaded.stem = lum::data::recordingLongName(recording, "");
        if (!loaded.stem.empty() && loaded.stem.back() == '.')
            loaded.stem.pop_back();
        loaded.node_id = options.node_id;
        for (const lum::import::ImportedChannel& channel : recording.channels) {
            // A channel without samples got no channel object: the scene must not ask for it.
            loaded.channel_names.push_back(channel.times.empty() ? std::string() : channel.name);
            if (!channel.times.empty())
                result.end_time = std::max(result.end_time, offset + channel.times.back());
        }
        loaded.first_position = firstPosition(recording);
        result.recordings.push_back(std::move(loaded));
    }
    return result;
}

SetupResult loadSetup(const std::string& path, overmap::IfChannelFetcher& fetcher)
{
    SetupResult result;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        result.error = path + ": cannot open the setup file";
        return result;
    }
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad()) {
        result.error = path + ": cannot read the setup file";
        return result;
    }
    auto manager = std::make_unique<overmap::ObjectManager>();
    overmap::XmlReadWriter reader(manager.get(), &fetcher);
    // A setup read only in part would replay a different scene than the one saved.
    if (!reader.read(text)) {
        result.error = path + ": not a complete Overmap setup";
        return result;
    }
    result.manager = std::move(manager);
    return result;
}

SetupResult defaultScene(const LoadedRecordings& recordings, overmap::IfChannelFetcher& fetcher)
{
    SetupResult result;
    result.manager = std::make_unique<overmap::ObjectManager>();
    overmap::ObjectManager& manager = *result.manager;
    for (const LoadedRecording& recording : recordings.recordings) {
        if (recording.first_position) {
            manager.setReferencePlane(math_geo::ProjectionPlane(*recording.first_position, 0.0,
                                                                math_geo::CoordinateSystem::X_RIGHT_Y_FRONT));
            break;
        }
    }
    for (const LoadedRecording& recording : recordings.recordings) {
        auto car = std::make_shared<overmap::Car>(static_cast<std::int32_t>(recording.node_id),
                                                  manager.getReferencePlane());
        car->setName(recording.stem);
        car->setColor(ScenePainter::paletteColor(manager.objectCount()).name().toStdString());
        // Recorded headings turn clockwise from north, as this frame does; DIN70000 turns
        // the other way. Same axes, so the contour only changes its label.
        car->setCoordinateSystem(math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
        std::vector<math_geo::Point2D> contour = car->getContour();
        for (math_geo::Point2D& point : contour)
            point.setCoordinateSystem(math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
        car->setContour(contour);
        if (recording.first_position)
            car->setGeoPosition(*recording.first_position);
        // By id, which two files of the same name cannot confuse; a missing channel is
        // asked for by name, so that the lookup reports it.
        const auto find = [&](const std::string& name) {
            const auto it = std::find(recording.channel_names.begin(), recording.channel_names.end(), name);
            if (it == recording.channel_names.end())
                return fetcher.findByName(recording.stem + "." + name);
            const auto local_id = static_cast<std::uint32_t>(it - recording.channel_names.begin() + 1);
            return fetcher.findById(channel_config::ChannelID(recording.node_id, local_id));
        };
        car->setLatitudeChannel(find("latitude"));
        car->setLongitudeChannel(find("longitude"));
        const auto& names = recording.channel_names;
        if (std::find(names.begin(), names.end(), "heading") != names.end())
            car->setHeadingChannel(find("heading"));
        manager.addObject(std::move(car));
    }
    return result;
}

} // namespace overmap_replay
