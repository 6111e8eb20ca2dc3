#include <math_geo/geo_bounds.h>

#include <algorithm>
#include <cmath>

namespace math_geo {

void GeoBounds::extend(const GeoPosition& position)
{
    const double lat = position.latitude;
    const double lon = position.longitude;
    double& top = m_top_left.latitude;
    double& left = m_top_left.longitude;
    double& bottom = m_bottom_right.latitude;
    double& right = m_bottom_right.longitude;

    const bool crossing = right < left;
    const bool lat_inside = !(lat < bottom || lat > top);
    const bool lon_inside = (crossing || lon >= left) && lon <= right;
    if (lat_inside && ((lat == 90.0 && top == 90.0) || (lat == -90.0 && bottom == -90.0) ||
                       (crossing && lon >= left) || lon_inside))
        return;

    top = std::max(lat, top);
    bottom = std::min(lat, bottom);
    if (left > right) {
        if (lon > right && lon < left) {
            if (std::fabs(right - lon) > std::fabs(left - lon))
                left = lon;
            else
                right = lon;
        }
    } else if (lon < left) {
        if (left - lon > 360.0 - (right - lon))
            right = lon;
        else
            left = lon;
    } else if (lon > right) {
        if (lon - right > 360.0 - (lon - left))
            left = lon;
        else
            right = lon;
    }
}

void GeoBounds::extend(const GeoBounds& other)
{
    extend(other.m_top_left);
    extend(other.m_bottom_right);
}

} // namespace math_geo
