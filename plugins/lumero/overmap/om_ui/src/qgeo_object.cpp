#include <om_ui/qgeo_object.h>

#include <om_ui/if_object_manager.h>

#include <om_model/geo_object.h>

namespace overmap_ui {

QGeoObject::QGeoObject(std::shared_ptr<overmap::GeoObject> model, QObject* parent)
    : QObject(parent), m_geo_model(std::move(model))
{}

QGeoObject::~QGeoObject() = default;

bool QGeoObject::isNameUnique(QString name) const
{
    const auto* manager = dynamic_cast<const IfObjectManager*>(parent());
    if (manager == nullptr)
        return true;
    const QList<QGeoObject*> objects = manager->allGeoObjects();
    for (const QGeoObject* object : objects) {
        if (object != this && object != nullptr && object->name() == name)
            return false;
    }
    return true;
}

int QGeoObject::objectId() const
{
    return m_geo_model->getId();
}

QString QGeoObject::name() const
{
    return QString::fromStdString(m_geo_model->getName());
}

void QGeoObject::setName(const QString& name)
{
    const std::string text = name.toStdString();
    if (text == m_geo_model->getName())
        return;
    m_geo_model->setName(text);
    Q_EMIT nameChanged();
    Q_EMIT dataChanged();
}

QColor QGeoObject::color() const
{
    return QColor(QString::fromStdString(m_geo_model->getColor()));
}

void QGeoObject::setColor(const QColor& color)
{
    const std::string text = color.name().toStdString();
    if (color.name() == QColor(QString::fromStdString(m_geo_model->getColor())).name())
        return;
    m_geo_model->setColor(text);
    Q_EMIT colorChanged();
    Q_EMIT dataChanged();
}

} // namespace overmap_ui
