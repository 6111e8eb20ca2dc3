#include <om_model/calculation.h>

#include <om_model/car.h>
#include <om_model/track.h>

#include "id_counter.h"

namespace overmap {

namespace {

detail::IdCounter& calculationIds()
{
    static detail::IdCounter counter;
    return counter;
}

bool effectivePoiUse(const GeoObject* object, bool stored)
{
    if (!object)
        return true;
    if (dynamic_cast<const Track*>(object))
        return false;
    if (const auto* position_object = dynamic_cast<const PositionObject*>(object))
        return position_object->hasSelectablePois() ? stored : true;
    return stored;
}

bool isCar(const std::shared_ptr<GeoObject>& object)
{
    return dynamic_cast<const Car*>(object.get()) != nullptr;
}

} // namespace

Calculation::Calculation() : m_id(calculationIds().take()) {}

Calculation::Calculation(std::int32_t id) : m_id(calculationIds().claim(id)) {}

std::int32_t Calculation::peekNextId()
{
    return calculationIds().peek();
}

bool Calculation::useFromPoi() const
{
    return effectivePoiUse(m_from.get(), m_use_from_poi);
}

bool Calculation::useToPoi() const
{
    return effectivePoiUse(m_to.get(), m_use_to_poi);
}

bool Calculation::isDistanceTypeAllowed(DistanceType type) const
{
    if (type == DistanceType::EUCLIDEAN)
        return true;
    if (isCar(m_from) && !useFromPoi())
        return false;
    if (isCar(m_to))
        return useToPoi();
    return true;
}

void Calculation::setDistanceType(DistanceType type)
{
    if (isDistanceTypeAllowed(type))
        m_distance_type = type;
}

void Calculation::recheckDistanceType()
{
    if (!isDistanceTypeAllowed(m_distance_type))
        m_distance_type = DistanceType::EUCLIDEAN;
}

void Calculation::setFrom(std::shared_ptr<GeoObject> from)
{
    m_from = std::move(from);
    recheckDistanceType();
}

void Calculation::setTo(std::shared_ptr<GeoObject> to)
{
    m_to = std::move(to);
    recheckDistanceType();
}

void Calculation::setUseFromPoi(bool use)
{
    m_use_from_poi = use;
    recheckDistanceType();
}

void Calculation::setUseToPoi(bool use)
{
    m_use_to_poi = use;
    recheckDistanceType();
}

} // namespace overmap
