// The plane's scales after any walk of its centre: those of the radii at the last one.
#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>
#include <math_geo/projection_plane.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using math_geo::GeoPosition;
using math_geo::ProjectionPlane;

struct CentreWalk
{
    const char* name;
    std::vector<GeoPosition> centres;
};

class ProjectionPlaneCentreWalk : public ::testing::TestWithParam<CentreWalk>
{};

// However the centre got where it is, the scales are those of the radii there, to the bit.
TEST_P(ProjectionPlaneCentreWalk, ScalesAreThoseOfTheLastCentreExactly)
{
    ProjectionPlane plane(GeoPosition(0, 0), 15.0);
    for (const GeoPosition& centre : GetParam().centres)
        plane.setCenter(centre);
    const double latitude = GetParam().centres.back().latitude;
    const double phi = latitude * math_geo::earth::DEG_TO_RAD;
    EXPECT_EQ(plane.getLatitudeScale(), math_geo::meridianRadius(latitude) * math_geo::earth::DEG_TO_RAD);
    EXPECT_EQ(plane.getLongitudeScale(),
              std::cos(phi) * math_geo::primeVerticalRadius(latitude) * math_geo::earth::DEG_TO_RAD);
    EXPECT_EQ(plane.getCenter(), GetParam().centres.back());
}

INSTANTIATE_TEST_SUITE_P(
    Walks, ProjectionPlaneCentreWalk,
    ::testing::Values(CentreWalk{"OnlyTheLongitudeMovesFromTheEquator", {{0, 11}, {0, 12.5}}},
                      CentreWalk{"OnlyTheLongitudeMoves", {{48.1, 11}, {48.1, 11.0001}, {48.1, 11.0002}}},
                      CentreWalk{"LatitudeMovesAndComesBack", {{48.1, 11}, {48.2, 11}, {48.1, 11.5}}},
                      CentreWalk{"SouthToNorth", {{-33.9, 18.4}, {-33.9, 18.5}, {52.5, 13.4}}},
                      CentreWalk{"NegativeZeroLatitude", {{10, 0}, {-0.0, 5}}}),
    [](const ::testing::TestParamInfo<CentreWalk>& info) { return info.param.name; });

} // namespace
