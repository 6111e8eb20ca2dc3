#pragma once

#include <math_geo/geo_position.h>

#include <string>
#include <vector>

namespace math_geo {

/// Reads the line string coordinates of a KML file into @p positions (emptied first once the file
/// has loaded). The file needs a root element "kml" with a Document holding a Placemark. Every
/// LineString of the file is read and joined, with a note in the "math_geo" log. Tuples are
/// lon,lat,alt; the altitude is dropped. Trailing white space after the last tuple repeats the last
/// position and tuples without altitude are misread; both are kept on purpose (importers simplify
/// the track, which removes the duplicate). Text that cannot be read as numbers ends the reading of
/// its element with a complaint in the log; what was read before it is kept.
/// @param path UTF-8 file name
/// @return false when the file cannot be loaded or holds no usable line string
bool readKmlFile(const std::string& path, std::vector<GeoPosition>& positions);

} // namespace math_geo
