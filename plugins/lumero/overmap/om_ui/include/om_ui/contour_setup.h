#pragma once

#include <om_ui/qpoi.h>

#include <lum_utils/image_store.h>

#include <QObject>
#include <QPointF>
#include <QString>
#include <QUrl>

#include <vector>

namespace overmap_ui {

/// The model of the vehicle editor: two axes give a picture a metric scale, a symmetric
/// contour outlines the car, and named points mark where measurements attach. Axis
/// points are picture pixels; contour points and POIs are vehicle metres, x along the
/// car (x = carLength / 2 is the nose), y across it.
class ContourSetup : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double carLength READ carLength WRITE setCarLength NOTIFY carLengthChanged)
    Q_PROPERTY(double carWidth READ carWidth WRITE setCarWidth NOTIFY carWidthChanged)
    Q_PROPERTY(QPointF mainAxisPt1 READ mainAxisPt1 WRITE setMainAxisPt1 NOTIFY mainAxisPt1Changed)
    Q_PROPERTY(QPointF mainAxisPt2 READ mainAxisPt2 WRITE setMainAxisPt2 NOTIFY mainAxisPt2Changed)
    Q_PROPERTY(QPointF minorAxisPt1 READ minorAxisPt1 WRITE setMinorAxisPt1 NOTIFY minorAxisPt1Changed)
    Q_PROPERTY(QPointF minorAxisPt2 READ minorAxisPt2 WRITE setMinorAxisPt2 NOTIFY minorAxisPt2Changed)
    Q_PROPERTY(int contourPointCount READ contourPointCount NOTIFY contourPointCountChanged)
    Q_PROPERTY(double contourLength READ contourLength NOTIFY contourLengthChanged)
    Q_PROPERTY(double contourWidth READ contourWidth NOTIFY contourWidthChanged)
    Q_PROPERTY(QUrl imageFile READ imageFile WRITE setImageFile NOTIFY imageFileChanged)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)
    Q_PROPERTY(overmap_ui::QPoiList* poiList READ poiList CONSTANT)
    Q_PROPERTY(double physicalXScale READ physicalXScale NOTIFY physicalScaleChanged)
    Q_PROPERTY(double physicalYScale READ physicalYScale NOTIFY physicalScaleChanged)
    Q_PROPERTY(lum_utils::ImageStore* imageStore READ imageStore WRITE setImageStore NOTIFY imageStoreChanged)
    Q_PROPERTY(QString vehicleFile READ vehicleFile NOTIFY vehicleFileChanged)

public:
    explicit ContourSetup(QObject* parent = nullptr);
    ~ContourSetup() override;

    /// Writes the vehicle document with the axes and, if the store has it, the picture.
    Q_INVOKABLE bool saveVehicle(QUrl url);
    /// Reads a vehicle document; false, with the setup as it was, on any failure.
    Q_INVOKABLE bool loadVehicle(QUrl url);
    Q_INVOKABLE void reset();
    /// (0, 0) for a bad index.
    Q_INVOKABLE QPointF getContourPoint(int idx) const;
    Q_INVOKABLE void setContourPoint(int idx, QPointF pt);
    /// Moves the point and its mirror partner with it.
    Q_INVOKABLE void setMirrorContourPoints(int idx, QPointF pt);
    Q_INVOKABLE void appendMirrorContourPoints();
    /// Inserts @p pt and its mirror at the nearest contour segment; the insertion index,
    /// or -1 when there is no segment.
    Q_INVOKABLE int insertMirrorContourPoints(QPointF pt);
    Q_INVOKABLE void insertMirrorContourPoints(int idx, QPointF pt);
    Q_INVOKABLE void deleteContourMirrorPoints(int idx);
    /// Keeps the nose and the tail.
    Q_INVOKABLE void clearContourPoints();
    Q_INVOKABLE void resetContourPoints();
    /// Appends the seven points of the frontal test grid on the contour's nose.
    Q_INVOKABLE void createNCAPPois();

    double carLength() const { return m_car_length; }
    void setCarLength(double value);
    double carWidth() const { return m_car_width; }
    void setCarWidth(double value);
    QPointF mainAxisPt1() const { return m_main_axis_pt1; }
    void setMainAxisPt1(QPointF pt);
    QPointF mainAxisPt2() const { return m_main_axis_pt2; }
    void setMainAxisPt2(QPointF pt);
    QPointF minorAxisPt1() const { return m_minor_axis_pt1; }
    void setMinorAxisPt1(QPointF pt);
    QPointF minorAxisPt2() const { return m_minor_axis_pt2; }
    void setMinorAxisPt2(QPointF pt);
    int contourPointCount() const { return static_cast<int>(m_contour.size()); }
    double contourLength() const;
    double contourWidth() const;
    QUrl imageFile() const { return m_image_file; }
    void setImageFile(const QUrl& url);
    QString description() const { return m_description; }
    void setDescription(const QString& text);
    QPoiList* poiList() { return &m_poi_list; }
    double physicalXScale() const { return m_physical_x_scale; }
    double physicalYScale() const { return m_physical_y_scale; }
    lum_utils::ImageStore* imageStore() const { return m_image_store; }
    void setImageStore(lum_utils::ImageStore* store);
    QString vehicleFile() const { return m_vehicle_file; }

    /// The index of the mirror partner of point @p idx, -1 for none.
    int mirrorPartner(int idx) const;

Q_SIGNALS:
    void carLengthChanged();
    void carWidthChanged();
    void descriptionChanged();
    void mainAxisPt1Changed();
    void mainAxisPt2Changed();
    void minorAxisPt1Changed();
    void minorAxisPt2Changed();
    void physicalScaleChanged();
    void contourPointCountChanged();
    void contourPointChanged(int idx);
    void contourLengthChanged();
    void contourWidthChanged();
    void imageFileChanged();
    void imageStoreChanged();
    void vehicleFileChanged();

private Q_SLOTS:
    void updatePhysicalScale();

private:
    void emitShapeChange();
    void emitPointChange(int idx);
    /// Lays the minor axis through the main axis' midpoint, at right angles, @p length long.
    void rebuildMinorAxis(double length);
    void setMinorAxisPoint(QPointF pt);
    /// The store's key of a picture.
    static QString imageKey(const QUrl& url);

    double m_car_length = 3.0;
    double m_car_width = 1.5;
    QPointF m_main_axis_pt1{100.0, 20.0};
    QPointF m_main_axis_pt2{100.0, 320.0};
    QPointF m_minor_axis_pt1{40.0, 170.0};
    QPointF m_minor_axis_pt2{160.0, 170.0};
    std::vector<QPointF> m_contour;
    QUrl m_image_file;
    QString m_description;
    QPoiList m_poi_list;
    double m_physical_x_scale = 0.0;
    double m_physical_y_scale = 0.0;
    lum_utils::ImageStore* m_image_store = nullptr;
    QString m_vehicle_file;
};

} // namespace overmap_ui
