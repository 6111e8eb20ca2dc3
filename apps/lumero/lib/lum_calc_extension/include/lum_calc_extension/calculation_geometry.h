#pragma once

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <optional>
#include <vector>

namespace overmap {
class Calculation;
class Track;
} // namespace overmap

namespace lum::calc {

/// A track's ribbon as lines in the scene's reference plane (the plane's own system):
/// one point per vertex for a path or a straight line, an arc swept around its centre
/// finely enough to stand for the curve. Vertices the model leaves not-a-number (a
/// repeated vertex) are left out. Empty lines for a track without a shape yet.
struct TrackOutline
{
    std::vector<math_geo::Point2D> center_line;
    std::vector<math_geo::Point2D> first_edge;
    std::vector<math_geo::Point2D> second_edge;

    bool empty() const { return center_line.empty() && first_edge.empty(); }
};

/// The outline of @p track in its reference plane as it stands now.
TrackOutline trackOutline(const overmap::Track& track);

/// Where a calculation measures and what it measures there.
struct Measurement
{
    math_geo::GeoPosition from; ///< the measured point of the from side
    math_geo::GeoPosition to;   ///< the measured point of the to side
    /// Metres, with the result transformation applied. EUCLIDEAN is the length from one
    /// point to the other; X and Y are the components of that vector along the axes of
    /// the from object's own frame (its coordinate system: DIN70000 and X_FRONT_Y_LEFT
    /// x forward and y left), or of the to object's when the from side is a track, or of
    /// the reference plane between two tracks.
    double value = 0.0;
};

/// Measures @p calculation with its objects where they stand now. A position object is
/// measured at its chosen POI when it uses one, else at its reference point; a track at
/// the point of its centre line (TrackTarget CENTER) or of the nearer edge (EDGE) that is
/// nearest to the other side. Empty when a side is missing, a track has no shape or a
/// point is not a number.
std::optional<Measurement> measure(const overmap::Calculation& calculation);

} // namespace lum::calc
