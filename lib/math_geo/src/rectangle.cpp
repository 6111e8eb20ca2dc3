#include <math_geo/rectangle.h>

#include <uni_base/uni_assert.h>

#include <algorithm>

namespace math_geo {

Rectangle::Rectangle(const Point2D& top_left, const Point2D& bottom_right)
    : m_top_left(top_left), m_bottom_right(bottom_right)
{
    UNI_ASSERT(m_top_left.getCoordinateSystem() == m_bottom_right.getCoordinateSystem());
}

Rectangle Rectangle::bounding(const std::vector<Point2D>& points)
{
    if (points.empty())
        return Rectangle(Point2D(1.0, 1.0), Point2D(-1.0, -1.0));
    Rectangle result(points.front(), points.front());
    for (const Point2D& p : points)
        result.extend(p);
    return result;
}

void Rectangle::extend(const Point2D& point)
{
    m_top_left.x = std::min(m_top_left.x, point.x);
    m_top_left.y = std::max(m_top_left.y, point.y);
    m_bottom_right.x = std::max(m_bottom_right.x, point.x);
    m_bottom_right.y = std::min(m_bottom_right.y, point.y);
}

Point2D Rectangle::center() const
{
    return (m_top_left + m_bottom_right) / 2.0;
}

double Rectangle::width() const
{
    return m_bottom_right.x - m_top_left.x;
}

double Rectangle::height() const
{
    return m_top_left.y - m_bottom_right.y;
}

} // namespace math_geo
