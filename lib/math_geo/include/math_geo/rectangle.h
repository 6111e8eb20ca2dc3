#pragma once

#include <math_geo/point_2d.h>

#include <vector>

namespace math_geo {

/// An axis-parallel rectangle. Top is the greater y and left the lesser x, whatever the axes mean.
class Rectangle
{
public:
    Rectangle(const Point2D& top_left, const Point2D& bottom_right);

    /// The smallest rectangle holding all @p points, in the system of the first. An empty list gives
    /// top left (1, 1) and bottom right (-1, -1) in X_RIGHT_Y_FRONT: width -2, height 2, which
    /// existing callers rely on.
    static Rectangle bounding(const std::vector<Point2D>& points);

    /// Grows to hold @p point; its system is not looked at.
    void extend(const Point2D& point);

    const Point2D& topLeft() const { return m_top_left; }
    const Point2D& bottomRight() const { return m_bottom_right; }
    Point2D center() const;
    double width() const;
    double height() const;

private:
    Point2D m_top_left;
    Point2D m_bottom_right;
};

} // namespace math_geo
