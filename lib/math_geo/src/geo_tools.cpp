#include <math_geo/geo_tools.h>

#include <math_geo/earth_model.h>

#include <uni_base/uni_assert.h>

#include <boost/geometry/algorithms/distance.hpp>
#include <boost/geometry/geometries/register/linestring.hpp>
#include <boost/geometry/geometries/register/point.hpp>
#include <boost/geometry/geometries/segment.hpp>
#include <boost/geometry/strategies/cartesian/distance_projected_point.hpp>
#include <boost/geometry/strategies/cartesian/distance_pythagoras.hpp>

#include <algorithm>
#include <cmath>

BOOST_GEOMETRY_REGISTER_POINT_2D(math_geo::Point2D, double, boost::geometry::cs::cartesian, x, y)
BOOST_GEOMETRY_REGISTER_LINESTRING(std::vector<math_geo::Point2D>)

namespace math_geo {

namespace {
constexpr double PI = 3.141592653589793;

double oneMinusE2SinSquared(double latitude)
{
    const double s = std::sin(latitude * earth::DEG_TO_RAD);
    return 1.0 - earth::ECCENTRICITY_SQUARED * s * s;
}
} // namespace

double meridianRadius(double latitude)
{
    return earth::SEMI_MAJOR_AXIS_TIMES_ONE_MINUS_E2 / std::pow(oneMinusE2SinSquared(latitude), 1.5);
}

double primeVerticalRadius(double latitude)
{
    return earth::SEMI_MAJOR_AXIS / std::sqrt(oneMinusE2SinSquared(latitude));
}

double gaussianRadius(double latitude)
{
    return std::sqrt(earth::ONE_MINUS_ECCENTRICITY_SQUARED) * earth::SEMI_MAJOR_AXIS /
           oneMinusE2SinSquared(latitude);
}

double wrapToRange(double value, double min, double max)
{
    UNI_ASSERT(max > min);
    if (min <= value && value <= max)
        return value;
    const double span = max - min;
    double r = value - std::floor(value / span) * span;
    if (r > max)
        r -= span;
    if (r < min)
        r += span;
    return r;
}

GeoPosition destinationPoint(const GeoPosition& start, double bearing, double distance)
{
    const double phi1 = start.latitude * earth::DEG_TO_RAD;
    const double lambda1 = start.longitude * earth::DEG_TO_RAD;
    const double theta = bearing * earth::DEG_TO_RAD;
    const double delta = distance / gaussianRadius(start.latitude);
    const double phi2 =
        std::asin(std::sin(phi1) * std::cos(delta) + std::cos(phi1) * std::sin(delta) * std::cos(theta));
    const double lambda2 = lambda1 + std::atan2(std::sin(theta) * std::sin(delta) * std::cos(phi1),
                                                std::cos(delta) - std::sin(phi1) * std::sin(phi2));
    return GeoPosition(phi2 * earth::RAD_TO_DEG, lambda2 * earth::RAD_TO_DEG);
}

double rhumbBearing(const GeoSegment& segment)
{
    const double phi1 = segment.topLeft().latitude * earth::DEG_TO_RAD;
    const double phi2 = segment.bottomRight().latitude * earth::DEG_TO_RAD;
    double dlambda =
        segment.bottomRight().longitude * earth::DEG_TO_RAD - segment.topLeft().longitude * earth::DEG_TO_RAD;
    const double dpsi = std::log(std::tan(phi2 / 2.0 + PI / 4.0) / std::tan(phi1 / 2.0 + PI / 4.0));
    // Across the antimeridian the short way.
    if (std::fabs(dlambda) > PI)
        dlambda = dlambda > 0.0 ? -(2.0 * PI - dlambda) : dlambda + 2.0 * PI;
    double bearing = std::atan2(dlambda, dpsi) * earth::RAD_TO_DEG;
    while (bearing < 0.0)
        bearing += 360.0;
    while (bearing > 360.0)
        bearing -= 360.0;
    return bearing;
}

double distanceToPolyline(const Point2D& point, const std::vector<Point2D>& points)
{
    return boost::geometry::distance(point, points);
}

std::ptrdiff_t nearestSegment(const Point2D& point, const std::vector<Point2D>& points)
{
    if (points.size() < 2)
        return -1;
    std::ptrdiff_t nearest = 0;
    double nearest_distance = 0.0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const boost::geometry::model::referring_segment<const Point2D> segment(points[i], points[i + 1]);
        const double d = boost::geometry::distance(point, segment);
        if (i == 0 || d < nearest_distance) {
            nearest = static_cast<std::ptrdiff_t>(i);
            nearest_distance = d;
        }
    }
    return nearest;
}

void removeInvalidPositions(std::vector<GeoPosition>& positions)
{
    positions.erase(
        std::remove_if(positions.begin(), positions.end(), [](const GeoPosition& p) { return !p.valid(); }),
        positions.end());
}

} // namespace math_geo
