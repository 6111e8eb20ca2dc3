#pragma once

#include <cstdint>
#include <iosfwd>
#include <type_traits>

namespace math_geo {

/// Which way the axes of a Point2D point. The numbers are stored in setups and must not change.
enum class CoordinateSystem : std::int32_t
{
    X_RIGHT_Y_FRONT = 0, ///< x east, y north on an unrotated plane; the plane's internal frame
    X_FRONT_Y_LEFT = 1,  ///< object-local frame
    X_RIGHT_Y_BACK = 2,  ///< screen and image pixels
    DIN70000 = 4,        ///< vehicle frame: axes as X_FRONT_Y_LEFT, rotations run the other way
    SAE = 5              ///< a label only; no conversion exists
};

/// A point in a plane with an explicit axis convention. Lengths are metres, except in X_RIGHT_Y_BACK
/// where they are screen lengths. Binary operators keep the left operand's system; mixing systems
/// is a programmer error that is reported and then carried out on the raw numbers.
class Point2D
{
public:
    double x = 0.0;
    double y = 0.0;

    constexpr Point2D() = default;
    constexpr Point2D(double x_value, double y_value,
                      CoordinateSystem system = CoordinateSystem::X_RIGHT_Y_FRONT)
        : x(x_value), y(y_value), m_coordinate_system(system)
    {}

    CoordinateSystem getCoordinateSystem() const { return m_coordinate_system; }
    /// Changes the label only; the numbers stay as they are.
    void setCoordinateSystem(CoordinateSystem system) { m_coordinate_system = system; }

    /// Converts the numbers in place into @p target. Unsupported pairs (anything with SAE, and
    /// X_RIGHT_Y_BACK to the forward/left frames) are reported and leave value and label alone.
    void toCoordSystem(CoordinateSystem target);

    /// The point rotated counter-clockwise by @p degrees, in the same system; in DIN70000 the
    /// rotation runs the other way.
    Point2D rotate(double degrees) const;
    /// As rotate, with the angle's cosine and sine already known (a plane's fixed rotation).
    Point2D rotateByCosSin(double cos_angle, double sin_angle) const;

    /// Signed angle in degrees from this vector to @p p2, positive counter-clockwise. Not-a-number
    /// when either has zero length.
    double angleTo(const Point2D& p2) const;

    /// sqrt(x² + y²).
    double length() const;

    Point2D operator+(const Point2D& p2) const;
    Point2D operator-(const Point2D& p2) const;
    Point2D& operator+=(const Point2D& p2);
    Point2D& operator-=(const Point2D& p2);
    Point2D operator*(double factor) const;
    Point2D operator/(double divisor) const;
    Point2D& operator*=(double factor);
    Point2D& operator/=(double divisor);
    /// Negates x and y and keeps the system.
    Point2D operator-() const;

    /// Equal when x and y differ by less than 1e-12 and the systems are the same.
    bool operator==(const Point2D& p2) const;
    bool operator!=(const Point2D& p2) const;

private:
    CoordinateSystem m_coordinate_system = CoordinateSystem::X_RIGHT_Y_FRONT;
};

static_assert(std::is_trivially_copyable_v<Point2D>, "points are copied as plain values");

/// Writes "Point2D(<x>, <y>)"; the stream's precision is left alone.
std::ostream& operator<<(std::ostream& os, const Point2D& point);

} // namespace math_geo
