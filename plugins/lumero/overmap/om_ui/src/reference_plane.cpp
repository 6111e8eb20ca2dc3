#include <om_ui/reference_plane.h>

#include "same_value.h"

#include <qt_utils/qt_checked_connect.h>

namespace overmap_ui {

namespace {
math_geo::GeoPosition toGeoPosition(const QGeoCoordinate& coordinate)
{
    return math_geo::GeoPosition(coordinate.latitude(), coordinate.longitude());
}

QGeoCoordinate toCoordinate(const math_geo::GeoPosition& position)
{
    return QGeoCoordinate(position.latitude, position.longitude);
}
} // namespace

ReferencePlane::ReferencePlane(QObject* parent) : QObject(parent), m_background_image(new AerialImage(this))
{
    CHECKED_CONNECT(m_background_image, &AerialImage::imageChanged, this, &ReferencePlane::planeChanged);
}

QGeoCoordinate ReferencePlane::planeOrigin() const
{
    return toCoordinate(m_plane.getCenter());
}

void ReferencePlane::setPlaneOrigin(const QGeoCoordinate& origin)
{
    if (origin == planeOrigin())
        return;
    m_plane.setCenter(toGeoPosition(origin));
    Q_EMIT planeOriginChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setPlaneRotation(double rotation)
{
    if (detail::sameValue(rotation, m_plane.getRotation()))
        return;
    m_plane.setRotation(rotation);
    Q_EMIT planeRotationChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setPrimaryGPSPoint(const QGeoCoordinate& point)
{
    if (point == m_primary_gps_point)
        return;
    m_primary_gps_point = point;
    Q_EMIT primaryGPSPointChanged();
    updatePlaneFromPoints();
    Q_EMIT planeChanged();
}

void ReferencePlane::setSecondaryGPSPoint(const QGeoCoordinate& point)
{
    if (point == m_secondary_gps_point)
        return;
    m_secondary_gps_point = point;
    Q_EMIT secondaryGPSPointChanged();
    updatePlaneFromPoints();
    Q_EMIT planeChanged();
}

void ReferencePlane::setPrimaryXYPoint(QPointF point)
{
    if (point == m_primary_xy_point)
        return;
    m_primary_xy_point = point;
    Q_EMIT primaryXYPointChanged();
    updatePlaneFromPoints();
    Q_EMIT planeChanged();
}

void ReferencePlane::setSecondaryXYPoint(QPointF point)
{
    if (point == m_secondary_xy_point)
        return;
    m_secondary_xy_point = point;
    Q_EMIT secondaryXYPointChanged();
    updatePlaneFromPoints();
    Q_EMIT planeChanged();
}

void ReferencePlane::setUsePointsDefinition(bool use_points_definition)
{
    if (use_points_definition == m_use_points_definition)
        return;
    m_use_points_definition = use_points_definition;
    updatePlaneFromPoints();
    Q_EMIT usePointsDefinitionChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setBackgroundImage(AerialImage* image)
{
    if (image == m_background_image)
        return;
    AerialImage* old = m_background_image;
    m_background_image = image;
    if (image)
        image->setParent(this);
    delete old;
    Q_EMIT backgroundImageChanged();
}

void ReferencePlane::setViewCenter(const QGeoCoordinate& center)
{
    if (center == m_view_center)
        return;
    m_view_center = center;
    Q_EMIT viewCenterChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setViewRotation(double rotation)
{
    if (detail::sameValue(rotation, m_view_rotation))
        return;
    m_view_rotation = rotation;
    Q_EMIT viewRotationChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setViewScaling(double scaling)
{
    if (detail::sameValue(scaling, m_view_scaling))
        return;
    m_view_scaling = scaling;
    Q_EMIT viewScalingChanged();
    Q_EMIT planeChanged();
}

void ReferencePlane::setDescription(const QString& description)
{
    if (description == m_description)
        return;
    m_description = description;
    Q_EMIT descriptionChanged(m_description);
    Q_EMIT planeChanged();
}

void ReferencePlane::clear()
{
    m_plane.setCenter(math_geo::GeoPosition(0.0, 0.0));
    m_plane.setRotation(0.0);
    m_plane.setXYCoordinateSystem(math_geo::ProjectionPlane().getXYCoordinateSystem());
    m_primary_gps_point = QGeoCoordinate(0.0, 0.0);
    m_secondary_gps_point = QGeoCoordinate(0.0, 0.0);
    m_use_points_definition = false;
    if (m_background_image)
        m_background_image->clear();
    m_view_center = QGeoCoordinate(0.0, 0.0);
    m_view_rotation = 0.0;
    m_view_scaling = 1.0;
    m_description.clear();

    // Every property is announced, the XY points too although they keep their values; the second
    // viewCenterChanged is long-standing and kept.
    Q_EMIT planeOriginChanged();
    Q_EMIT planeRotationChanged();
    Q_EMIT primaryGPSPointChanged();
    Q_EMIT secondaryGPSPointChanged();
    Q_EMIT primaryXYPointChanged();
    Q_EMIT secondaryXYPointChanged();
    Q_EMIT usePointsDefinitionChanged();
    Q_EMIT backgroundImageChanged();
    Q_EMIT viewCenterChanged();
    Q_EMIT viewRotationChanged();
    Q_EMIT viewScalingChanged();
    Q_EMIT viewCenterChanged();
    Q_EMIT descriptionChanged(m_description);
    Q_EMIT planeChanged();
}

void ReferencePlane::updatePlaneFromPoints()
{
    if (!m_use_points_definition || m_primary_gps_point == m_secondary_gps_point ||
        m_primary_xy_point == m_secondary_xy_point)
        return;
    const math_geo::CoordinateSystem system = m_plane.getXYCoordinateSystem();
    m_plane.defineByPoints(math_geo::Point2D(m_primary_xy_point.x(), m_primary_xy_point.y(), system),
                           math_geo::Point2D(m_secondary_xy_point.x(), m_secondary_xy_point.y(), system),
                           toGeoPosition(m_primary_gps_point), toGeoPosition(m_secondary_gps_point));
    Q_EMIT planeOriginChanged();
    Q_EMIT planeRotationChanged();
}

QGeoCoordinate ReferencePlane::projectToGPS(double x, double y) const
{
    return toCoordinate(m_plane.toGeoPosition(math_geo::Point2D(x, y, m_plane.getXYCoordinateSystem())));
}

QGeoCoordinate ReferencePlane::projectToGPS(QPointF point) const
{
    return projectToGPS(point.x(), point.y());
}

QPointF ReferencePlane::projectToXY(const QGeoCoordinate& pos) const
{
    const math_geo::Point2D point = m_plane.toPlane(toGeoPosition(pos));
    return QPointF(point.x, point.y);
}

} // namespace overmap_ui
