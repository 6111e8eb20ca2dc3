#include "test_support.h"

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/data_regions_manager.h>

#include <cmath>
#include <sstream>

namespace om_test {

math_geo::ProjectionPlane sitePlane(double rotation)
{
    return math_geo::ProjectionPlane(SITE, rotation, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
}

namespace {
const std::shared_ptr<ferrin::DataRegionsManager>& regions()
{
    static const auto manager = std::make_shared<ferrin::DataRegionsManager>();
    return manager;
}

ferrin::ChannelSetup nextSetup(double rate)
{
    static std::uint32_t next_local_id = 1;
    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(1, next_local_id++);
    setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(rate, 0.0);
    return setup;
}
} // namespace

std::shared_ptr<ferrin::ScalarChannel> makeChannel(double rate, std::vector<double> values)
{
    ferrin::ChannelSetup setup = nextSetup(rate);
    const std::uint64_t stream = setup.id.toUInt64();
    return lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), regions(), stream);
}

double metres(const math_geo::GeoPosition& a, const math_geo::GeoPosition& b)
{
    return a.distanceTo(b, math_geo::DistanceMethod::HAVERSINE);
}

::testing::AssertionResult near(const math_geo::Point2D& actual, const math_geo::Point2D& expected,
                                double tolerance)
{
    if (actual.getCoordinateSystem() == expected.getCoordinateSystem() &&
        std::fabs(actual.x - expected.x) <= tolerance && std::fabs(actual.y - expected.y) <= tolerance)
        return ::testing::AssertionSuccess();
    std::ostringstream out;
    out << actual << " in system " << static_cast<int>(actual.getCoordinateSystem()) << ", expected "
        << expected << " in system " << static_cast<int>(expected.getCoordinateSystem());
    return ::testing::AssertionFailure() << out.str();
}

} // namespace om_test
