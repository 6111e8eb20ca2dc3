#include <math_geo/projection_plane.h>

#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>

#include <uni_base/uni_assert.h>

#include <cmath>

namespace math_geo {

namespace {
constexpr double ROTATION_TOLERANCE = 1e-6; // degrees
} // namespace

ProjectionPlane::ProjectionPlane() : ProjectionPlane(GeoPosition(), 0.0, CoordinateSystem::X_RIGHT_Y_FRONT) {}

ProjectionPlane::ProjectionPlane(const GeoPosition& center, double rotation)
    : ProjectionPlane(center, rotation, CoordinateSystem::X_RIGHT_Y_FRONT)
{}

ProjectionPlane::ProjectionPlane(const GeoPosition& center, double rotation,
                                 CoordinateSystem coordinate_system)
    : m_center(center), m_rotation(rotation), m_xy_coordinate_system(coordinate_system)
{
    UNI_ASSERT(center.valid());
    cacheScales();
    cacheRotation();
}

void ProjectionPlane::setRotation(double degrees)
{
    m_rotation = degrees;
    cacheRotation();
}

void ProjectionPlane::cacheRotation()
{
    const double a = m_rotation * earth::DEG_TO_RAD;
    m_rotation_cos = std::cos(a);
    m_rotation_sin = std::sin(a);
}

void ProjectionPlane::setCenter(const GeoPosition& center)
{
    UNI_ASSERT(center.valid());
    // A moving object mostly changes its longitude at a time, and the scales depend on the
    // latitude only (a not-a-number one never compares equal, so it is always taken).
    const bool same_latitude = center.latitude == m_center.latitude;
    m_center = center;
    if (!same_latitude)
        cacheScales();
}

void ProjectionPlane::cacheScales()
{
    // meridianRadius and primeVerticalRadius with their common term taken once, the same
    // operations in the same order, so the scales agree with them to the last bit.
    const double phi = m_center.latitude * earth::DEG_TO_RAD;
    const double s = std::sin(phi);
    const double w = 1.0 - earth::ECCENTRICITY_SQUARED * s * s;
    const double meridian = earth::SEMI_MAJOR_AXIS_TIMES_ONE_MINUS_E2 / std::pow(w, 1.5);
    const double prime_vertical = earth::SEMI_MAJOR_AXIS / std::sqrt(w);
    m_latitude_scale = meridian * earth::DEG_TO_RAD;
    m_longitude_scale = std::cos(phi) * prime_vertical * earth::DEG_TO_RAD;
}

Point2D ProjectionPlane::toPlane(const GeoPosition& position) const
{
    const double north = (position.latitude - m_center.latitude) * m_latitude_scale;
    const double east = (position.longitude - m_center.longitude) * m_longitude_scale;
    Point2D p(east, north, CoordinateSystem::X_RIGHT_Y_FRONT);
    p.toCoordSystem(m_xy_coordinate_system);
    return p.rotateByCosSin(m_rotation_cos, m_rotation_sin);
}

GeoPosition ProjectionPlane::toGeoPosition(const Point2D& point) const
{
    // cos(-a) = cos(a), sin(-a) = -sin(a), to the last bit.
    Point2D q = point.rotateByCosSin(m_rotation_cos, -m_rotation_sin);
    q.toCoordSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    const double longitude = q.x / m_longitude_scale + m_center.longitude;
    const double latitude = q.y / m_latitude_scale + m_center.latitude;
    return GeoPosition::normalized(latitude, longitude);
}

void ProjectionPlane::defineByPoints(const Point2D& xy1, const Point2D& xy2, const GeoPosition& geo1,
                                     const GeoPosition& geo2)
{
    setCenter(geo1);
    setRotation(0.0);
    const Point2D axis(1.0, 0.0, xy1.getCoordinateSystem());
    // Direction of the pair in the plane's picture, and the same direction on the globe.
    const double picture_angle = axis.angleTo(xy2 - xy1);
    const double globe_angle = axis.angleTo(toPlane(geo2) - toPlane(geo1));
    setRotation(wrapToRange(picture_angle - globe_angle, 0.0, 360.0));
    // Coarse origin with the scales of geo1, then one pass to remove the error that the change of
    // scale with the new centre left.
    setCenter(toGeoPosition(-xy1));
    const Point2D residual = toPlane(geo1) - xy1;
    setCenter(toGeoPosition(residual));
}

bool ProjectionPlane::operator!=(const ProjectionPlane& other) const
{
    return m_center != other.m_center || std::fabs(m_rotation - other.m_rotation) >= ROTATION_TOLERANCE;
}

} // namespace math_geo
