#pragma once

#include <math_geo/point_2d.h>

#include <optional>

namespace math_geo {

/// An infinite line through two points of the same system, as used for the mitre joins of tracks.
class Line2D
{
public:
    Line2D(const Point2D& p1, const Point2D& p2);

    const Point2D& pt1() const { return m_pt1; }
    const Point2D& pt2() const { return m_pt2; }
    /// Direction pt2 - pt1, x component.
    double dx() const { return m_dx; }
    /// Direction pt2 - pt1, y component.
    double dy() const { return m_dy; }

    void setPt1(const Point2D& p);
    void setPt2(const Point2D& p);

    /// Where the two lines (infinite both ways) cross, in this line's system; empty when they are
    /// parallel to within a determinant of 1e-9.
    std::optional<Point2D> intersect(const Line2D& other) const;

private:
    void updateDirection();

    Point2D m_pt1;
    Point2D m_pt2;
    double m_dx = 0.0;
    double m_dy = 0.0;
};

} // namespace math_geo
