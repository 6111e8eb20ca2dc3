#pragma once

#include <math_geo/point_2d.h>
#include <math_geo/projection_plane.h>

#include <QGeoCoordinate>
#include <QPointF>
#include <QQuickItem>

namespace overmap_ui {

/// The screen projection of the map item: geographic coordinates to pixels and back for a
/// centre, a rotation and a scale, and the culling answers of the drawing code. The item's
/// size gives the screen; its middle shows the centre.
class Viewport : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(QGeoCoordinate center READ center WRITE setCenter NOTIFY centerChanged)
    Q_PROPERTY(double rotation READ rotation WRITE setRotation NOTIFY rotationChanged)
    Q_PROPERTY(double scaling READ scaling WRITE setScaling NOTIFY scalingChanged)

public:
    explicit Viewport(QQuickItem* parent = nullptr);

    QGeoCoordinate center() const;
    /// An invalid coordinate, or the present centre, is ignored.
    void setCenter(const QGeoCoordinate& center);
    /// Degrees, 0 to 360, clockwise turn of the map.
    double rotation() const { return m_plane.getRotation(); }
    /// Wrapped into 0 to 360.
    void setRotation(double rotation);
    /// Pixels per metre; always above 0.
    double scaling() const { return m_scaling; }
    /// 0 and below are ignored.
    void setScaling(double scaling);

    /// Screen pixels, y growing downwards.
    Q_INVOKABLE QPointF projectGPSToScreen(const QGeoCoordinate& pos) const;
    Q_INVOKABLE QGeoCoordinate projectScreenToGPS(QPointF point) const;
    Q_INVOKABLE bool isInside(const QGeoCoordinate& pos) const;
    /// Conservative: true for a segment whose bounding box touches the screen.
    Q_INVOKABLE bool isSegmentInside(const QGeoCoordinate& start, const QGeoCoordinate& end) const;
    /// Conservative, as isSegmentInside; false on an item without area.
    Q_INVOKABLE bool isQuadInside(const QGeoCoordinate& a, const QGeoCoordinate& b, const QGeoCoordinate& c,
                                  const QGeoCoordinate& d) const;
    /// Degrees of longitude across the screen's horizontal middle line.
    Q_INVOKABLE double geoWidth() const;
    /// Degrees of latitude along the screen's vertical middle line.
    Q_INVOKABLE double geoHeight() const;

    /// The plane the projection runs through; its centre and rotation are the view's.
    const math_geo::ProjectionPlane& plane() const { return m_plane; }

public Q_SLOTS:
    void updateOffset();

Q_SIGNALS:
    void viewportChanged();
    void centerChanged(QGeoCoordinate center);
    void rotationChanged(double rotation);
    void scalingChanged(double scaling);

private:
    /// Screen point of a projection, in X_RIGHT_Y_FRONT pixels (not yet flipped), through
    /// the plane itself.
    math_geo::Point2D toScreenUp(const QGeoCoordinate& pos) const;
    bool intersectsItem(double left, double top, double right, double bottom) const;
    /// The projection is affine in latitude and longitude (the plane is equirectangular):
    /// its matrix is taken from the plane after each change, so that a pixel costs two
    /// multiply-adds instead of a rotation with its sine and cosine.
    void updateTransform();

    struct Affine
    {
        /// Pixels per degree of latitude and of longitude, and the centre's pixel.
        double lat_x = 0.0, lon_x = 0.0, center_x = 0.0;
        double lat_y = 0.0, lon_y = 0.0, center_y = 0.0;
    };

    double m_scaling = 1.0;
    math_geo::ProjectionPlane m_plane;
    math_geo::Point2D m_offset{0.0, 0.0, math_geo::CoordinateSystem::X_RIGHT_Y_FRONT};
    /// Degrees from the centre to screen pixels, y down.
    Affine m_to_screen;
};

} // namespace overmap_ui
