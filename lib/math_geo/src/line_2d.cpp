#include <math_geo/line_2d.h>

#include <uni_base/uni_assert.h>

#include <cmath>

namespace math_geo {

namespace {
constexpr double PARALLEL_TOLERANCE = 1e-9;
} // namespace

Line2D::Line2D(const Point2D& p1, const Point2D& p2) : m_pt1(p1), m_pt2(p2)
{
    UNI_ASSERT(m_pt1.getCoordinateSystem() == m_pt2.getCoordinateSystem());
    updateDirection();
}

void Line2D::setPt1(const Point2D& p)
{
    m_pt1 = p;
    UNI_ASSERT(m_pt1.getCoordinateSystem() == m_pt2.getCoordinateSystem());
    updateDirection();
}

void Line2D::setPt2(const Point2D& p)
{
    m_pt2 = p;
    UNI_ASSERT(m_pt1.getCoordinateSystem() == m_pt2.getCoordinateSystem());
    updateDirection();
}

void Line2D::updateDirection()
{
    // On the raw numbers, so that a mixed pair (already reported) does not report twice.
    m_dx = m_pt2.x - m_pt1.x;
    m_dy = m_pt2.y - m_pt1.y;
}

std::optional<Point2D> Line2D::intersect(const Line2D& other) const
{
    UNI_ASSERT(m_pt1.getCoordinateSystem() == other.m_pt1.getCoordinateSystem());
    const double det = m_dy * (-other.m_dx) + other.m_dy * m_dx;
    // A not-a-number determinant is not below the tolerance: its point is (NaN, NaN), which
    // marks the vertex of a zero-length segment for the caller.
    if (std::fabs(det) < PARALLEL_TOLERANCE)
        return std::nullopt;
    const double t =
        ((m_pt1.x - other.m_pt1.x) * (-other.m_dy) - (m_pt1.y - other.m_pt1.y) * (-other.m_dx)) / det;
    return Point2D(m_pt1.x + t * m_dx, m_pt1.y + t * m_dy, m_pt1.getCoordinateSystem());
}

} // namespace math_geo
