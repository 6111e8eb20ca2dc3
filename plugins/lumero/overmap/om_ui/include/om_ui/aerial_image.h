#pragma once

#include <QGeoCoordinate>
#include <QObject>
#include <QPointF>
#include <QString>

namespace overmap_ui {

/// The background image of a scene with its own two-point georeferencing: two image points whose
/// positions on the globe are known give the metres per image unit and the rotation from image up
/// to north. Only the path is held; loading the picture is the view's business.
class AerialImage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString imagePath READ imagePath WRITE setImagePath NOTIFY imagePathChanged)
    Q_PROPERTY(QGeoCoordinate primaryGPSPoint READ primaryGPSPoint WRITE setPrimaryGPSPoint NOTIFY
                   primaryGPSPointChanged)
    Q_PROPERTY(QGeoCoordinate secondaryGPSPoint READ secondaryGPSPoint WRITE setSecondaryGPSPoint NOTIFY
                   secondaryGPSPointChanged)
    Q_PROPERTY(
        QPointF primaryXYPoint READ primaryXYPoint WRITE setPrimaryXYPoint NOTIFY primaryXYPointChanged)
    Q_PROPERTY(QPointF secondaryXYPoint READ secondaryXYPoint WRITE setSecondaryXYPoint NOTIFY
                   secondaryXYPointChanged)
    Q_PROPERTY(double scaling READ scaling NOTIFY scalingChanged)
    Q_PROPERTY(double northRotation READ northRotation NOTIFY northRotationChanged)
    Q_PROPERTY(QPointF rotationCenter READ rotationCenter NOTIFY primaryXYPointChanged)

public:
    explicit AerialImage(QObject* parent = nullptr);

    QString imagePath() const { return m_image_path; }
    void setImagePath(const QString& image_path);

    QGeoCoordinate primaryGPSPoint() const { return m_primary_gps_point; }
    /// A point less than 0.0001 m from the present one counts as unchanged.
    void setPrimaryGPSPoint(const QGeoCoordinate& point);
    QGeoCoordinate secondaryGPSPoint() const { return m_secondary_gps_point; }
    void setSecondaryGPSPoint(const QGeoCoordinate& point);

    /// Image coordinates, y growing downwards.
    QPointF primaryXYPoint() const { return m_primary_xy_point; }
    void setPrimaryXYPoint(QPointF point);
    QPointF secondaryXYPoint() const { return m_secondary_xy_point; }
    void setSecondaryXYPoint(QPointF point);

    /// Metres per image unit; 1.0 while either pair of points coincides.
    double scaling() const { return m_scaling; }
    /// Degrees by which the image is turned so that its picture points north.
    double northRotation() const { return m_north_rotation; }
    /// The image turns about its primary point.
    QPointF rotationCenter() const { return m_primary_xy_point; }

    /// Stores all four points without comparing them, then derives scaling and north rotation once.
    Q_INVOKABLE void setPoints(const QGeoCoordinate& primary_gps_point, QPointF primary_xy_point,
                               const QGeoCoordinate& secondary_gps_point, QPointF secondary_xy_point);
    /// Back to no image and all points at 0, 0. Emits no northRotationChanged, although the
    /// rotation goes back to 0.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    /// Any change of the image or of its georeferencing.
    void imageChanged();
    void imagePathChanged();
    void primaryGPSPointChanged();
    void secondaryGPSPointChanged();
    void primaryXYPointChanged();
    void secondaryXYPointChanged();
    void scalingChanged();
    void northRotationChanged();

private:
    /// Metres between the GPS points over image units between the XY points.
    void updateScaling();
    /// Rhumb-line bearing of the GPS points less the image direction of the XY points.
    void updateNorthRotation();
    /// Both derived values, then imageChanged: what follows any change of a point.
    void pointsChanged();

    QString m_image_path;
    QGeoCoordinate m_primary_gps_point{0.0, 0.0};
    QGeoCoordinate m_secondary_gps_point{0.0, 0.0};
    QPointF m_primary_xy_point{0.0, 0.0};
    QPointF m_secondary_xy_point{0.0, 0.0};
    double m_scaling = 1.0;
    double m_north_rotation = 0.0;
};

} // namespace overmap_ui
