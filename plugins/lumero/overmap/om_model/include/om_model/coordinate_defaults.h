#pragma once

#include <math_geo/point_2d.h>

namespace overmap {

/// System of the local frame of new position objects; DIN70000 unless set otherwise.
math_geo::CoordinateSystem defaultObjectCoordinateSystem();
void setDefaultObjectCoordinateSystem(math_geo::CoordinateSystem system);

/// System of the scene's reference plane and of XY positions; X_FRONT_Y_LEFT unless set otherwise.
math_geo::CoordinateSystem defaultPlaneCoordinateSystem();
void setDefaultPlaneCoordinateSystem(math_geo::CoordinateSystem system);

} // namespace overmap
