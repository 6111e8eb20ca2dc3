#pragma once

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>
#include <math_geo/projection_plane.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace ferrin {
class ScalarChannel;
}

namespace om_test {

/// A site on a proving ground; the reference planes of the tests sit here.
const math_geo::GeoPosition SITE(48.2, 11.6);

/// A reference plane at SITE in X_FRONT_Y_LEFT.
math_geo::ProjectionPlane sitePlane(double rotation = 0.0);

/// A synchronous host-side channel starting at 0 s with @p rate samples per second.
std::shared_ptr<ferrin::ScalarChannel> makeChannel(double rate, std::vector<double> values);

/// Distance in metres between two positions; small numbers only.
double metres(const math_geo::GeoPosition& a, const math_geo::GeoPosition& b);

::testing::AssertionResult near(const math_geo::Point2D& actual, const math_geo::Point2D& expected,
                                double tolerance = 1e-9);

} // namespace om_test
