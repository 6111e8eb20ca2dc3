#include <om_model/coordinate_defaults.h>

namespace overmap {

namespace {
math_geo::CoordinateSystem g_object_system = math_geo::CoordinateSystem::DIN70000;
math_geo::CoordinateSystem g_plane_system = math_geo::CoordinateSystem::X_FRONT_Y_LEFT;
} // namespace

math_geo::CoordinateSystem defaultObjectCoordinateSystem()
{
    return g_object_system;
}

void setDefaultObjectCoordinateSystem(math_geo::CoordinateSystem system)
{
    g_object_system = system;
}

math_geo::CoordinateSystem defaultPlaneCoordinateSystem()
{
    return g_plane_system;
}

void setDefaultPlaneCoordinateSystem(math_geo::CoordinateSystem system)
{
    g_plane_system = system;
}

} // namespace overmap
