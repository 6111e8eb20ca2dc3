#pragma once

#include <om_model/position_object.h>

namespace overmap {

/// A marker on the ground; always measured at its one POI.
class Cone : public PositionObject
{
public:
    explicit Cone(const math_geo::ProjectionPlane* plane);
    Cone(std::int32_t id, const math_geo::ProjectionPlane* plane);
    ~Cone() override;

    bool hasSelectablePois() const override { return false; }
};

} // namespace overmap
