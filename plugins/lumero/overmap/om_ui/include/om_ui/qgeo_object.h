#pragma once

#include <math_geo/geo_bounds.h>

#include <QColor>
#include <QObject>
#include <QSizeF>
#include <QString>

#include <memory>

namespace overmap {
class GeoObject;
}

namespace overmap_ui {

/// The Qt face of a scene object. Every change made through a setter ends in
/// dataChanged, which the model turns into a write of the setup.
class QGeoObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Type type READ getType CONSTANT)
    Q_PROPERTY(int objectId READ objectId CONSTANT)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QSizeF size READ size NOTIFY sizeChanged)
    Q_PROPERTY(bool userMovable READ isUserMovable NOTIFY userMovableChanged)

public:
    enum Type
    {
        CAR = 0,
        CONE = 1,
        LOCATOR = 2,
        TRACK_PATH = 3,
        TRACK_LINE = 4
    };
    Q_ENUM(Type)

    QGeoObject(std::shared_ptr<overmap::GeoObject> model, QObject* parent);
    ~QGeoObject() override;

    Q_INVOKABLE virtual Type getType() const = 0;
    virtual double width() const = 0;
    virtual double length() const = 0;
    /// The object's extent on the globe, heading not considered.
    virtual math_geo::GeoBounds enclosingRectangle() const = 0;
    virtual bool isUserMovable() const { return false; }

    /// False when another object of the manager already has @p name; the object's own
    /// present name does not count against it.
    Q_INVOKABLE bool isNameUnique(QString name) const;

    int objectId() const;
    QString name() const;
    void setName(const QString& name);
    QColor color() const;
    /// The alpha value is not kept.
    void setColor(const QColor& color);
    QSizeF size() const { return QSizeF(width(), length()); }

    const std::shared_ptr<overmap::GeoObject>& geoModel() const { return m_geo_model; }

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();
    void dataChanged();
    void userMovableChanged();

private:
    std::shared_ptr<overmap::GeoObject> m_geo_model;
};

} // namespace overmap_ui
