#include <math_geo/simplify_track.h>

#include <math_geo/geo_tools.h>

#include "segment_cross_track.h"

#include <uni_base/uni_assert.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace math_geo {

namespace {

/// Metres on a sphere of @p radius from the comparable value of the cross-track strategy.
double toMetres(double comparable, double radius)
{
    return 2.0 * std::asin(std::sqrt(comparable)) * radius;
}

// The metres grow with the comparable value, so a vertex whose value lies clearly below that of the
// farthest one so far cannot replace it and is not converted. The margin covers rounding in the
// conversion many times over; within it, the metres decide as for every other vertex.
constexpr double SAME_VALUE_MARGIN = 1.0 - 1e-12;

/// Index (within the range) of the vertex farthest from the chord of the range, measured as the
/// cross-track distance in metres on the Gaussian sphere at the chord's mean latitude, or 0 when every
/// vertex lies closer than the tolerance. The earliest of equal maxima wins; a maximum equal to the
/// tolerance splits.
std::size_t splitIndex(const GeoPosition* range, std::size_t n, double tolerance)
{
    if (n < 3)
        return 0;
    const GeoPosition& first = range[0];
    const GeoPosition& last = range[n - 1];
    const detail::SegmentCrossTrack cross_track(first, last);
    const double radius = gaussianRadius((first.latitude + last.latitude) / 2.0);

    std::size_t farthest = 1;
    double farthest_comparable = cross_track.apply(range[1]);
    double largest = toMetres(farthest_comparable, radius);
    for (std::size_t i = 2; i + 1 < n; ++i) {
        const double comparable = cross_track.apply(range[i]);
        if (!(comparable > farthest_comparable * SAME_VALUE_MARGIN))
            continue;
        const double d = toMetres(comparable, radius);
        if (d > largest) {
            largest = d;
            farthest = i;
            farthest_comparable = comparable;
        }
    }
    if (tolerance > largest)
        return 0;
    return farthest;
}

/// Ramer-Douglas-Peucker over poly[0, n) into out[0, n), returning the number written. Ranges are
/// visited depth first, left before right, so the kept vertices come out in order: the first vertex,
/// then the end of every range that needs no further split. This is what the textbook recursion
/// writes, without its call depth, which reaches n on adversarial tracks.
///
/// The ends of the right-hand ranges still to visit are kept at the back of the output, one index in a
/// slot: pending ends and written vertices are distinct vertices of the track, so both together never
/// need more than n slots, and the output stays the only allocation.
std::size_t simplifyInto(const GeoPosition* poly, std::size_t n, double tolerance, GeoPosition* out)
{
    std::size_t written = 0;
    std::size_t pending = 0;
    out[written++] = poly[0];
    std::size_t start = 0;
    std::size_t end = n - 1;
    for (;;) {
        const std::size_t idx = splitIndex(poly + start, end - start + 1, tolerance);
        if (idx != 0) {
            ++pending;
            out[n - pending].latitude = static_cast<double>(end); // exact: n is far below 2^53
            end = start + idx;
            continue;
        }
        out[written++] = poly[end];
        if (pending == 0)
            break;
        start = end;
        end = static_cast<std::size_t>(out[n - pending].latitude);
        --pending;
    }
    return written;
}

} // namespace

std::vector<GeoPosition> simplifyTrack(const std::vector<GeoPosition>& poly, double tolerance)
{
    if (poly.size() <= 2)
        return poly;
    std::vector<GeoPosition> out(poly.size());
    const std::size_t num_written = simplifyInto(poly.data(), poly.size(), tolerance, out.data());
    UNI_ASSERT(num_written <= poly.size());
    out.resize(num_written);
    return out;
}

} // namespace math_geo
