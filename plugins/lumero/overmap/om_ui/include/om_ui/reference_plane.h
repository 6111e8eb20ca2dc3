#pragma once

#include <om_ui/aerial_image.h>

#include <math_geo/projection_plane.h>

#include <QGeoCoordinate>
#include <QObject>
#include <QPointF>
#include <QString>

namespace overmap_ui {

/// The one projection plane of a scene and what defines it: origin and rotation given directly,
/// or two points known both on the globe and in the plane. It also keeps the initial view and the
/// background image. planeChanged is how the owner learns that the setup needs saving.
class ReferencePlane : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QGeoCoordinate planeOrigin READ planeOrigin WRITE setPlaneOrigin NOTIFY planeOriginChanged)
    Q_PROPERTY(double planeRotation READ planeRotation WRITE setPlaneRotation NOTIFY planeRotationChanged)
    Q_PROPERTY(QGeoCoordinate primaryGPSPoint READ primaryGPSPoint WRITE setPrimaryGPSPoint NOTIFY
                   primaryGPSPointChanged)
    Q_PROPERTY(QGeoCoordinate secondaryGPSPoint READ secondaryGPSPoint WRITE setSecondaryGPSPoint NOTIFY
                   secondaryGPSPointChanged)
    Q_PROPERTY(
        QPointF primaryXYPoint READ primaryXYPoint WRITE setPrimaryXYPoint NOTIFY primaryXYPointChanged)
    Q_PROPERTY(QPointF secondaryXYPoint READ secondaryXYPoint WRITE setSecondaryXYPoint NOTIFY
                   secondaryXYPointChanged)
    Q_PROPERTY(bool usePointsDefinition READ usePointsDefinition WRITE setUsePointsDefinition NOTIFY
                   usePointsDefinitionChanged)
    Q_PROPERTY(overmap_ui::AerialImage* backgroundImage READ backgroundImage WRITE setBackgroundImage NOTIFY
                   backgroundImageChanged)
    Q_PROPERTY(QGeoCoordinate viewCenter READ viewCenter WRITE setViewCenter NOTIFY viewCenterChanged)
    Q_PROPERTY(double viewRotation READ viewRotation WRITE setViewRotation NOTIFY viewRotationChanged)
    Q_PROPERTY(double viewScaling READ viewScaling WRITE setViewScaling NOTIFY viewScalingChanged)
    Q_PROPERTY(int planeCoordinateSystem READ planeCoordinateSystem CONSTANT)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)

public:
    /// Owns a new, empty background image whose changes count as changes of the plane.
    explicit ReferencePlane(QObject* parent = nullptr);

    /// The plane's centre, which maps to (0, 0).
    QGeoCoordinate planeOrigin() const;
    void setPlaneOrigin(const QGeoCoordinate& origin);
    /// @return degrees, as the plane stores them
    double planeRotation() const { return m_plane.getRotation(); }
    void setPlaneRotation(double rotation);

    QGeoCoordinate primaryGPSPoint() const { return m_primary_gps_point; }
    void setPrimaryGPSPoint(const QGeoCoordinate& point);
    QGeoCoordinate secondaryGPSPoint() const { return m_secondary_gps_point; }
    void setSecondaryGPSPoint(const QGeoCoordinate& point);
    /// Metres in the plane's coordinate system.
    QPointF primaryXYPoint() const { return m_primary_xy_point; }
    void setPrimaryXYPoint(QPointF point);
    QPointF secondaryXYPoint() const { return m_secondary_xy_point; }
    void setSecondaryXYPoint(QPointF point);
    /// True when origin and rotation follow from the four points.
    bool usePointsDefinition() const { return m_use_points_definition; }
    void setUsePointsDefinition(bool use_points_definition);

    AerialImage* backgroundImage() const { return m_background_image; }
    /// Takes ownership of @p image and deletes the one held before. Unlike the constructor's
    /// image, a replacement's changes do not reach planeChanged.
    void setBackgroundImage(AerialImage* image);

    QGeoCoordinate viewCenter() const { return m_view_center; }
    void setViewCenter(const QGeoCoordinate& center);
    /// @return degrees
    double viewRotation() const { return m_view_rotation; }
    void setViewRotation(double rotation);
    double viewScaling() const { return m_view_scaling; }
    void setViewScaling(double scaling);

    /// The math_geo::CoordinateSystem of the plane's points, as a number.
    int planeCoordinateSystem() const { return static_cast<int>(m_plane.getXYCoordinateSystem()); }

    QString description() const { return m_description; }
    void setDescription(const QString& description);

    /// The plane itself, at one address for the object's whole life: the scene's objects keep it.
    math_geo::ProjectionPlane* projectionPlane() { return &m_plane; }
    const math_geo::ProjectionPlane* projectionPlane() const { return &m_plane; }

    /// Back to the plane at 0/0 and an empty image; the XY points keep their values.
    Q_INVOKABLE void clear();
    /// Fits origin and rotation to the four points when the points definition is in use and
    /// neither pair coincides; otherwise leaves the plane alone.
    Q_INVOKABLE void updatePlaneFromPoints();

    /// The point (@p x, @p y), metres in the plane's coordinate system, on the globe.
    Q_INVOKABLE QGeoCoordinate projectToGPS(double x, double y) const;
    Q_INVOKABLE QGeoCoordinate projectToGPS(QPointF point) const;
    /// @p pos in metres in the plane's coordinate system.
    Q_INVOKABLE QPointF projectToXY(const QGeoCoordinate& pos) const;

Q_SIGNALS:
    /// Anything that belongs in the setup has changed.
    void planeChanged();
    void planeOriginChanged();
    void planeRotationChanged();
    void primaryGPSPointChanged();
    void secondaryGPSPointChanged();
    void primaryXYPointChanged();
    void secondaryXYPointChanged();
    void usePointsDefinitionChanged();
    void backgroundImageChanged();
    void viewCenterChanged();
    void viewRotationChanged();
    void viewScalingChanged();
    void descriptionChanged(QString description);

private:
    math_geo::ProjectionPlane m_plane;
    QGeoCoordinate m_primary_gps_point{0.0, 0.0};
    QGeoCoordinate m_secondary_gps_point{0.0, 0.0};
    QPointF m_primary_xy_point{0.0, 0.0};
    QPointF m_secondary_xy_point{0.0, 0.0};
    bool m_use_points_definition = false;
    AerialImage* m_background_image = nullptr;
    QGeoCoordinate m_view_center;
    double m_view_rotation = 0.0;
    double m_view_scaling = 1.0;
    QString m_description;
};

} // namespace overmap_ui
