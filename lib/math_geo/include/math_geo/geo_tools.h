#pragma once

#include <math_geo/geo_bounds.h>
#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <cstddef>
#include <vector>

namespace math_geo {

/// Radius of curvature of the meridian in metres, at height 0.
/// @param latitude degrees
double meridianRadius(double latitude);
/// Radius of curvature in the prime vertical in metres, at height 0.
/// @param latitude degrees
double primeVerticalRadius(double latitude);
/// Gaussian radius in metres (geometric mean of the two radii above): the sphere that fits best at
/// this latitude.
/// @param latitude degrees
double gaussianRadius(double latitude);

/// @p value wrapped into [min, max]. Both ends are kept as they are when given (180 stays 180 and
/// -180 stays -180); other values come out in the range. Reports max <= min.
double wrapToRange(double value, double min, double max);

/// The position reached from @p start along a great circle of the Gaussian sphere at the start.
/// @param bearing initial bearing in degrees, clockwise from north
/// @param distance metres
/// @return the end position, not normalised
GeoPosition destinationPoint(const GeoPosition& start, double bearing, double distance);

/// Constant bearing of the rhumb line from the segment's first to its second position, in degrees
/// clockwise from north, in [0, 360]; crosses the antimeridian the short way.
double rhumbBearing(const GeoSegment& segment);

/// Cartesian distance from @p point to the polyline through @p points (one point: the distance to
/// it). Throws boost::geometry::empty_input_exception for an empty list.
double distanceToPolyline(const Point2D& point, const std::vector<Point2D>& points);

/// Index i of the segment (i, i + 1) nearest to @p point, the earliest on a tie; -1 for fewer than
/// two points.
std::ptrdiff_t nearestSegment(const Point2D& point, const std::vector<Point2D>& points);

/// Removes, in place and keeping the order, every position that is not valid().
void removeInvalidPositions(std::vector<GeoPosition>& positions);

} // namespace math_geo
