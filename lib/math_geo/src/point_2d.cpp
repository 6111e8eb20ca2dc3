#include <math_geo/point_2d.h>

#include <math_geo/earth_model.h>

#include <uni_base/uni_assert.h>

#include <cmath>
#include <ostream>

namespace math_geo {

namespace {
constexpr double POINT_TOLERANCE = 1e-12;

bool isForwardLeft(CoordinateSystem system)
{
    return system == CoordinateSystem::X_FRONT_Y_LEFT || system == CoordinateSystem::DIN70000;
}
} // namespace

void Point2D::toCoordSystem(CoordinateSystem target)
{
    const CoordinateSystem from = m_coordinate_system;
    double new_x = x;
    double new_y = y;
    if (from == target || (isForwardLeft(from) && isForwardLeft(target))) {
        // same axes
    } else if (from == CoordinateSystem::X_RIGHT_Y_FRONT && isForwardLeft(target)) {
        new_x = y;
        new_y = -x;
    } else if (isForwardLeft(from) && target == CoordinateSystem::X_RIGHT_Y_FRONT) {
        new_x = -y;
        new_y = x;
    } else if (isForwardLeft(from) && target == CoordinateSystem::X_RIGHT_Y_BACK) {
        new_x = -y;
        new_y = -x;
    } else if ((from == CoordinateSystem::X_RIGHT_Y_FRONT && target == CoordinateSystem::X_RIGHT_Y_BACK) ||
               (from == CoordinateSystem::X_RIGHT_Y_BACK && target == CoordinateSystem::X_RIGHT_Y_FRONT)) {
        new_y = -y;
    } else {
        // Screen points reach the vehicle frames only through X_RIGHT_Y_FRONT, and SAE is a label.
        UNI_FAIL("Point2D::toCoordSystem() - unsupported conversion");
        return;
    }
    x = new_x;
    y = new_y;
    m_coordinate_system = target;
}

Point2D Point2D::rotate(double degrees) const
{
    const double a = degrees * earth::DEG_TO_RAD;
    return rotateByCosSin(std::cos(a), std::sin(a));
}

Point2D Point2D::rotateByCosSin(double cos_angle, double sin_angle) const
{
    // DIN 70000 counts angles the other way; X_FRONT_Y_LEFT, with the same axes, does not.
    const double s = m_coordinate_system == CoordinateSystem::DIN70000 ? -sin_angle : sin_angle;
    return Point2D(x * cos_angle - y * s, y * cos_angle + x * s, m_coordinate_system);
}

double Point2D::angleTo(const Point2D& p2) const
{
    UNI_ASSERT(m_coordinate_system == p2.m_coordinate_system);
    // Unclamped: rounding can push the cosine of (anti)parallel vectors just past 1, and
    // such a pair then has no angle, as a zero-length operand has none.
    const double angle = std::acos((x * p2.x + y * p2.y) / (length() * p2.length())) * earth::RAD_TO_DEG;
    return p2.y * x - p2.x * y < 0.0 ? -angle : angle;
}

double Point2D::length() const
{
    return std::sqrt(x * x + y * y);
}

Point2D Point2D::operator+(const Point2D& p2) const
{
    UNI_ASSERT(m_coordinate_system == p2.m_coordinate_system);
    return Point2D(x + p2.x, y + p2.y, m_coordinate_system);
}

Point2D Point2D::operator-(const Point2D& p2) const
{
    UNI_ASSERT(m_coordinate_system == p2.m_coordinate_system);
    return Point2D(x - p2.x, y - p2.y, m_coordinate_system);
}

Point2D& Point2D::operator+=(const Point2D& p2)
{
    UNI_ASSERT(m_coordinate_system == p2.m_coordinate_system);
    x += p2.x;
    y += p2.y;
    return *this;
}

Point2D& Point2D::operator-=(const Point2D& p2)
{
    UNI_ASSERT(m_coordinate_system == p2.m_coordinate_system);
    x -= p2.x;
    y -= p2.y;
    return *this;
}

Point2D Point2D::operator*(double factor) const
{
    return Point2D(x * factor, y * factor, m_coordinate_system);
}

Point2D Point2D::operator/(double divisor) const
{
    return Point2D(x / divisor, y / divisor, m_coordinate_system);
}

Point2D& Point2D::operator*=(double factor)
{
    x *= factor;
    y *= factor;
    return *this;
}

Point2D& Point2D::operator/=(double divisor)
{
    x /= divisor;
    y /= divisor;
    return *this;
}

Point2D Point2D::operator-() const
{
    return Point2D(-x, -y, m_coordinate_system);
}

bool Point2D::operator==(const Point2D& p2) const
{
    return std::fabs(x - p2.x) < POINT_TOLERANCE && std::fabs(y - p2.y) < POINT_TOLERANCE &&
           m_coordinate_system == p2.m_coordinate_system;
}

bool Point2D::operator!=(const Point2D& p2) const
{
    return !(*this == p2);
}

std::ostream& operator<<(std::ostream& os, const Point2D& point)
{
    return os << "Point2D(" << point.x << ", " << point.y << ")";
}

} // namespace math_geo
