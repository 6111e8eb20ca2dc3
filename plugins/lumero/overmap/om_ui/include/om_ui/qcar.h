#pragma once

#include <om_ui/qposition_object.h>

#include <QPointF>
#include <QSizeF>
#include <QUrl>

namespace overmap {
class Car;
}

namespace overmap_ui {

/// The Qt face of a car: its contour, its antenna offset and its vehicle files.
class QCar : public QPositionObject
{
    Q_OBJECT
    Q_PROPERTY(QPointF gpsOffset READ gpsOffset WRITE setGpsOffset NOTIFY gpsOffsetChanged)
    Q_PROPERTY(int contourPointCount READ getContourPointCount NOTIFY contourChanged)

public:
    QCar(std::shared_ptr<overmap::Car> model, QObject* parent);
    ~QCar() override;

    Type getType() const override { return CAR; }
    /// The centre of the contour, which the antenna offset separates from the position.
    QGeoCoordinate centerPosition() const override;

    Q_INVOKABLE bool loadFromXML(QUrl filename);
    Q_INVOKABLE bool saveToXML(QUrl filename);
    Q_INVOKABLE int getContourPointCount() const;
    /// The contour point in metres times @p scaling; (0, 0) for a bad index.
    Q_INVOKABLE QPointF getContourPoint(int idx, double scaling) const;
    Q_INVOKABLE QPointF getContourPoint(int idx) const { return getContourPoint(idx, 1.0); }
    Q_INVOKABLE bool loadContour(QUrl filename);
    Q_INVOKABLE void resetContour();
    /// Stretches the default rectangle to @p size (width across, height along); a drawn
    /// contour keeps its shape and the result is false.
    Q_INVOKABLE bool setSize(QSizeF size);

    QPointF gpsOffset() const;
    void setGpsOffset(QPointF offset);

    const std::shared_ptr<overmap::Car>& carModel() const { return m_car; }

Q_SIGNALS:
    void gpsOffsetChanged(QPointF gpsOffset);
    void contourChanged();

private:
    /// Contour, bounds and size changed together.
    void emitContourChange();

    std::shared_ptr<overmap::Car> m_car;
};

} // namespace overmap_ui
