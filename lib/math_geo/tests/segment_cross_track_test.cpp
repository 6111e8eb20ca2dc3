#include "segment_cross_track.h"

#include <math_geo/geo_tools.h>

#include <boost/geometry/strategies/spherical/distance_cross_track.hpp>
#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using math_geo::GeoPosition;
using math_geo::detail::SegmentCrossTrack;

void expectSameBits(const GeoPosition& a, const GeoPosition& b, const std::vector<GeoPosition>& points)
{
    const boost::geometry::strategy::distance::comparable::cross_track<> strategy;
    const SegmentCrossTrack segment(a, b);
    for (const GeoPosition& p : points) {
        const double expected = strategy.apply(p, a, b);
        const double got = segment.apply(p);
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(got));
        else
            ASSERT_EQ(got, expected) << a << " " << b << " " << p;
    }
}

TEST(SegmentCrossTrack, SameValueAsBoostsStrategyToTheLastBit)
{
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> lat(-90.0, 90.0);
    std::uniform_real_distribution<double> lon(-180.0, 180.0);
    std::normal_distribution<double> near(0.0, 1e-4);
    for (int s = 0; s < 300; ++s) {
        const GeoPosition a(lat(rng), lon(rng));
        const GeoPosition b = s % 3 == 0 ? GeoPosition(lat(rng), lon(rng))
                                         : GeoPosition(a.latitude + near(rng), a.longitude + near(rng));
        std::vector<GeoPosition> points = {a, b};
        for (int i = 0; i < 200; ++i) {
            const double t = i / 200.0;
            points.emplace_back(a.latitude + t * (b.latitude - a.latitude) + near(rng),
                                a.longitude + t * (b.longitude - a.longitude) + near(rng));
            points.emplace_back(lat(rng), lon(rng));
        }
        expectSameBits(a, b, points);
    }
}

TEST(SegmentCrossTrack, DegenerateSegmentMeasuresFromItsPoint)
{
    const GeoPosition a(48.2, 11.6);
    expectSameBits(a, a, {GeoPosition(48.3, 11.6), GeoPosition(-10, 170), a});
    const SegmentCrossTrack segment(a, a);
    const double metres =
        2.0 * std::asin(std::sqrt(segment.apply(GeoPosition(48.201, 11.6)))) * math_geo::gaussianRadius(48.2);
    EXPECT_NEAR(metres, a.distanceTo(GeoPosition(48.201, 11.6), math_geo::DistanceMethod::HAVERSINE), 1e-6);
}

} // namespace
