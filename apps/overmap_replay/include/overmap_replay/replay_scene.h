#pragma once

#include <om_model/object_manager.h>

#include <math_geo/geo_position.h>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ferrin {
class ScalarChannel;
}

namespace overmap_replay {

/// One position object at one time.
struct ReplayRow
{
    double time = 0.0;
    std::int32_t object_id = 0;
    std::string name;
    double latitude = 0.0;
    double longitude = 0.0;
    double heading = 0.0; ///< the stored heading, degrees
    double x = 0.0;       ///< reference plane, metres
    double y = 0.0;
    /// False when the object's channels (or its reference object's) have no sample at or
    /// before the time, or the time lies past their last one: the row then holds where
    /// the object stood before.
    bool valid = false;
};

/// The path of one object that moves with its channels.
struct ObjectPath
{
    std::int32_t object_id = 0;
    std::string name;
    std::vector<math_geo::GeoPosition> positions; ///< valid positions, in time order
};

struct ReplayResult
{
    std::vector<ReplayRow> rows; ///< time-major, objects in list order
    std::vector<ObjectPath> paths;
};

/// Brings every position object of @p manager to each of @p times in turn (ascending
/// for the paths to make sense) and records where it stands.
ReplayResult replayScene(overmap::ObjectManager& manager, const std::vector<double>& times);

/// Brings every position object of @p manager to @p time, as replayScene does for each of
/// its times. Answers the ids of the objects whose channels give no place at that time:
/// they stand where they stood before.
std::set<std::int32_t> placeScene(overmap::ObjectManager& manager, double time);

/// A column of calculation results beside the rows: the result channel of a calculation.
struct CalculationColumn
{
    std::int32_t calculation_id = 0;
    std::shared_ptr<ferrin::ScalarChannel> channel;
};

/// Header "time,object_id,name,latitude,longitude,heading,x,y,valid", then one column per
/// calculation named by its result channel; then the rows. A calculation's field holds its
/// channel's value at the row's time in metres, and is empty where the channel has none.
void writeCsv(std::ostream& out, const std::vector<ReplayRow>& rows,
              const std::vector<CalculationColumn>& calculations = {});
/// One Placemark with a LineString per path; paths without positions are left out.
/// False with @p error set when the file cannot be written.
bool writeKml(const std::string& path, const std::vector<ObjectPath>& paths, std::string& error);
/// A FeatureCollection with one LineString feature (properties id and name) per path.
bool writeGeoJson(const std::string& path, const std::vector<ObjectPath>& paths, std::string& error);

} // namespace overmap_replay
