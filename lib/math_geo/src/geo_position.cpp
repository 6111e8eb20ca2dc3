#include <math_geo/geo_position.h>

#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>

#include <GeographicLib/Geodesic.hpp>

#include <cmath>
#include <ostream>

namespace math_geo {

namespace {
constexpr double POSITION_TOLERANCE = 1e-9; // degrees
} // namespace

GeoPosition GeoPosition::normalized(double latitude, double longitude)
{
    const double q = latitude / 360.0;
    const double turns = latitude > 0.0 ? std::floor(q) : std::ceil(q);
    double l = latitude - turns * 360.0; // in (-360, 360)
    if (l < -270.0)
        l = -360.0 - l;
    if (l < -90.0) {
        longitude += 180.0;
        l = -90.0 - (l + 90.0);
    }
    if (l > 270.0)
        l = 360.0 - l;
    if (l > 90.0) {
        longitude += 180.0;
        l = 90.0 - (l - 90.0);
    }
    return GeoPosition(l, wrapToRange(longitude, -180.0, 180.0));
}

bool GeoPosition::valid() const
{
    // Written so that not-a-number fails every comparison and infinity fails the range.
    return latitude >= -90.0 && latitude <= 90.0 && longitude >= -180.0 && longitude <= 180.0;
}

double GeoPosition::distanceTo(const GeoPosition& other, DistanceMethod method) const
{
    if (method == DistanceMethod::GEODESIC) {
        // Made on the spot: this path is for occasional measurement, not for every frame.
        const GeographicLib::Geodesic geodesic(earth::SEMI_MAJOR_AXIS, earth::FLATTENING);
        double s12 = 0.0;
        geodesic.Inverse(latitude, longitude, other.latitude, other.longitude, s12);
        return s12;
    }
    const double phi1 = latitude * earth::DEG_TO_RAD;
    const double phi2 = other.latitude * earth::DEG_TO_RAD;
    const double lambda1 = longitude * earth::DEG_TO_RAD;
    const double lambda2 = other.longitude * earth::DEG_TO_RAD;
    const double sin_dphi = std::sin((phi2 - phi1) / 2.0);
    const double sin_dlambda = std::sin((lambda2 - lambda1) / 2.0);
    const double h = sin_dphi * sin_dphi + std::cos(phi1) * std::cos(phi2) * sin_dlambda * sin_dlambda;
    return 2.0 * std::asin(std::sqrt(h)) * gaussianRadius(latitude);
}

double GeoPosition::bearingTo(const GeoPosition& other) const
{
    const double phi1 = latitude * earth::DEG_TO_RAD;
    const double phi2 = other.latitude * earth::DEG_TO_RAD;
    const double dlambda = other.longitude * earth::DEG_TO_RAD - longitude * earth::DEG_TO_RAD;
    const double y = std::sin(dlambda) * std::cos(phi2);
    const double x = std::cos(phi1) * std::sin(phi2) - std::sin(phi1) * std::cos(phi2) * std::cos(dlambda);
    return std::atan2(y, x) * earth::RAD_TO_DEG;
}

bool GeoPosition::operator==(const GeoPosition& other) const
{
    return std::fabs(latitude - other.latitude) < POSITION_TOLERANCE &&
           std::fabs(longitude - other.longitude) < POSITION_TOLERANCE;
}

bool GeoPosition::operator!=(const GeoPosition& other) const
{
    return !(*this == other);
}

std::ostream& operator<<(std::ostream& os, const GeoPosition& position)
{
    os.precision(8);
    return os << "GeoPosition(lat " << position.latitude << "\xC2\xB0, long " << position.longitude
              << "\xC2\xB0)";
}

} // namespace math_geo
