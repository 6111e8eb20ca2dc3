#include "test_support.h"

#include <ferrin_core/scalar_channel.h>

#include <cmath>
#include <sstream>

namespace om_test {

math_geo::ProjectionPlane sitePlane(double rotation)
{
    return math_geo::ProjectionPlane(SITE, rotation, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
}

namespace {
// TEMPORARY until the host-side channels land.
class VectorChannel : public ferrin::ScalarChannel
{
public:
    VectorChannel(double rate, std::vector<double> values) : m_rate(rate), m_values(std::move(values)) {}
    double getValueAtTime(double time, std::uint64_t*) const override
    {
        if (time < 0 || m_values.empty())
            return std::nan("");
        const auto tick = static_cast<std::size_t>(std::floor(time * m_rate + 1e-9));
        return m_values[std::min(tick, m_values.size() - 1)];
    }

private:
    double m_rate;
    std::vector<double> m_values;
};
} // namespace

std::shared_ptr<ferrin::ScalarChannel> makeChannel(double rate, std::vector<double> values)
{
    return std::make_shared<VectorChannel>(rate, std::move(values));
}

double metres(const math_geo::GeoPosition& a, const math_geo::GeoPosition& b)
{
    return a.distanceTo(b, math_geo::DistanceMethod::HAVERSINE);
}

::testing::AssertionResult near(const math_geo::Point2D& actual, const math_geo::Point2D& expected,
                                double tolerance)
{
    if (actual.getCoordinateSystem() == expected.getCoordinateSystem() &&
        std::fabs(actual.x() - expected.x()) <= tolerance &&
        std::fabs(actual.y() - expected.y()) <= tolerance)
        return ::testing::AssertionSuccess();
    std::ostringstream out;
    out << actual << " in system " << static_cast<int>(actual.getCoordinateSystem()) << ", expected "
        << expected << " in system " << static_cast<int>(expected.getCoordinateSystem());
    return ::testing::AssertionFailure() << out.str();
}

} // namespace om_test
