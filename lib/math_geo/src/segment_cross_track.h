#pragma once

#include <math_geo/geo_position.h>

#include <boost/geometry/core/cs.hpp>
#include <boost/geometry/core/radian_access.hpp>
#include <boost/geometry/formulas/spherical.hpp>
#include <boost/geometry/geometries/register/point.hpp>
#include <boost/geometry/strategies/spherical/distance_haversine.hpp>
#include <boost/geometry/util/math.hpp>

#include <algorithm>
#include <cmath>

// Positions are longitude/latitude points on the sphere, in degrees, for Boost.Geometry.
BOOST_GEOMETRY_REGISTER_POINT_2D(math_geo::GeoPosition, double,
                                 boost::geometry::cs::spherical_equatorial<boost::geometry::degree>,
                                 longitude, latitude)

namespace math_geo::detail {

namespace bg = boost::geometry;
using ComparableHaversine = bg::strategy::distance::comparable::haversine<double>;

/// The comparable value of bg::strategy::distance::comparable::cross_track<> (haversine base, unit
/// sphere) for one segment and many points. The strategy works out the segment's length and courses
/// anew for every point, a third of its cost; here they are worked out once. Everything else is the
/// strategy's own sequence of Boost calls and operations, so the values are the same to the last bit.
class SegmentCrossTrack
{
public:
    SegmentCrossTrack(const GeoPosition& a, const GeoPosition& b)
        : m_a(a), m_b(b), m_lon1(bg::get_as_radian<0>(a)), m_lat1(bg::get_as_radian<1>(a)),
          m_lon2(bg::get_as_radian<0>(b)), m_lat2(bg::get_as_radian<1>(b)), m_d3(m_haversine.apply(a, b)),
          m_degenerate(bg::math::equals(m_d3, 0.0))
    {
        const bg::formula::result_spherical<double> course =
            bg::formula::spherical_azimuth<double, true>(m_lon1, m_lat1, m_lon2, m_lat2);
        m_crs_ab = course.azimuth;
        m_crs_ba = course.reverse_azimuth - bg::math::pi<double>();
    }

    double apply(const GeoPosition& p) const
    {
        const double d1 = m_haversine.apply(m_a, p);
        if (m_degenerate)
            return d1; // a and b coincide: distance from a
        const double d2 = m_haversine.apply(m_b, p);
        const double lon = bg::get_as_radian<0>(p);
        const double lat = bg::get_as_radian<1>(p);
        const double crs_ad = bg::formula::spherical_azimuth<double, false>(m_lon1, m_lat1, lon, lat).azimuth;
        const double crs_bd = bg::formula::spherical_azimuth<double, false>(m_lon2, m_lat2, lon, lat).azimuth;
        const double d_crs1 = crs_ad - m_crs_ab;
        const double d_crs2 = crs_bd - m_crs_ba;
        const double projection1 = std::cos(d_crs1) * d1 / m_d3;
        const double projection2 = std::cos(d_crs2) * d2 / m_d3;
        if (projection1 > 0.0 && projection2 > 0.0) {
            // The foot lies on the segment: from the great circle.
            const double sin_d_crs1 = std::sin(d_crs1);
            const double d1_x_sin = d1 * sin_d_crs1;
            const double d = d1_x_sin * (sin_d_crs1 - d1_x_sin);
            return d / (0.5 + std::sqrt(0.25 - d));
        }
        return std::min(d1, d2); // from the nearer end
    }

private:
    ComparableHaversine m_haversine;
    GeoPosition m_a;
    GeoPosition m_b;
    double m_lon1;
    double m_lat1;
    double m_lon2;
    double m_lat2;
    double m_d3;
    bool m_degenerate;
    double m_crs_ab = 0.0;
    double m_crs_ba = 0.0;
};

} // namespace math_geo::detail
