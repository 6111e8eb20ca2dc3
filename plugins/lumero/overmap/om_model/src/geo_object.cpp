#include <om_model/geo_object.h>

#include "id_counter.h"

#include <math_geo/projection_plane.h>
#include <uni_base/uni_assert.h>

namespace overmap {

namespace {
detail::IdCounter& geoObjectIds()
{
    static detail::IdCounter counter;
    return counter;
}
} // namespace

GeoObject::GeoObject(const math_geo::ProjectionPlane* plane) : m_plane(plane), m_id(geoObjectIds().take()) {}

GeoObject::GeoObject(std::int32_t id, const math_geo::ProjectionPlane* plane)
    : m_plane(plane), m_id(geoObjectIds().claim(id))
{}

GeoObject::~GeoObject() = default;

void GeoObject::setPlane(const math_geo::ProjectionPlane* plane)
{
    m_plane = plane;
}

std::int32_t GeoObject::peekNextId()
{
    return geoObjectIds().peek();
}

const math_geo::ProjectionPlane& GeoObject::referencePlane() const
{
    static const math_geo::ProjectionPlane fallback;
    if (!UNI_ASSERT(m_plane != nullptr))
        return fallback;
    return *m_plane;
}

} // namespace overmap
