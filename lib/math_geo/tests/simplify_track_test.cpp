#include <math_geo/geo_tools.h>
#include <math_geo/simplify_track.h>

#include <boost/geometry/core/cs.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/strategies/spherical/distance_cross_track.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using math_geo::GeoPosition;
using math_geo::simplifyTrack;

using SpherePoint =
    boost::geometry::model::point<double, 2,
                                  boost::geometry::cs::spherical_equatorial<boost::geometry::degree>>;

/// Cross-track distance in metres on the Gaussian sphere at the mean latitude of the segment, the
/// measure the simplification promises to respect.
double crossTrack(const GeoPosition& p, const GeoPosition& a, const GeoPosition& b)
{
    const boost::geometry::strategy::distance::cross_track<> unit_sphere;
    const double angle =
        unit_sphere.apply(SpherePoint(p.longitude, p.latitude), SpherePoint(a.longitude, a.latitude),
                          SpherePoint(b.longitude, b.latitude));
    return angle * math_geo::gaussianRadius((a.latitude + b.latitude) / 2.0);
}

/// A drive with GPS noise: arcs and straights at 100 Hz, about 15 m/s.
std::vector<GeoPosition> noisyDrive(std::size_t n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::vector<GeoPosition> out;
    out.reserve(n);
    GeoPosition p(48.0, 11.0);
    double heading = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        heading += (i / 500) % 3 == 0 ? 0.0 : 0.3;
        p = math_geo::destinationPoint(p, heading, 0.15);
        const GeoPosition noisy = math_geo::destinationPoint(p, noise(rng) * 3600.0, std::fabs(noise(rng)));
        out.push_back(noisy);
    }
    return out;
}

/// Every input vertex lies within the tolerance of the kept polyline segment that spans it.
void expectSimplificationInvariants(const std::vector<GeoPosition>& in, const std::vector<GeoPosition>& out,
                                    double tolerance)
{
    ASSERT_GE(out.size(), std::min<std::size_t>(in.size(), 2));
    EXPECT_EQ(out.front(), in.front());
    EXPECT_EQ(out.back(), in.back());
    std::size_t next_kept = 1;
    std::size_t segment_start = 0;
    for (std::size_t i = 1; i < in.size() && next_kept < out.size(); ++i) {
        const bool kept =
            in[i].latitude == out[next_kept].latitude && in[i].longitude == out[next_kept].longitude;
        if (kept) {
            for (std::size_t j = segment_start + 1; j < i; ++j)
                ASSERT_LT(crossTrack(in[j], in[segment_start], in[i]), tolerance * (1 + 1e-9))
                    << "dropped vertex " << j << " strays from kept segment " << segment_start << "-" << i;
            segment_start = i;
            ++next_kept;
        }
    }
    EXPECT_EQ(next_kept, out.size()) << "kept vertices are a subsequence of the input, in order";
}

TEST(SimplifyTrackEdges, ShortListsComeBackAsTheyAre)
{
    EXPECT_TRUE(simplifyTrack({}, 1.0).empty());
    const std::vector<GeoPosition> one = {{1, 2}};
    EXPECT_EQ(simplifyTrack(one, 1.0).size(), 1u);
    const std::vector<GeoPosition> two = {{1, 2}, {1, 2}};
    const auto out = simplifyTrack(two, 1e9);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0], GeoPosition(1, 2));
}

TEST(SimplifyTrackEdges, CollinearPointsOnAMeridianCollapse)
{
    std::vector<GeoPosition> meridian;
    for (int i = 0; i <= 100; ++i)
        meridian.emplace_back(47.0 + i * 0.001, 8.0);
    const auto out = simplifyTrack(meridian, 0.01);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0], meridian.front());
    EXPECT_EQ(out[1], meridian.back());
}

TEST(SimplifyTrackEdges, ZigzagSplitsAtItsAmplitudeAndCollapsesAboveIt)
{
    // Vertices alternately on and 1 m (cross-track) east of a meridian.
    const double amplitude = 1.0;
    const double lat0 = 10.0;
    const double lat1 = 10.01;
    const double radius = math_geo::gaussianRadius((lat0 + lat1) / 2.0);
    std::vector<GeoPosition> zigzag;
    for (int i = 0; i <= 10; ++i) {
        const double lat = lat0 + (lat1 - lat0) * i / 10.0;
        const double offset =
            i % 2 == 1 ? amplitude / radius / std::cos(lat * M_PI / 180.0) * 180.0 / M_PI : 0.0;
        zigzag.emplace_back(lat, 8.0 + offset);
    }
    const double measured = crossTrack(zigzag[1], zigzag.front(), zigzag.back());
    ASSERT_NEAR(measured, amplitude, 1e-6);
    double largest = 0.0;
    for (std::size_t i = 1; i + 1 < zigzag.size(); ++i)
        largest = std::max(largest, crossTrack(zigzag[i], zigzag.front(), zigzag.back()));
    EXPECT_GT(simplifyTrack(zigzag, largest).size(), 2u) << "equality keeps the vertex";
    expectSimplificationInvariants(zigzag, simplifyTrack(zigzag, largest), largest);
    EXPECT_EQ(simplifyTrack(zigzag, 1.001).size(), 2u);
}

