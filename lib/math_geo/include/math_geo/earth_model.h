#pragma once

namespace math_geo::earth {

// WGS 84 as the rest of the system uses it. The values are stored, not derived from one another:
// the stored e² differs from f(2 - f) in its last digits, and every figure downstream depends on
// exactly these numbers.

/// Semi-major axis a in metres.
constexpr double SEMI_MAJOR_AXIS = 6378137.0;
/// Flattening f (1/298.257223563); only the geodesic solver uses it.
constexpr double FLATTENING = 0.0033528106647474805;
/// First eccentricity squared e².
constexpr double ECCENTRICITY_SQUARED = 0.0066943799901378;
/// 1 - e².
constexpr double ONE_MINUS_ECCENTRICITY_SQUARED = 0.9933056200098622;
/// a(1 - e²) in metres.
constexpr double SEMI_MAJOR_AXIS_TIMES_ONE_MINUS_E2 = 6335439.327292843;
/// Degrees to radians (pi / 180).
constexpr double DEG_TO_RAD = 0.017453292519943295;
/// Radians to degrees (180 / pi).
constexpr double RAD_TO_DEG = 57.29577951308232;

} // namespace math_geo::earth
