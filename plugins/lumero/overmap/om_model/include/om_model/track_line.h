#pragma once

#include <om_model/track.h>

namespace overmap {

/// A straight piece or a circular arc between two ends. Each end, and the arc's centre,
/// is given either on the globe or in the reference plane; the setters keep both forms.
class TrackLine : public Track
{
public:
    /// Marker of an end or a centre not placed yet, in both latitude and longitude.
    static constexpr double UNSET = -9999.9;

    explicit TrackLine(const math_geo::ProjectionPlane* plane);
    TrackLine(std::int32_t id, const math_geo::ProjectionPlane* plane);
    ~TrackLine() override;

    void setStart(const math_geo::GeoPosition& position);
    void setEnd(const math_geo::GeoPosition& position);
    /// As setEnd; then the end follows the start's way of being given. True when it had to.
    bool setEndSynced(const math_geo::GeoPosition& position);
    void setStartXY(const math_geo::Point2D& point);
    void setEndXY(const math_geo::Point2D& point);
    /// On an arc both ends are given the same way, so the other end follows.
    void setStartByXY(bool value);
    void setEndByXY(bool value);
    void setCenterPosition(const math_geo::GeoPosition& position);
    void setCenterXY(const math_geo::Point2D& point);

    const math_geo::Point2D& getStartPoint() const { return m_start_point; }
    bool isStartByXY() const { return m_start_by_xy; }
    const math_geo::Point2D& getEndPoint() const { return m_end_point; }
    bool isEndByXY() const { return m_end_by_xy; }
    const math_geo::Point2D& getCenterPoint() const { return m_center_point; }
    bool isCenterByXY() const { return m_center_by_xy; }

private:
    void init();
    void setPosition(std::size_t index, const math_geo::GeoPosition& position);

    math_geo::Point2D m_start_point;
    bool m_start_by_xy = false;
    math_geo::Point2D m_end_point;
    bool m_end_by_xy = false;
    math_geo::Point2D m_center_point;
    bool m_center_by_xy = false;
};

} // namespace overmap
