#pragma once

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <type_traits>

namespace math_geo {

/// Local equirectangular projection: a plane touching the ellipsoid at its centre, scaled by the
/// radii of curvature there. Cheap enough for every vertex of every frame, good over a test site,
/// not across the antimeridian.
class ProjectionPlane
{
public:
    /// Centre 0/0, rotation 0, X_RIGHT_Y_FRONT.
    ProjectionPlane();
    /// @param rotation degrees, added by toPlane after the axis conversion
    ProjectionPlane(const GeoPosition& center, double rotation);
    ProjectionPlane(const GeoPosition& center, double rotation, CoordinateSystem coordinate_system);

    /// Stores the centre (an invalid one is reported and stored all the same) and recomputes the
    /// scales, the only place where the ellipsoid is looked at.
    void setCenter(const GeoPosition& center);
    GeoPosition getCenter() const { return m_center; }

    /// @param degrees rotation of the plane's picture, stored as given (not normalised)
    void setRotation(double degrees);
    double getRotation() const { return m_rotation; }

    void setXYCoordinateSystem(CoordinateSystem system) { m_xy_coordinate_system = system; }
    CoordinateSystem getXYCoordinateSystem() const { return m_xy_coordinate_system; }

    /// Metres per degree of latitude at the centre.
    double getLatitudeScale() const { return m_latitude_scale; }
    /// Metres per degree of longitude at the centre.
    double getLongitudeScale() const { return m_longitude_scale; }

    /// The position as a point in the plane's system, in metres from the centre.
    Point2D toPlane(const GeoPosition& position) const;
    /// The position of @p point, which must be in the plane's system; the result is normalised.
    GeoPosition toGeoPosition(const Point2D& point) const;

    /// Fits centre and rotation so that @p geo1 lies at @p xy1 and @p geo2 in the direction of
    /// @p xy2; scale never comes from the pairs. Both points are in the plane's system, which is
    /// kept. Coincident XY points give a not-a-number rotation, so callers skip that case.
    void defineByPoints(const Point2D& xy1, const Point2D& xy2, const GeoPosition& geo1,
                        const GeoPosition& geo2);

    /// True when the centres differ (1e-9 degrees) or the rotations differ by 1e-6 degrees or more.
    /// The XY system is not compared: this is what caches of projected data test.
    bool operator!=(const ProjectionPlane& other) const;

private:
    /// Every vertex of every frame is turned by the same angle: its cosine and sine are
    /// taken once, when the rotation changes.
    void cacheRotation();
    /// Metres per degree at the centre's latitude.
    void cacheScales();

    GeoPosition m_center;
    double m_rotation = 0.0;
    double m_rotation_cos = 1.0;
    double m_rotation_sin = 0.0;
    double m_latitude_scale = 1.0;
    double m_longitude_scale = 1.0;
    CoordinateSystem m_xy_coordinate_system = CoordinateSystem::X_RIGHT_Y_FRONT;
};

static_assert(std::is_trivially_copyable_v<ProjectionPlane>, "planes are copied as plain values");

} // namespace math_geo
