#pragma once

#include <om_model/geo_object.h>

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>
#include <math_geo/projection_plane.h>

#include <vector>

namespace overmap {

/// A ribbon on the ground: geographic vertices, a width, and where the given line lies
/// across the ribbon. Centre line and edges are worked out in the reference plane and
/// cached until the plane really moves or a defining value changes.
class Track : public GeoObject
{
public:
    explicit Track(const math_geo::ProjectionPlane* plane);
    Track(std::int32_t id, const math_geo::ProjectionPlane* plane);
    ~Track() override;

    const std::vector<math_geo::GeoPosition>& getPositions() const { return m_positions; }
    void setPositions(std::vector<math_geo::GeoPosition> positions);
    /// Ribbon width, metres.
    double getWidth() const { return m_width; }
    void setWidth(double width);
    /// Where the given line lies across the ribbon: 0 first edge, 1 second edge.
    double getOrigin() const { return m_track_origin; }
    void setOrigin(double origin);
    /// Arc radius, metres; 0 for a straight line or a polyline.
    double getRadius() const { return m_radius; }
    void setRadius(double radius);
    /// Arc length, metres.
    double getArcLength() const { return m_arc_length; }
    void setArcLength(double length);
    /// Arc bearing, degrees.
    double getArcBearing() const { return m_arc_bearing; }
    void setArcBearing(double bearing);
    /// The ends are given in the plane; the reference plane's rotation is then not applied.
    bool getXYFlag() const { return m_xy_flag; }
    void setXYFlag(bool value);
    const math_geo::GeoPosition& getArcCenter() const { return m_arc_center; }
    void setArcCenter(const math_geo::GeoPosition& center);

    // The getters are asked at every repaint: while the reference plane stays (within
    // its tolerance) they cost one plane comparison.

    /// For an arc its centre, otherwise the first vertex, in the reference plane.
    const std::vector<math_geo::Point2D>& planePoints() const;
    /// One point per vertex, mitred at the corners; for an arc the ribbon's two corners.
    const std::vector<math_geo::Point2D>& firstEdge() const { return cached(m_first_edge); }
    const std::vector<math_geo::Point2D>& secondEdge() const { return cached(m_second_edge); }
    /// One point per vertex, halfway between the edges.
    const std::vector<math_geo::Point2D>& centerLine() const { return cached(m_center_line); }
    /// Geodesic length along the vertices, metres.
    double pathLength() const;

protected:
    void clearCaches();

private:
    bool planeMoved() const
    {
        const math_geo::ProjectionPlane* plane = getPlane();
        if (plane == nullptr)
            return true;
        // An untouched plane is the rule at repaint; exact equality answers it without the
        // tolerance comparison, which then only sees real or noisy moves.
        const math_geo::GeoPosition center = plane->getCenter();
        const math_geo::GeoPosition cached = m_cached_plane.getCenter();
        if (center.latitude == cached.latitude && center.longitude == cached.longitude &&
            plane->getRotation() == m_cached_plane.getRotation())
            return false;
        return m_cached_plane != *plane;
    }
    const std::vector<math_geo::Point2D>& cached(const std::vector<math_geo::Point2D>& list) const
    {
        if (list.empty() || planeMoved())
            rebuild();
        return list;
    }
    void rebuild() const;
    void buildEdges() const;
    void buildPlanePoints() const;

    std::vector<math_geo::GeoPosition> m_positions;
    double m_width = 3.0;
    double m_radius = 0.0;
    double m_track_origin = 0.5;
    double m_arc_length = 0.0;
    double m_arc_bearing = 0.0;
    mutable std::vector<math_geo::Point2D> m_center_line;
    mutable std::vector<math_geo::Point2D> m_first_edge;
    mutable std::vector<math_geo::Point2D> m_second_edge;
    mutable math_geo::ProjectionPlane m_cached_plane;
    math_geo::GeoPosition m_arc_center;
    mutable std::vector<math_geo::Point2D> m_plane_points;
    bool m_xy_flag = false;
};

} // namespace overmap
