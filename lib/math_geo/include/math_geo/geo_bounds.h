#pragma once

#include <math_geo/geo_position.h>

namespace math_geo {

/// The extent of a scene on the globe. Left greater than right means the bounds cross the
/// antimeridian. The same pair serves as GeoSegment, a directed segment from the first position
/// (topLeft) to the second (bottomRight).
class GeoBounds
{
public:
    GeoBounds(const GeoPosition& top_left, const GeoPosition& bottom_right)
        : m_top_left(top_left), m_bottom_right(bottom_right)
    {}

    const GeoPosition& topLeft() const { return m_top_left; }
    const GeoPosition& bottomRight() const { return m_bottom_right; }
    double top() const { return m_top_left.latitude; }
    double left() const { return m_top_left.longitude; }
    double bottom() const { return m_bottom_right.latitude; }
    double right() const { return m_bottom_right.longitude; }
    bool crossesAntimeridian() const { return right() < left(); }

    /// Grows to hold @p position, the shorter way round in longitude. A pole on a limit of the
    /// bounds is inside whatever its longitude.
    void extend(const GeoPosition& position);
    /// Extends by the other bounds' top left, then by its bottom right.
    void extend(const GeoBounds& other);

private:
    GeoPosition m_top_left;
    GeoPosition m_bottom_right;
};

/// A directed segment on the globe: from topLeft() to bottomRight().
using GeoSegment = GeoBounds;

} // namespace math_geo
