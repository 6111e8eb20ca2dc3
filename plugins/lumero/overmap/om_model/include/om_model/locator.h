#pragma once

#include <om_model/position_object.h>
#include <om_model/quality_position.h>

#include <cstddef>
#include <vector>

namespace overmap {

/// The scene's measuring GPS receiver, with the quality ranges of its quality channel.
class Locator : public PositionObject
{
public:
    /// Starts with three empty quality positions.
    explicit Locator(const math_geo::ProjectionPlane* plane);
    Locator(std::int32_t id, const math_geo::ProjectionPlane* plane);
    ~Locator() override;

    bool hasSelectablePois() const override { return false; }

    const std::vector<QualityPosition>& getQualityPositions() const { return m_quality_positions; }
    void addQualityPosition(const QualityPosition& entry);
    void clearQualityPositions();
    /// Overwrites entry @p index; throws std::out_of_range when there is no such entry.
    void setQualityPosition(const QualityPosition& entry, std::size_t index);

private:
    std::vector<QualityPosition> m_quality_positions;
};

} // namespace overmap
