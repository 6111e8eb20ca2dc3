#include <om_ui/qposition_object.h>

#include <om_ui/if_object_manager.h>

#include "om_ui_log.h"

#include <om_model/coordinate_defaults.h>
#include <om_model/position_object.h>

#include <math_geo/projection_plane.h>
#include <qchannel/qchannel.h>
#include <qt_utils/qt_checked_connect.h>
#include <uni_base/uni_log.h>

#include <QMetaMethod>

#include <algorithm>
#include <array>
#include <cmath>

namespace overmap_ui {

using lum::qchannel::QChannel;
using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {
constexpr double VALUE_TOLERANCE = 1e-12;

QGeoCoordinate toCoordinate(const GeoPosition& position)
{
    return QGeoCoordinate(position.latitude, position.longitude);
}

/// The model's system for a system of the views; false for a value outside the table.
bool toModelSystem(QPositionObject::CoordinateSystem system, math_geo::CoordinateSystem& out)
{
    switch (system) {
    case QPositionObject::DIN_70000:
        out = math_geo::CoordinateSystem::DIN70000;
        return true;
    case QPositionObject::SAE:
        out = math_geo::CoordinateSystem::SAE;
        return true;
    case QPositionObject::X_FRONT_Y_LEFT:
        out = math_geo::CoordinateSystem::X_FRONT_Y_LEFT;
        return true;
    }
    return false;
}
} // namespace

QPositionObject::QPositionObject(std::shared_ptr<overmap::PositionObject> model, QObject* parent)
    : QGeoObject(model, parent), m_model(std::move(model))
{
    fillPoiList();
    Q_EMIT poiListChanged();

    // Every emission of positionChanged is followed by centerPositionChanged at its side,
    // which costs the time step less than a connection of the two.

    CHECKED_CONNECT(&m_poi_list, &QObjectListModel::objectAdded, this, &QPositionObject::onPoiAdded);
    CHECKED_CONNECT(&m_poi_list, &QObjectListModel::countChanged, this, &QPositionObject::poiListChanged);
    CHECKED_CONNECT(&m_poi_list, &QObjectListModel::countChanged, this, &QGeoObject::dataChanged);
    CHECKED_CONNECT(this, &QPositionObject::latitudeChannelChanged, this,
                    &QPositionObject::checkGPSConnection);
    CHECKED_CONNECT(this, &QPositionObject::longitudeChannelChanged, this,
                    &QPositionObject::checkGPSConnection);
    CHECKED_CONNECT(this, &QPositionObject::headingChannelChanged, this,
                    &QPositionObject::checkGPSConnection);

    m_gps_connected = m_model->hasPositionChannels();
    if (m_gps_connected)
        Q_EMIT isGPSConnectedChanged();
}

QPositionObject::~QPositionObject() = default;

double QPositionObject::width() const
{
    return m_model->getWidth();
}

double QPositionObject::length() const
{
    return m_model->getLength();
}

math_geo::GeoBounds QPositionObject::enclosingRectangle() const
{
    const math_geo::ProjectionPlane plane(m_model->getGeoPosition(), 0.0,
                                          math_geo::CoordinateSystem::X_RIGHT_Y_FRONT);
    const double half_width = m_model->getWidth() / 2.0;
    const double half_length = m_model->getLength() / 2.0;
    return math_geo::GeoBounds(plane.toGeoPosition(Point2D(-half_width, half_length)),
                               plane.toGeoPosition(Point2D(half_width, -half_length)));
}

bool QPositionObject::isUserMovable() const
{
    return !m_model->hasPositionChannels() && !m_model->getReferenceObject();
}

QGeoCoordinate QPositionObject::centerPosition() const
{
    return toCoordinate(m_model->getGeoPosition());
}

namespace {
/// The signals of a time step, in the order in which it emits them.
using StepSignal = void (QPositionObject::*)();
constexpr std::array<StepSignal, 7> STEP_SIGNALS{
    &QPositionObject::latitudeChanged,    &QPositionObject::longitudeChanged,
    &QPositionObject::positionChanged,    &QPositionObject::centerPositionChanged,
    &QPositionObject::xyPositionChanged,  &QPositionObject::headingChanged,
    &QPositionObject::inputHeadingChanged};

static_assert(STEP_SIGNALS.size() == 7, "one listener count for each signal of a step");

const std::array<QMetaMethod, STEP_SIGNALS.size()>& stepSignalMethods()
{
    static const std::array<QMetaMethod, STEP_SIGNALS.size()> methods = [] {
        std::array<QMetaMethod, STEP_SIGNALS.size()> out;
        for (std::size_t i = 0; i < STEP_SIGNALS.size(); ++i)
            out[i] = QMetaMethod::fromSignal(STEP_SIGNALS[i]);
        return out;
    }();
    return methods;
}
} // namespace

void QPositionObject::updatePositionData(double time)
{
    m_model->update(time);
    updateValidity();
    // The model alone knows whether anything moved, so the listeners are told at each step.
    for (std::size_t i = 0; i < STEP_SIGNALS.size(); ++i)
        if (m_step_listeners[i].load(std::memory_order_relaxed) > 0)
            (this->*STEP_SIGNALS[i])();
}

void QPositionObject::connectNotify(const QMetaMethod& signal)
{
    QGeoObject::connectNotify(signal);
    const auto& methods = stepSignalMethods();
    const auto found = std::find(methods.begin(), methods.end(), signal);
    if (found != methods.end())
        m_step_listeners[static_cast<std::size_t>(found - methods.begin())].fetch_add(
            1, std::memory_order_relaxed);
}

void QPositionObject::disconnectNotify(const QMetaMethod& signal)
{
    QGeoObject::disconnectNotify(signal);
    // Qt may hold its own lock here, so nothing of QObject is asked. A disconnection from
    // all signals names none and counts nothing down: a count too high costs emissions only.
    const auto& methods = stepSignalMethods();
    const auto found = std::find(methods.begin(), methods.end(), signal);
    if (found == methods.end())
        return;
    std::atomic<int>& count = m_step_listeners[static_cast<std::size_t>(found - methods.begin())];
    int listeners = count.load(std::memory_order_relaxed);
    while (listeners > 0 &&
           !count.compare_exchange_weak(listeners, listeners - 1, std::memory_order_relaxed)) {
    }
}

void QPositionObject::emitPlaceChanged()
{
    Q_EMIT latitudeChanged();
    Q_EMIT longitudeChanged();
    Q_EMIT positionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT xyPositionChanged();
}

void QPositionObject::updateValidity()
{
    const bool valid = m_model->getGeoPosition().valid();
    if (valid == m_valid_position)
        return;
    m_valid_position = valid;
    Q_EMIT validPositionChanged();
}

void QPositionObject::checkGPSConnection()
{
    const bool connected = m_model->hasPositionChannels();
    if (connected == m_gps_connected)
        return;
    m_gps_connected = connected;
    Q_EMIT isGPSConnectedChanged();
}

void QPositionObject::setLatitudeChannel(QChannel* channel)
{
    bindPositionChannel(Axis::LATITUDE, channel);
}

void QPositionObject::setLongitudeChannel(QChannel* channel)
{
    bindPositionChannel(Axis::LONGITUDE, channel);
}

void QPositionObject::bindPositionChannel(Axis axis, QChannel* channel)
{
    QPointer<QChannel>& bound = axis == Axis::LATITUDE ? m_latitude_channel : m_longitude_channel;
    if (bound == channel)
        return;
    bound = channel;
    // A channel of another kind than scalar is bound as none.
    auto scalar = channel != nullptr ? channel->ferrinScalarChannel() : nullptr;
    if (axis == Axis::LATITUDE)
        m_model->setLatitudeChannel(std::move(scalar));
    else
        m_model->setLongitudeChannel(std::move(scalar));
    updateValidity();
    if (axis == Axis::LATITUDE)
        Q_EMIT latitudeChannelChanged();
    else
        Q_EMIT longitudeChannelChanged();
    Q_EMIT dataChanged();
    Q_EMIT userMovableChanged();
    Q_EMIT useXYCoordinatesChanged();
}

void QPositionObject::setHeadingChannel(QChannel* channel)
{
    if (m_heading_channel == channel)
        return;
    m_heading_channel = channel;
    m_model->setHeadingChannel(channel != nullptr ? channel->ferrinScalarChannel() : nullptr);
    Q_EMIT headingChannelChanged();
    Q_EMIT dataChanged();
}

void QPositionObject::dropPositionChannels()
{
    setLatitudeChannel(nullptr);
    setLongitudeChannel(nullptr);
}

void QPositionObject::dropHeadingChannel()
{
    setHeadingChannel(nullptr);
}

double QPositionObject::latitude() const
{
    return m_model->getGeoPosition().latitude;
}

double QPositionObject::longitude() const
{
    return m_model->getGeoPosition().longitude;
}

double QPositionObject::heading() const
{
    return m_model->effectiveHeading();
}

double QPositionObject::inputHeading() const
{
    return m_model->getHeading();
}

QGeoCoordinate QPositionObject::position() const
{
    return toCoordinate(m_model->getGeoPosition());
}

QPointF QPositionObject::xyPosition() const
{
    const Point2D& point = m_model->getXYPosition();
    return QPointF(point.x, point.y);
}

bool QPositionObject::useXYCoordinates() const
{
    return m_model->isXYPosition();
}

void QPositionObject::clearReference()
{
    if (m_reference_object)
        disconnect(m_reference_object, nullptr, this, nullptr);
    m_reference_object = nullptr;
    if (m_model->getReferenceObject())
        m_model->setReferenceObject(nullptr);
}

void QPositionObject::setPosition(const QGeoCoordinate& coordinate)
{
    const GeoPosition wanted(coordinate.latitude(), coordinate.longitude());
    if (wanted == m_model->getGeoPosition())
        return;
    clearReference();
    dropPositionChannels();
    m_model->setGeoPosition(wanted);
    updateValidity();
    Q_EMIT referenceObjectChanged();
    emitPlaceChanged();
    Q_EMIT useXYCoordinatesChanged();
    Q_EMIT dataChanged();
}

math_geo::CoordinateSystem QPositionObject::xySystem() const
{
    if (const auto& reference = m_model->getReferenceObject())
        return reference->localCoordinateSystem();
    if (const math_geo::ProjectionPlane* plane = m_model->getPlane())
        return plane->getXYCoordinateSystem();
    return overmap::defaultPlaneCoordinateSystem();
}

void QPositionObject::setXYPosition(QPointF point)
{
    const Point2D wanted(point.x(), point.y(), xySystem());
    if (wanted == m_model->getXYPosition())
        return;
    dropPositionChannels();
    m_model->setXYPosition(wanted);
    updateValidity();
    emitPlaceChanged();
    Q_EMIT useXYCoordinatesChanged();
    Q_EMIT dataChanged();
}

void QPositionObject::setLatitude(double value)
{
    setGeoCoordinate(&GeoPosition::latitude, value, &QPositionObject::latitudeChanged);
}

void QPositionObject::setLongitude(double value)
{
    setGeoCoordinate(&GeoPosition::longitude, value, &QPositionObject::longitudeChanged);
}

void QPositionObject::setGeoCoordinate(double GeoPosition::*coordinate, double value,
                                       void (QPositionObject::*changed)())
{
    GeoPosition position = m_model->getGeoPosition();
    if (std::fabs(value - position.*coordinate) <= VALUE_TOLERANCE)
        return;
    position.*coordinate = value;
    m_model->setGeoPosition(position);
    updateValidity();
    Q_EMIT(this->*changed)();
    Q_EMIT positionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT xyPositionChanged();
    Q_EMIT useXYCoordinatesChanged();
    Q_EMIT dataChanged();
}

void QPositionObject::setInputHeading(double value)
{
    if (std::fabs(value - m_model->getHeading()) <= VALUE_TOLERANCE)
        return;
    dropHeadingChannel();
    m_model->setHeading(value);
    Q_EMIT inputHeadingChanged();
    Q_EMIT headingChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT dataChanged();
}

void QPositionObject::setInputHeadingFromCoord(double heading, CoordinateSystem object_coord_sys)
{
    math_geo::CoordinateSystem system = overmap::defaultObjectCoordinateSystem();
    toModelSystem(object_coord_sys, system);
    dropHeadingChannel();
    m_model->setHeadingFromCoord(heading, system);
    Q_EMIT inputHeadingChanged();
    Q_EMIT headingChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT dataChanged();
}

void QPositionObject::setUseXYCoordinates(bool use)
{
    if (use == m_model->isXYPosition())
        return;
    if (use)
        m_model->setXYPosition(m_model->getXYPosition());
    else
        m_model->setGeoPosition(m_model->getGeoPosition());
    updateValidity();
    emitPlaceChanged();
    Q_EMIT useXYCoordinatesChanged();
    Q_EMIT dataChanged();
}

QPositionObject::CoordinateSystem QPositionObject::objectCoordinateSystem() const
{
    const math_geo::CoordinateSystem system = m_model->localCoordinateSystem();
    switch (system) {
    case math_geo::CoordinateSystem::DIN70000:
        return DIN_70000;
    case math_geo::CoordinateSystem::SAE:
        return SAE;
    case math_geo::CoordinateSystem::X_FRONT_Y_LEFT:
        return X_FRONT_Y_LEFT;
    default:
        break;
    }
    UNI_LOG(detail::LOG_CHANNEL, SEV_DETAIL)
        << "Unsupported coordinate system for QPositionObject " << static_cast<int>(system);
    return DIN_70000;
}

void QPositionObject::setObjectCoordinateSystem(CoordinateSystem system)
{
    if (system == objectCoordinateSystem())
        return;
    math_geo::CoordinateSystem model_system = overmap::defaultObjectCoordinateSystem();
    toModelSystem(system, model_system);
    m_model->setCoordinateSystem(model_system);
    Q_EMIT dataChanged();
    Q_EMIT objectCoordinateSystemChanged();
    Q_EMIT positionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT xyPositionChanged();
    Q_EMIT latitudeChanged();
    Q_EMIT longitudeChanged();
    Q_EMIT headingChanged();
    Q_EMIT inputHeadingChanged();
}

QPositionObject* QPositionObject::referenceObject() const
{
    const auto& reference = m_model->getReferenceObject();
    if (!reference)
        return nullptr;
    if (m_reference_object && m_reference_object->m_model == reference)
        return m_reference_object;
    // A reference read from the setup: its display object is found through the manager.
    if (const auto* manager = dynamic_cast<const IfObjectManager*>(parent())) {
        const QList<QGeoObject*> objects = manager->allGeoObjects();
        for (QGeoObject* object : objects) {
            auto* candidate = qobject_cast<QPositionObject*>(object);
            if (candidate != nullptr && candidate->m_model == reference)
                return candidate;
        }
    }
    return nullptr;
}

void QPositionObject::setReferenceObject(QPositionObject* object)
{
    if (object == this || object == referenceObject())
        return;
    // The model refuses a cycle without a word; so does its face.
    if (object != nullptr &&
        (object->m_model->getReferenceObject() == m_model || object->m_model->dependsOn(m_model.get())))
        return;
    if (QPositionObject* old = referenceObject())
        disconnect(old, nullptr, this, nullptr);
    if (m_reference_object)
        disconnect(m_reference_object, nullptr, this, nullptr);
    m_model->setReferenceObject(object != nullptr ? object->m_model : nullptr);
    m_reference_object = object;
    if (object != nullptr) {
        CHECKED_CONNECT(object, &QPositionObject::positionChanged, this,
                        &QPositionObject::updateFromReferenceObject);
        CHECKED_CONNECT(object, &QPositionObject::headingChanged, this,
                        &QPositionObject::updateFromReferenceObject);
    }
    updateValidity();
    Q_EMIT referenceObjectChanged();
    emitPlaceChanged();
    Q_EMIT useXYCoordinatesChanged();
    Q_EMIT headingChanged();
    Q_EMIT inputHeadingChanged();
    Q_EMIT dataChanged();
    Q_EMIT userMovableChanged();
}

void QPositionObject::updateFromReferenceObject()
{
    if (!m_model->getReferenceObject())
        return;
    m_model->setXYPosition(m_model->getXYPosition());
    updateValidity();
    Q_EMIT latitudeChanged();
    Q_EMIT longitudeChanged();
    Q_EMIT positionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT headingChanged();
    Q_EMIT inputHeadingChanged();
}

void QPositionObject::updateXYPositions()
{
    if (!m_model->isXYPosition() || m_model->getReferenceObject())
        return;
    m_model->setXYPosition(m_model->getXYPosition());
    updateValidity();
    Q_EMIT dataChanged();
    Q_EMIT positionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT latitudeChanged();
    Q_EMIT longitudeChanged();
    Q_EMIT headingChanged();
    Q_EMIT inputHeadingChanged();
}

QGeoCoordinate QPositionObject::getPoiGeoPosition(int poi_idx) const
{
    if (poi_idx < 0 || static_cast<std::size_t>(poi_idx) >= m_model->poiCount())
        return QGeoCoordinate();
    return toCoordinate(m_model->poiPosition(static_cast<std::size_t>(poi_idx)));
}

void QPositionObject::fillPoiList()
{
    for (const overmap::Poi& poi : m_model->getPois())
        m_poi_list.appendPoi(QPointF(poi.position.x, poi.position.y), QString::fromStdString(poi.name));
}

void QPositionObject::refreshPois()
{
    m_poi_list.clearList(true);
    fillPoiList();
    Q_EMIT poiListChanged();

    // Every emission of positionChanged is followed by centerPositionChanged at its side,
    // which costs the time step less than a connection of the two.
}

void QPositionObject::syncModelPois()
{
    m_model->resetPois();
    const math_geo::CoordinateSystem system = m_model->localCoordinateSystem();
    const QList<QPOI*> pois = m_poi_list.typedList();
    for (int i = 0; i < pois.size(); ++i) {
        const QPointF offset = pois[i]->position();
        const overmap::Poi poi{Point2D(offset.x(), offset.y(), system), pois[i]->name().toStdString()};
        // The built-in centre of the model is replaced by a first POI at the centre.
        if (i == 0 && offset.x() == 0.0 && offset.y() == 0.0)
            m_model->setPoi(0, poi);
        else
            m_model->addPoi(poi);
    }
}

void QPositionObject::onPoiAdded(QObject* object)
{
    if (auto* poi = qobject_cast<QPOI*>(object)) {
        CHECKED_CONNECT(poi, &QPOI::positionChanged, this, &QGeoObject::dataChanged);
        CHECKED_CONNECT(poi, &QPOI::nameChanged, this, &QGeoObject::dataChanged);
    }
    Q_EMIT dataChanged();
}

} // namespace overmap_ui
