#include <om_model/locator.h>

namespace overmap {

namespace {
void setDefaults(Locator& locator)
{
    locator.setName("Locator");
    locator.setColor("#444444");
    for (int i = 0; i < 3; ++i)
        locator.addQualityPosition(QualityPosition{});
}
} // namespace

Locator::Locator(const math_geo::ProjectionPlane* plane) : PositionObject(plane)
{
    setDefaults(*this);
}

Locator::Locator(std::int32_t id, const math_geo::ProjectionPlane* plane) : PositionObject(id, plane)
{
    setDefaults(*this);
}

Locator::~Locator() = default;

void Locator::addQualityPosition(const QualityPosition& entry)
{
    m_quality_positions.push_back(entry);
}

void Locator::clearQualityPositions()
{
    m_quality_positions.clear();
}

void Locator::setQualityPosition(const QualityPosition& entry, std::size_t index)
{
    m_quality_positions.at(index) = entry;
}

} // namespace overmap