TEST(SimplifyTrackEdges, ThreePositionsStayThreeAtOrAboveTheTolerance)
{
    const std::vector<GeoPosition> three = {{0, 0}, {0.00001, 0.0005}, {0, 0.001}};
    const double d = crossTrack(three[1], three[0], three[2]);
    EXPECT_EQ(simplifyTrack(three, d).size(), 3u);
    EXPECT_EQ(simplifyTrack(three, d * 0.5).size(), 3u);
    EXPECT_EQ(simplifyTrack(three, d * 1.0001).size(), 2u);
}

TEST(SimplifyTrackEdges, ClosedLoopMeasuresFromItsSinglePoint)
{
    // First equals last: the chord is a point, so distance is from that point, and the farthest
    // vertex of the loop splits it.
    std::vector<GeoPosition> loop;
    for (int i = 0; i <= 36; ++i)
        loop.push_back(math_geo::destinationPoint(GeoPosition(50, 7), i * 10.0, 100.0));
    loop.front() = loop.back() = GeoPosition(50, 7);
    const auto out = simplifyTrack(loop, 150.0);
    ASSERT_EQ(out.size(), 2u) << "every vertex lies within 150 m of the single point";
    const auto split = simplifyTrack(loop, 99.0);
    EXPECT_GE(split.size(), 3u);
    expectSimplificationInvariants(loop, split, 99.0);
}

TEST(SimplifyTrackEdges, DuplicatedLastVertexFromImportIsRemoved)
{
    std::vector<GeoPosition> track = {{0, 0}, {0.001, 0}, {0.002, 0.0001}, {0.003, 0}, {0.003, 0}};
    const auto out = simplifyTrack(track, 0.02);
    EXPECT_EQ(out.size(), 4u);
    EXPECT_EQ(out.back(), GeoPosition(0.003, 0));
}

TEST(SimplifyTrackInvariants, GeneratedDrivesKeepEndsOrderAndTolerance)
{
    for (unsigned seed : {1u, 2u, 3u})
        for (double tolerance : {0.02, 0.1, 1.0, 10.0}) {
            const auto in = noisyDrive(3000, seed);
            const auto out = simplifyTrack(in, tolerance);
            EXPECT_LT(out.size(), in.size());
            expectSimplificationInvariants(in, out, tolerance);
        }
}

/// The plain recursion, every vertex measured in metres: what the library must match vertex for vertex.
std::size_t referenceSimplify(const GeoPosition* in, std::size_t n, double tolerance, GeoPosition* out)
{
    if (n == 2) {
        out[0] = in[0];
        out[1] = in[1];
        return 2;
    }
    std::size_t idx = 1;
    double largest = crossTrack(in[1], in[0], in[n - 1]);
    for (std::size_t i = 2; i + 1 < n; ++i) {
        const double d = crossTrack(in[i], in[0], in[n - 1]);
        if (d > largest) {
            largest = d;
            idx = i;
        }
    }
    if (tolerance > largest) {
        out[0] = in[0];
        out[1] = in[n - 1];
        return 2;
    }
    const std::size_t left = referenceSimplify(in, idx + 1, tolerance, out);
    const std::size_t right = referenceSimplify(in + idx, n - idx, tolerance, out + left - 1);
    return left + right - 1;
}

void expectSameAsReference(const std::vector<GeoPosition>& in, double tolerance)
{
    std::vector<GeoPosition> expected(in.size());
    expected.resize(referenceSimplify(in.data(), in.size(), tolerance, expected.data()));
    const auto out = simplifyTrack(in, tolerance);
    ASSERT_EQ(out.size(), expected.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        ASSERT_EQ(out[i].latitude, expected[i].latitude) << i;
        ASSERT_EQ(out[i].longitude, expected[i].longitude) << i;
    }
}

TEST(SimplifyTrackInvariants, SameVerticesAsThePlainRecursion)
{
    for (unsigned seed : {4u, 5u})
        for (double tolerance : {0.0, 0.02, 0.1, 0.5}) {
            SCOPED_TRACE(testing::Message() << seed << " " << tolerance);
            expectSameAsReference(noisyDrive(5000, seed), tolerance);
        }
}

TEST(SimplifyTrackInvariants, SameVerticesAsThePlainRecursionOnWildTracks)
{
    // Jumps across the globe, repeated vertices and closed sub-loops: every branch of the measure.
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> lat(-89.0, 89.0);
    std::uniform_real_distribution<double> lon(-180.0, 180.0);
    std::uniform_int_distribution<int> kind(0, 9);
    std::vector<GeoPosition> in;
    for (int i = 0; i < 3000; ++i) {
        const int k = kind(rng);
        if (k == 0 && !in.empty())
            in.push_back(in.back());
        else if (k == 1 && in.size() > 5)
            in.push_back(in[in.size() - 5]);
        else if (k < 5 && !in.empty())
            in.push_back(math_geo::destinationPoint(in.back(), lon(rng), std::fabs(lat(rng)) * 10.0));
        else
            in.emplace_back(lat(rng), lon(rng));
    }
    for (double tolerance : {0.0, 1.0, 1000.0, 1e6}) {
        SCOPED_TRACE(testing::Message() << tolerance);
        expectSameAsReference(in, tolerance);
    }
}

TEST(SimplifyTrackInvariants, IdenticalPositionsAtZeroToleranceAreAllKept)
{
    // Every distance is 0, which equals the tolerance: each range splits at its first inner vertex, so
    // the ranges nest as deep as the track is long.
    const std::vector<GeoPosition> still(2000, GeoPosition(45, 9));
    EXPECT_EQ(simplifyTrack(still, 0.0).size(), still.size());
    EXPECT_EQ(simplifyTrack(still, 1e-9).size(), 2u);
}

} // namespace
