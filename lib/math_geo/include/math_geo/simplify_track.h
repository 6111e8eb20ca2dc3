#pragma once

#include <math_geo/geo_position.h>

#include <vector>

namespace math_geo {

/// Thins a track by Ramer-Douglas-Peucker, measuring the cross-track distance in metres on the
/// Gaussian sphere of each range, so that the tolerance means the same everywhere on earth. First
/// and last vertex always stay and the order is kept; a vertex exactly at the tolerance stays.
/// @param tolerance metres
std::vector<GeoPosition> simplifyTrack(const std::vector<GeoPosition>& positions, double tolerance);

} // namespace math_geo
