#pragma once

#include <iosfwd>
#include <type_traits>

namespace math_geo {

/// How GeoPosition::distanceTo measures. Any value other than GEODESIC means haversine.
enum class DistanceMethod : int
{
    HAVERSINE = 0, ///< great circle on the Gaussian sphere of the starting position
    GEODESIC = 1   ///< inverse geodesic on the WGS 84 ellipsoid (GeographicLib)
};

/// A point on the WGS 84 ellipsoid, in degrees, without altitude. The constructor stores what it is
/// given; only valid() proves a position sound. A default position is 0/0, which is valid.
struct GeoPosition
{
    double latitude = 0.0;  ///< degrees, positive north
    double longitude = 0.0; ///< degrees, positive east

    constexpr GeoPosition() = default;
    /// @param lat latitude in degrees, stored unchecked
    /// @param lon longitude in degrees, stored unchecked
    constexpr GeoPosition(double lat, double lon) : latitude(lat), longitude(lon) {}

    /// Makes a position from values that may have run out of range: a latitude beyond a pole folds
    /// back and moves the longitude by half a turn; the longitude is wrapped into [-180, 180].
    static GeoPosition normalized(double latitude, double longitude);

    /// Latitude in [-90, 90], longitude in [-180, 180], bounds included, neither not-a-number.
    bool valid() const;

    /// Distance in metres from this position to @p other. HAVERSINE uses the Gaussian radius at this
    /// position's latitude, so a.distanceTo(b) and b.distanceTo(a) may differ in the last digits.
    double distanceTo(const GeoPosition& other, DistanceMethod method) const;

    /// Initial great-circle bearing to @p other in degrees clockwise from north, in (-180, 180].
    double bearingTo(const GeoPosition& other) const;

    /// Equal when both coordinates differ by less than 1e-9 degrees (not-a-number is never equal).
    bool operator==(const GeoPosition& other) const;
    bool operator!=(const GeoPosition& other) const;
};

static_assert(std::is_trivially_copyable_v<GeoPosition>, "positions are copied as plain values");

/// Writes "GeoPosition(lat <lat>°, long <lon>°)"; sets the stream's precision to 8 and leaves it so.
std::ostream& operator<<(std::ostream& os, const GeoPosition& position);

} // namespace math_geo
