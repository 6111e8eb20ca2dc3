#include <om_model/cone.h>

namespace overmap {

namespace {
void setDefaults(Cone& cone)
{
    cone.setName("Cone");
    cone.setColor("#FFA500");
}
} // namespace

Cone::Cone(const math_geo::ProjectionPlane* plane) : PositionObject(plane)
{
    setDefaults(*this);
}

Cone::Cone(std::int32_t id, const math_geo::ProjectionPlane* plane) : PositionObject(id, plane)
{
    setDefaults(*this);
}

Cone::~Cone() = default;

} // namespace overmap
