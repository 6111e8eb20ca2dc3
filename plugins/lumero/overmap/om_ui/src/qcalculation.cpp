#include <om_ui/qcalculation.h>

#include <om_ui/qchannel_fetcher.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>

#include <om_model/calculation.h>
#include <om_model/geo_object.h>

#include <qchannel/qchannel.h>
#include <uni_base/uni_assert.h>

namespace overmap_ui {

struct QCalculation::Side
{
    const std::shared_ptr<overmap::GeoObject>& (overmap::Calculation::*object)() const;
    void (overmap::Calculation::*set_object)(std::shared_ptr<overmap::GeoObject>);
    std::uint32_t (overmap::Calculation::*poi_idx)() const;
    void (overmap::Calculation::*set_poi_idx)(std::uint32_t);
    bool (overmap::Calculation::*use_poi)() const;
    bool (overmap::Calculation::*stored_use_poi)() const;
    void (overmap::Calculation::*set_use_poi)(bool);
    void (QCalculation::*object_changed)();
    void (QCalculation::*poi_idx_changed)();
    void (QCalculation::*use_poi_changed)();
};

const QCalculation::Side QCalculation::FROM{
    &overmap::Calculation::getFrom,       &overmap::Calculation::setFrom,
    &overmap::Calculation::getFromPoiIdx, &overmap::Calculation::setFromPoiIdx,
    &overmap::Calculation::useFromPoi,    &overmap::Calculation::getStoredUseFromPoi,
    &overmap::Calculation::setUseFromPoi, &QCalculation::fromObjectChanged,
    &QCalculation::fromPoiIdxChanged,     &QCalculation::useFromPoiChanged};

const QCalculation::Side QCalculation::TO{
    &overmap::Calculation::getTo,       &overmap::Calculation::setTo,
    &overmap::Calculation::getToPoiIdx, &overmap::Calculation::setToPoiIdx,
    &overmap::Calculation::useToPoi,    &overmap::Calculation::getStoredUseToPoi,
    &overmap::Calculation::setUseToPoi, &QCalculation::toObjectChanged,
    &QCalculation::toPoiIdxChanged,     &QCalculation::useToPoiChanged};

QCalculation::QCalculation(std::shared_ptr<overmap::Calculation> model, QObjectManager* manager,
                           QChannelFetcher* fetcher)
    : QObject(manager), m_model(std::move(model)), m_manager(manager), m_fetcher(fetcher)
{}

QCalculation::~QCalculation() = default;

bool QCalculation::isNameUnique(QString name) const
{
    if (m_manager == nullptr)
        return true;
    const QList<QObject*> calculations = m_manager->calculations()->list();
    for (const QObject* object : calculations) {
        const auto* other = qobject_cast<const QCalculation*>(object);
        if (other != nullptr && other != this && other->name() == name)
            return false;
    }
    return true;
}

int QCalculation::calcId() const
{
    return m_model->getId();
}

QString QCalculation::name() const
{
    return QString::fromStdString(m_model->getName());
}

void QCalculation::setName(const QString& name)
{
    const std::string text = name.toStdString();
    if (text == m_model->getName())
        return;
    m_model->setName(text);
    Q_EMIT nameChanged();
    // The host names the result channel after the calculation only when it makes it.
    if (m_fetcher != nullptr) {
        if (lum::qchannel::QChannel* channel = m_fetcher->resultChannelOf(calcId()))
            channel->setConfigItem(QStringLiteral("Ferrin/Name"), name);
    }
    Q_EMIT dataChanged();
}

QGeoObject* QCalculation::objectOf(const Side& side) const
{
    return m_manager != nullptr ? m_manager->findGeoObject(((*m_model).*side.object)().get()) : nullptr;
}

void QCalculation::setObject(const Side& side, QGeoObject* object)
{
    std::shared_ptr<overmap::GeoObject> model = object != nullptr ? object->geoModel() : nullptr;
    if (model == ((*m_model).*side.object)())
        return;
    if (object != nullptr) {
        auto* position = qobject_cast<QPositionObject*>(object);
        const QGeoObject::Type type = object->getType();
        const bool position_type =
            type == QGeoObject::CAR || type == QGeoObject::CONE || type == QGeoObject::LOCATOR;
        UNI_ASSERT_MSG((position != nullptr) == position_type, "object of type %d is of the wrong class",
                       static_cast<int>(type));
        if (position != nullptr) {
            // The POI settings must make sense for the new object before it is handed over.
            const int poi_count = position->poiList()->size();
            if (poi_count == 0 && ((*m_model).*side.use_poi)()) {
                ((*m_model).*side.set_use_poi)(false);
                Q_EMIT(this->*side.use_poi_changed)();
                Q_EMIT dataChanged();
            }
            const std::uint32_t poi_idx = ((*m_model).*side.poi_idx)();
            if (poi_idx != 0 && poi_idx >= static_cast<std::uint32_t>(poi_count)) {
                ((*m_model).*side.set_poi_idx)(0);
                Q_EMIT(this->*side.poi_idx_changed)();
                Q_EMIT dataChanged();
            }
        }
    }
    ((*m_model).*side.set_object)(std::move(model));
    // The new object can change what the rules allow: the effective POI use, the types.
    Q_EMIT(this->*side.object_changed)();
    Q_EMIT(this->*side.use_poi_changed)();
    Q_EMIT euclideanOnlyChanged();
    Q_EMIT distanceTypeChanged();
    Q_EMIT dataChanged();
}

void QCalculation::setPoiIdx(const Side& side, int index)
{
    if (index < 0 || static_cast<std::uint32_t>(index) == ((*m_model).*side.poi_idx)())
        return;
    ((*m_model).*side.set_poi_idx)(static_cast<std::uint32_t>(index));
    Q_EMIT(this->*side.poi_idx_changed)();
    Q_EMIT dataChanged();
}

void QCalculation::setUsePoi(const Side& side, bool use)
{
    // The stored flag is compared, not the effective one: it is what the user sets, and
    // it takes effect when a car is chosen.
    if (use == ((*m_model).*side.stored_use_poi)())
        return;
    const bool euclidean_only = euclideanOnly();
    const overmap::DistanceType type = m_model->getDistanceType();
    ((*m_model).*side.set_use_poi)(use);
    Q_EMIT(this->*side.use_poi_changed)();
    if (euclideanOnly() != euclidean_only)
        Q_EMIT euclideanOnlyChanged();
    if (m_model->getDistanceType() != type)
        Q_EMIT distanceTypeChanged();
    Q_EMIT dataChanged();
}

QGeoObject* QCalculation::fromObject() const
{
    return objectOf(FROM);
}

void QCalculation::setFromObject(QGeoObject* object)
{
    setObject(FROM, object);
}

QGeoObject* QCalculation::toObject() const
{
    return objectOf(TO);
}

void QCalculation::setToObject(QGeoObject* object)
{
    setObject(TO, object);
}

int QCalculation::fromPoiIdx() const
{
    return static_cast<int>(m_model->getFromPoiIdx());
}

void QCalculation::setFromPoiIdx(int index)
{
    setPoiIdx(FROM, index);
}

int QCalculation::toPoiIdx() const
{
    return static_cast<int>(m_model->getToPoiIdx());
}

void QCalculation::setToPoiIdx(int index)
{
    setPoiIdx(TO, index);
}

bool QCalculation::useFromPoi() const
{
    return m_model->useFromPoi();
}

void QCalculation::setUseFromPoi(bool use)
{
    setUsePoi(FROM, use);
}

bool QCalculation::useToPoi() const
{
    return m_model->useToPoi();
}

void QCalculation::setUseToPoi(bool use)
{
    setUsePoi(TO, use);
}

QCalculation::DistanceType QCalculation::distanceType() const
{
    return static_cast<DistanceType>(m_model->getDistanceType());
}

void QCalculation::setDistanceType(DistanceType type)
{
    // Values from QML are plain numbers: one outside the enumeration is ignored.
    if (type == distanceType() || type < EUCLIDEAN || type > Y)
        return;
    m_model->setDistanceType(static_cast<overmap::DistanceType>(type));
    // Also after a refusal, so that a view shows the type that stayed.
    Q_EMIT distanceTypeChanged();
    Q_EMIT dataChanged();
}

QCalculation::TrackTarget QCalculation::trackTarget() const
{
    return static_cast<TrackTarget>(m_model->getTrackTarget());
}

void QCalculation::setTrackTarget(TrackTarget target)
{
    if (target == trackTarget() || target < CENTER || target > EDGE)
        return;
    m_model->setTrackTarget(static_cast<overmap::TrackTarget>(target));
    Q_EMIT trackTargetChanged();
    Q_EMIT dataChanged();
}

QCalculation::ResultTransformation QCalculation::resultTransformation() const
{
    return static_cast<ResultTransformation>(m_model->getResultTransformation());
}

void QCalculation::setResultTransformation(ResultTransformation value)
{
    if (value == resultTransformation() || value < AS_IS || value > INVERT)
        return;
    m_model->setResultTransformation(static_cast<overmap::ResultTransformation>(value));
    Q_EMIT resultTransformationChanged();
    Q_EMIT dataChanged();
}

bool QCalculation::euclideanOnly() const
{
    return !m_model->isDistanceTypeAllowed(overmap::DistanceType::X);
}

} // namespace overmap_ui
