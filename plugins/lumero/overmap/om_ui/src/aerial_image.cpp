#include <om_ui/aerial_image.h>

#include "same_value.h"

#include <math_geo/earth_model.h>

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <cmath>

namespace overmap_ui {

namespace {
constexpr double PI = 3.14159265358979323846;
using math_geo::earth::DEG_TO_RAD;
/// Closer GPS points than this are the same point.
constexpr double SAME_GPS_POINT_METRES = 0.0001;
/// Below this, a distance between the points gives no scale.
constexpr double MIN_SCALING_DISTANCE = 1e-9;
/// Below this, the image points give no direction.
constexpr double MIN_DIRECTION_LENGTH = 1e-6;

math_geo::GeoPosition toGeoPosition(const QGeoCoordinate& coordinate)
{
    return math_geo::GeoPosition(coordinate.latitude(), coordinate.longitude());
}

/// Constant-course bearing in degrees, 0 to 360, from @p from to @p to, the short way round across
/// the antimeridian. Not the great circle's initial bearing: the image is laid along the course line.
double rhumbBearing(const QGeoCoordinate& from, const QGeoCoordinate& to)
{
    const double phi1 = from.latitude() * DEG_TO_RAD;
    const double phi2 = to.latitude() * DEG_TO_RAD;
    double d_lambda = (to.longitude() - from.longitude()) * DEG_TO_RAD;
    const double d_psi = std::log(std::tan(phi2 / 2.0 + PI / 4.0) / std::tan(phi1 / 2.0 + PI / 4.0));
    if (std::fabs(d_lambda) > PI) {
        if (d_lambda > 0.0)
            d_lambda = -(2.0 * PI - d_lambda);
        else
            d_lambda = d_lambda + 2.0 * PI;
    }
    double bearing = std::atan2(d_lambda, d_psi) / DEG_TO_RAD;
    while (bearing < 0.0)
        bearing += 360.0;
    while (bearing > 360.0)
        bearing -= 360.0;
    return bearing;
}
} // namespace

AerialImage::AerialImage(QObject* parent) : QObject(parent) {}

void AerialImage::setImagePath(const QString& image_path)
{
    if (image_path == m_image_path)
        return;
    m_image_path = image_path;
    Q_EMIT imagePathChanged();
    Q_EMIT imageChanged();
}

void AerialImage::setPrimaryGPSPoint(const QGeoCoordinate& point)
{
    if (point.distanceTo(m_primary_gps_point) < SAME_GPS_POINT_METRES)
        return;
    m_primary_gps_point = point;
    Q_EMIT primaryGPSPointChanged();
    pointsChanged();
}

void AerialImage::setSecondaryGPSPoint(const QGeoCoordinate& point)
{
    if (point.distanceTo(m_secondary_gps_point) < SAME_GPS_POINT_METRES)
        return;
    m_secondary_gps_point = point;
    Q_EMIT secondaryGPSPointChanged();
    pointsChanged();
}

void AerialImage::setPrimaryXYPoint(QPointF point)
{
    if (point == m_primary_xy_point)
        return;
    m_primary_xy_point = point;
    Q_EMIT primaryXYPointChanged();
    pointsChanged();
}

void AerialImage::setSecondaryXYPoint(QPointF point)
{
    if (point == m_secondary_xy_point)
        return;
    m_secondary_xy_point = point;
    Q_EMIT secondaryXYPointChanged();
    pointsChanged();
}

void AerialImage::setPoints(const QGeoCoordinate& primary_gps_point, QPointF primary_xy_point,
                            const QGeoCoordinate& secondary_gps_point, QPointF secondary_xy_point)
{
    m_primary_gps_point = primary_gps_point;
    m_secondary_gps_point = secondary_gps_point;
    m_primary_xy_point = primary_xy_point;
    m_secondary_xy_point = secondary_xy_point;
    Q_EMIT primaryGPSPointChanged();
    Q_EMIT secondaryGPSPointChanged();
    Q_EMIT primaryXYPointChanged();
    Q_EMIT secondaryXYPointChanged();
    pointsChanged();
}

void AerialImage::clear()
{
    m_image_path.clear();
    m_primary_gps_point = QGeoCoordinate(0.0, 0.0);
    m_secondary_gps_point = QGeoCoordinate(0.0, 0.0);
    m_primary_xy_point = QPointF(0.0, 0.0);
    m_secondary_xy_point = QPointF(0.0, 0.0);
    m_scaling = 1.0;
    m_north_rotation = 0.0;
    Q_EMIT imagePathChanged();
    Q_EMIT primaryGPSPointChanged();
    Q_EMIT secondaryGPSPointChanged();
    Q_EMIT primaryXYPointChanged();
    Q_EMIT secondaryXYPointChanged();
    Q_EMIT scalingChanged();
    Q_EMIT imageChanged();
}

void AerialImage::pointsChanged()
{
    updateScaling();
    updateNorthRotation();
    Q_EMIT imageChanged();
}

void AerialImage::updateScaling()
{
    const QPointF delta = m_secondary_xy_point - m_primary_xy_point;
    const double pixels = std::hypot(delta.x(), delta.y());
    const double metres =
        toGeoPosition(m_primary_gps_point)
            .distanceTo(toGeoPosition(m_secondary_gps_point), math_geo::DistanceMethod::GEODESIC);
    if (metres > MIN_SCALING_DISTANCE && pixels > MIN_SCALING_DISTANCE)
        m_scaling = metres / pixels;
    else
        m_scaling = 1.0;
    // Deliberately emitted even when the value stayed.
    Q_EMIT scalingChanged();
}

void AerialImage::updateNorthRotation()
{
    math_geo::Point2D delta(m_secondary_xy_point.x() - m_primary_xy_point.x(),
                            m_secondary_xy_point.y() - m_primary_xy_point.y(),
                            math_geo::CoordinateSystem::X_RIGHT_Y_BACK);
    double rotation = 0.0;
    if (delta.length() > MIN_DIRECTION_LENGTH) {
        delta.toCoordSystem(math_geo::CoordinateSystem::X_RIGHT_Y_FRONT);
        const double image_angle =
            delta.angleTo(math_geo::Point2D(0.0, 1.0, math_geo::CoordinateSystem::X_RIGHT_Y_FRONT));
        rotation = rhumbBearing(m_primary_gps_point, m_secondary_gps_point) - image_angle;
    }
    if (detail::sameValue(rotation, m_north_rotation))
        return;
    m_north_rotation = rotation;
    Q_EMIT northRotationChanged();
}

} // namespace overmap_ui
