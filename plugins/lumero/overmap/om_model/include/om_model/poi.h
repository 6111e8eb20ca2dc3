#pragma once

#include <math_geo/point_2d.h>

#include <string>

namespace overmap {

/// A named point of interest, in the local system of the object that owns it.
struct Poi
{
    math_geo::Point2D position;
    std::string name;
};

} // namespace overmap
