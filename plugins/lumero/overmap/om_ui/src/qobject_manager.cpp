#include <om_ui/qobject_manager.h>

#include <om_ui/qcalculation.h>
#include <om_ui/qcar.h>
#include <om_ui/qcone.h>
#include <om_ui/qlocator.h>
#include <om_ui/qposition_object.h>
#include <om_ui/qtrack.h>

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <math_geo/geo_bounds.h>
#include <qt_utils/qt_checked_connect.h>

#include <QQmlEngine>

#include <optional>

namespace overmap_ui {

namespace {

void keepNative(QObject* object)
{
    QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
}

} // namespace

QObjectManager::QObjectManager(math_geo::ProjectionPlane* plane, QObject* parent)
    : QObject(parent), m_position_objects(new QPositionObjectList(this)), m_tracks(new QTrackList(this)),
      m_all_objects(new QGeoObjectList(this)), m_calculations(new QCalculationList(this)),
      m_projection_plane(plane)
{}

QObjectManager::~QObjectManager()
{
    // Tracks have no parent: the manager owns every object of its lists.
    const QList<QObject*> objects = m_all_objects->list();
    m_position_objects->clearList(false);
    m_tracks->clearList(false);
    m_all_objects->clearList(false);
    qDeleteAll(objects);
}

QGeoObject* QObjectManager::addObject(QGeoObject::Type type)
{
    return addObject(static_cast<int>(type));
}

QGeoObject* QObjectManager::addObject(int type)
{
    QGeoObject* object = nullptr;
    switch (type) {
    case QGeoObject::CAR: {
        auto* car = new QCar(std::make_shared<overmap::Car>(m_projection_plane), this);
        addPositionObject(car);
        object = car;
        break;
    }
    case QGeoObject::CONE: {
        auto* cone = new QCone(std::make_shared<overmap::Cone>(m_projection_plane), this);
        addPositionObject(cone);
        object = cone;
        break;
    }
    case QGeoObject::LOCATOR: {
        auto* locator = new QLocator(std::make_shared<overmap::Locator>(m_projection_plane), this);
        addPositionObject(locator);
        object = locator;
        break;
    }
    case QGeoObject::TRACK_PATH: {
        auto* path = new QTrackPath(std::make_shared<overmap::TrackPath>(m_projection_plane), this);
        addTrack(path);
        object = path;
        break;
    }
    case QGeoObject::TRACK_LINE: {
        auto* line = new QTrackLine(std::make_shared<overmap::TrackLine>(m_projection_plane), this);
        addTrack(line);
        object = line;
        break;
    }
    default:
        return nullptr;
    }
    nameNewObject(object);
    keepNative(object);
    return object;
}

void QObjectManager::nameNewObject(QGeoObject* object)
{
    const QString base = object->name();
    const QGeoObject::Type type = object->getType();
    int number = 0;
    const QList<QObject*> objects = m_all_objects->list();
    for (const QObject* other : objects) {
        const auto* geo_object = qobject_cast<const QGeoObject*>(other);
        if (geo_object != nullptr && geo_object->getType() == type)
            ++number;
    }
    // The count leaves gaps after removals, so a name in use moves on to the next number.
    QString name = QStringLiteral("%1 %2").arg(base).arg(number);
    while (!object->isNameUnique(name))
        name = QStringLiteral("%1 %2").arg(base).arg(++number);
    object->setName(name);
}

void QObjectManager::addPositionObject(QPositionObject* object)
{
    if (object == nullptr)
        return;
    keepNative(object);
    CHECKED_CONNECT(object, &QGeoObject::dataChanged, this, &QObjectManager::dataChanged);
    m_position_objects->append(object);
    m_all_objects->append(object);
    Q_EMIT dataChanged();
}

void QObjectManager::addTrack(QTrack* object)
{
    if (object == nullptr)
        return;
    keepNative(object);
    CHECKED_CONNECT(object, &QGeoObject::dataChanged, this, &QObjectManager::dataChanged);
    m_tracks->append(object);
    m_all_objects->append(object);
    Q_EMIT dataChanged();
}

QCalculation* QObjectManager::addCalculation()
{
    auto model = std::make_shared<overmap::Calculation>();
    auto* calculation = new QCalculation(model, this, m_channel_fetcher);
    int number = model->getId();
    QString name = tr("Calculation %1").arg(number);
    while (!calculation->isNameUnique(name))
        name = tr("Calculation %1").arg(++number);
    calculation->setName(name);
    CHECKED_CONNECT(calculation, &QCalculation::dataChanged, this, &QObjectManager::dataChanged);
    m_calculations->append(calculation);
    keepNative(calculation);
    Q_EMIT dataChanged();
    return calculation;
}

void QObjectManager::addExistingCalculation(QCalculation* calculation)
{
    if (calculation == nullptr)
        return;
    keepNative(calculation);
    CHECKED_CONNECT(calculation, &QCalculation::dataChanged, this, &QObjectManager::dataChanged);
    m_calculations->append(calculation);
    Q_EMIT dataChanged();
}

bool QObjectManager::isItemRemovable(int idx) const
{
    const QGeoObject* object = idx < 0 ? nullptr : m_all_objects->at(idx);
    if (object == nullptr)
        return false;
    const overmap::GeoObject* model = object->geoModel().get();
    const QList<QObject*> calculations = m_calculations->list();
    for (const QObject* entry : calculations) {
        const auto* calculation = qobject_cast<const QCalculation*>(entry);
        if (calculation == nullptr)
            continue;
        const overmap::Calculation& description = *calculation->calculationModel();
        if (description.getFrom().get() == model || description.getTo().get() == model)
            return false;
    }
    return true;
}

bool QObjectManager::removeItem(int idx)
{
    QGeoObject* object = idx < 0 ? nullptr : m_all_objects->at(idx);
    if (object == nullptr)
        return false;
    // Dependents are let go while the object can still be found in the list: a reference
    // read from the setup is resolved through it.
    const overmap::GeoObject* model = object->geoModel().get();
    const QList<QObject*> position_objects = m_position_objects->list();
    for (QObject* entry : position_objects) {
        auto* dependent = qobject_cast<QPositionObject*>(entry);
        if (dependent != nullptr && dependent->positionModel()->getReferenceObject().get() == model)
            dependent->setReferenceObject(nullptr);
    }
    m_all_objects->takeAt(idx);
    m_position_objects->removeItem(object);
    m_tracks->removeItem(object);
    object->deleteLater();
    Q_EMIT dataChanged();
    return true;
}

bool QObjectManager::removeCalculation(int idx)
{
    QCalculation* calculation = idx < 0 ? nullptr : m_calculations->at(idx);
    if (calculation == nullptr)
        return false;
    m_calculations->takeAt(idx);
    calculation->deleteLater();
    Q_EMIT dataChanged();
    return true;
}

QGeoObject* QObjectManager::getObjectById(int id) const
{
    if (id < 0)
        return nullptr;
    const QList<QObject*> objects = m_all_objects->list();
    for (QObject* entry : objects) {
        auto* object = qobject_cast<QGeoObject*>(entry);
        if (object != nullptr && object->objectId() == id) {
            keepNative(object);
            return object;
        }
    }
    return nullptr;
}

QGeoRectangle QObjectManager::enclosingRectangle() const
{
    std::optional<math_geo::GeoBounds> bounds;
    const QList<QObject*> objects = m_all_objects->list();
    for (const QObject* entry : objects) {
        const auto* object = qobject_cast<const QGeoObject*>(entry);
        if (object == nullptr)
            continue;
        if (bounds)
            bounds->extend(object->enclosingRectangle());
        else
            bounds = object->enclosingRectangle();
    }
    if (!bounds)
        return QGeoRectangle();
    return QGeoRectangle(QGeoCoordinate(bounds->top(), bounds->left()),
                         QGeoCoordinate(bounds->bottom(), bounds->right()));
}

QGeoCoordinate QObjectManager::allObjectsCenter() const
{
    return enclosingRectangle().center();
}

void QObjectManager::setDescription(const QString& text)
{
    if (text == m_description)
        return;
    m_description = text;
    Q_EMIT descriptionChanged(m_description);
    Q_EMIT dataChanged();
}

void QObjectManager::clear()
{
    // The position objects and tracks stand in allObjects too, which deletes them.
    m_position_objects->clearList(false);
    m_tracks->clearList(false);
    m_all_objects->clearList(true);
    m_calculations->clearList(true);
    m_description.clear();
    Q_EMIT descriptionChanged(m_description);
    Q_EMIT dataChanged();
}

QPositionObject* QObjectManager::findPositionObject(const overmap::GeoObject* model) const
{
    if (model == nullptr)
        return nullptr;
    const QList<QObject*> objects = m_position_objects->list();
    for (QObject* entry : objects) {
        auto* object = qobject_cast<QPositionObject*>(entry);
        if (object != nullptr && object->geoModel().get() == model)
            return object;
    }
    return nullptr;
}

QGeoObject* QObjectManager::findGeoObject(const overmap::GeoObject* model) const
{
    if (model == nullptr)
        return nullptr;
    const QList<QObject*> objects = m_all_objects->list();
    for (QObject* entry : objects) {
        auto* object = qobject_cast<QGeoObject*>(entry);
        if (object != nullptr && object->geoModel().get() == model)
            return object;
    }
    return nullptr;
}

QList<QGeoObject*> QObjectManager::allGeoObjects() const
{
    return m_all_objects->typedList();
}

void QObjectManager::updatePositions(double time)
{
    // Runs at every display step: the walk takes a shared copy and allocates nothing.
    const QList<QObject*> objects = m_position_objects->list();
    for (QObject* object : objects)
        static_cast<QPositionObject*>(object)->updatePositionData(time);
}

void QObjectManager::updateXYPositions()
{
    const QList<QObject*> objects = m_position_objects->list();
    for (QObject* object : objects)
        static_cast<QPositionObject*>(object)->updateXYPositions();
    const QList<QObject*> tracks = m_tracks->list();
    for (QObject* track : tracks)
        static_cast<QTrack*>(track)->refresh();
}

} // namespace overmap_ui
