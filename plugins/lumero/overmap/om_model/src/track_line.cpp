#include <om_model/track_line.h>

namespace overmap {

using math_geo::GeoPosition;
using math_geo::Point2D;

TrackLine::TrackLine(const math_geo::ProjectionPlane* plane) : Track(plane)
{
    init();
}

TrackLine::TrackLine(std::int32_t id, const math_geo::ProjectionPlane* plane) : Track(id, plane)
{
    init();
}

TrackLine::~TrackLine() = default;

void TrackLine::init()
{
    setName("Track line");
    const GeoPosition unset(UNSET, UNSET);
    setPositions({unset, unset});
    setArcCenter(unset);
}

void TrackLine::setPosition(std::size_t index, const GeoPosition& position)
{
    std::vector<GeoPosition> positions = getPositions();
    positions.resize(std::max<std::size_t>(positions.size(), 2), GeoPosition(UNSET, UNSET));
    positions[index] = position;
    setPositions(std::move(positions));
}

void TrackLine::setStart(const GeoPosition& position)
{
    setPosition(0, position);
    m_start_point = referencePlane().toPlane(position);
    m_start_by_xy = false;
    setXYFlag(false);
}

void TrackLine::setEnd(const GeoPosition& position)
{
    setPosition(1, position);
    m_end_point = referencePlane().toPlane(position);
    m_end_by_xy = false;
    setXYFlag(false);
}

bool TrackLine::setEndSynced(const GeoPosition& position)
{
    setEnd(position);
    if (m_end_by_xy == m_start_by_xy)
        return false;
    m_end_by_xy = m_start_by_xy;
    setXYFlag(m_start_by_xy);
    return true;
}

void TrackLine::setStartXY(const Point2D& point)
{
    m_start_point = point;
    setPosition(0, referencePlane().toGeoPosition(point));
    m_start_by_xy = true;
    setXYFlag(true);
}

void TrackLine::setEndXY(const Point2D& point)
{
    m_end_point = point;
    setPosition(1, referencePlane().toGeoPosition(point));
    m_end_by_xy = true;
    setXYFlag(true);
}

void TrackLine::setStartByXY(bool value)
{
    m_start_by_xy = value;
    if (getRadius() != 0.0) {
        m_end_by_xy = value;
        setXYFlag(value);
    }
    clearCaches();
}

void TrackLine::setEndByXY(bool value)
{
    m_end_by_xy = value;
    if (getRadius() != 0.0) {
        m_start_by_xy = value;
        setXYFlag(value);
    }
    clearCaches();
}

void TrackLine::setCenterPosition(const GeoPosition& position)
{
    setArcCenter(position);
    m_center_point = referencePlane().toPlane(position);
    m_center_by_xy = false;
    clearCaches();
}

void TrackLine::setCenterXY(const Point2D& point)
{
    m_center_point = point;
    setArcCenter(referencePlane().toGeoPosition(point));
    m_center_by_xy = true;
    clearCaches();
}

} // namespace overmap
