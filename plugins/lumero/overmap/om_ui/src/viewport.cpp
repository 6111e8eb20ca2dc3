#include <om_ui/viewport.h>

#include <math_geo/geo_position.h>
#include <math_geo/geo_tools.h>

#include <QRectF>

#include <algorithm>
#include <cmath>

namespace overmap_ui {

using math_geo::CoordinateSystem;
using math_geo::Point2D;

namespace {
/// Keeps an axis-parallel segment's box from being empty, which never intersects.
constexpr double BOX_MARGIN = 0.1;
constexpr double SAME_VALUE = 1e-12;
} // namespace

Viewport::Viewport(QQuickItem* parent) : QQuickItem(parent)
{
    connect(this, &QQuickItem::widthChanged, this, &Viewport::updateOffset);
    connect(this, &QQuickItem::heightChanged, this, &Viewport::updateOffset);
    updateTransform();
}

void Viewport::updateTransform()
{
    const math_geo::GeoPosition c = m_plane.getCenter();
    const QGeoCoordinate origin(c.latitude, c.longitude);
    Point2D at = toScreenUp(origin);
    Point2D north = toScreenUp(QGeoCoordinate(c.latitude + 1.0, c.longitude));
    Point2D east = toScreenUp(QGeoCoordinate(c.latitude, c.longitude + 1.0));
    for (Point2D* point : {&at, &north, &east})
        point->toCoordSystem(CoordinateSystem::X_RIGHT_Y_BACK);
    m_to_screen.lat_x = north.x - at.x;
    m_to_screen.lon_x = east.x - at.x;
    m_to_screen.lat_y = north.y - at.y;
    m_to_screen.lon_y = east.y - at.y;
    m_to_screen.center_x = at.x;
    m_to_screen.center_y = at.y;
}

QGeoCoordinate Viewport::center() const
{
    const math_geo::GeoPosition center = m_plane.getCenter();
    return QGeoCoordinate(center.latitude, center.longitude);
}

void Viewport::setCenter(const QGeoCoordinate& center)
{
    if (!center.isValid() || center == this->center())
        return;
    m_plane.setCenter(math_geo::GeoPosition(center.latitude(), center.longitude()));
    updateTransform();
    Q_EMIT centerChanged(this->center());
    Q_EMIT viewportChanged();
}

void Viewport::setRotation(double rotation)
{
    if (std::fabs(rotation - m_plane.getRotation()) <= SAME_VALUE)
        return;
    const double wrapped = math_geo::wrapToRange(rotation, 0.0, 360.0);
    m_plane.setRotation(wrapped);
    updateTransform();
    Q_EMIT rotationChanged(wrapped);
    Q_EMIT viewportChanged();
}

void Viewport::setScaling(double scaling)
{
    if (std::fabs(scaling - m_scaling) <= SAME_VALUE || scaling <= 0.0)
        return;
    m_scaling = scaling;
    updateTransform();
    Q_EMIT scalingChanged(m_scaling);
    Q_EMIT viewportChanged();
}

void Viewport::updateOffset()
{
    m_offset = Point2D(width() * 0.5, -height() * 0.5, CoordinateSystem::X_RIGHT_Y_FRONT);
    updateTransform();
    Q_EMIT viewportChanged();
}

Point2D Viewport::toScreenUp(const QGeoCoordinate& pos) const
{
    // Not normalised: a view near the antimeridian projects as the plane does.
    math_geo::GeoPosition position;
    position.latitude = pos.latitude();
    position.longitude = pos.longitude();
    Point2D point = m_plane.toPlane(position);
    point.toCoordSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    return point * m_scaling + m_offset;
}

QPointF Viewport::projectGPSToScreen(const QGeoCoordinate& pos) const
{
    // Relative to the centre: the matrix's columns are per degree, and small differences
    // keep the last digits.
    const math_geo::GeoPosition c = m_plane.getCenter();
    const double lat = pos.latitude() - c.latitude;
    const double lon = pos.longitude() - c.longitude;
    const Affine& m = m_to_screen;
    return QPointF(m.center_x + m.lat_x * lat + m.lon_x * lon, m.center_y + m.lat_y * lat + m.lon_y * lon);
}

QGeoCoordinate Viewport::projectScreenToGPS(QPointF point) const
{
    Point2D screen(point.x(), point.y(), CoordinateSystem::X_RIGHT_Y_BACK);
    screen.toCoordSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    Point2D planar = (screen - m_offset) / m_scaling;
    planar.toCoordSystem(m_plane.getXYCoordinateSystem());
    const math_geo::GeoPosition position = m_plane.toGeoPosition(planar);
    return QGeoCoordinate(position.latitude, position.longitude);
}

bool Viewport::isInside(const QGeoCoordinate& pos) const
{
    const QPointF point = projectGPSToScreen(pos);
    return point.x() >= 0.0 && point.y() >= 0.0 && point.x() <= width() && point.y() <= height();
}

bool Viewport::intersectsItem(double left, double top, double right, double bottom) const
{
    // QRectF::intersects without its objects: an item without area meets nothing.
    const double w = width();
    const double h = height();
    return w > 0.0 && h > 0.0 && left < w && right > 0.0 && top < h && bottom > 0.0;
}

bool Viewport::isSegmentInside(const QGeoCoordinate& start, const QGeoCoordinate& end) const
{
    const QPointF a = projectGPSToScreen(start);
    const QPointF b = projectGPSToScreen(end);
    return intersectsItem(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::max(a.x(), b.x()) + BOX_MARGIN,
                          std::max(a.y(), b.y()) + BOX_MARGIN);
}

bool Viewport::isQuadInside(const QGeoCoordinate& a, const QGeoCoordinate& b, const QGeoCoordinate& c,
                            const QGeoCoordinate& d) const
{
    if (width() <= 0.0 || height() <= 0.0)
        return false;
    const QPointF points[] = {projectGPSToScreen(a), projectGPSToScreen(b), projectGPSToScreen(c),
                              projectGPSToScreen(d)};
    double left = points[0].x();
    double right = left;
    double top = points[0].y();
    double bottom = top;
    for (const QPointF& point : points) {
        left = std::min(left, point.x());
        right = std::max(right, point.x());
        top = std::min(top, point.y());
        bottom = std::max(bottom, point.y());
    }
    return intersectsItem(left, top, right + BOX_MARGIN, bottom + BOX_MARGIN);
}

double Viewport::geoWidth() const
{
    const double middle = height() * 0.5;
    return std::fabs(projectScreenToGPS(QPointF(width(), middle)).longitude() -
                     projectScreenToGPS(QPointF(0.0, middle)).longitude());
}

double Viewport::geoHeight() const
{
    const double middle = width() * 0.5;
    return std::fabs(projectScreenToGPS(QPointF(middle, height())).latitude() -
                     projectScreenToGPS(QPointF(middle, 0.0)).latitude());
}

} // namespace overmap_ui
