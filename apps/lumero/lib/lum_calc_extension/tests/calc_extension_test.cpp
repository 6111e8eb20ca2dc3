#include <lum_calc_extension/calculation_geometry.h>
#include <lum_calc_extension/calculation_scene.h>
#include <lum_calc_extension/qcalculation_extension.h>
#include <lum_calc_extension/result_channel.h>

#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>

#include <lum_host/qextension_module.h>

#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_line.h>

#include <uni_testing/log_capture.h>

#include <GeographicLib/Geodesic.hpp>
#include <QFile>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

namespace {

using lum::calc::QCalculationExtension;
using math_geo::GeoPosition;
using math_geo::Point2D;
using overmap::DistanceType;
using overmap::ResultTransformation;
using overmap::TrackTarget;

constexpr double DEG = 0.017453292519943295;
const GeographicLib::Geodesic& wgs84()
{
    return GeographicLib::Geodesic::WGS84();
}

GeoPosition direct(const GeoPosition& from, double azimuth, double metres)
{
    GeoPosition to;
    wgs84().Direct(from.latitude, from.longitude, azimuth, metres, to.latitude, to.longitude);
    return to;
}

/// A point of a vehicle frame (x forward, y left, metres from the antenna) on the globe.
GeoPosition atLocal(const GeoPosition& antenna, double heading, double x, double y)
{
    return direct(antenna, heading + std::atan2(-y, x) / DEG, std::hypot(x, y));
}

/// The vector from @p from to @p to in the frame of a vehicle at @p from heading @p heading.
Point2D inFrame(const GeoPosition& from, double heading, const GeoPosition& to)
{
    double s = 0.0, azimuth = 0.0, back = 0.0;
    wgs84().Inverse(from.latitude, from.longitude, to.latitude, to.longitude, s, azimuth, back);
    return Point2D(s * std::cos((azimuth - heading) * DEG), -s * std::sin((azimuth - heading) * DEG));
}

double distance(const GeoPosition& a, const GeoPosition& b)
{
    return std::hypot(inFrame(a, 0.0, b).x, inFrame(a, 0.0, b).y);
}

// --- A scene made here: a car driving north past a cone and a straight track ------------------

const GeoPosition ORIGIN(48.0, 11.0);
constexpr double HEADING = 30.0; // the car looks north-north-east while it drives north
constexpr double TRACK_EAST = 25.0;
constexpr double TRACK_WIDTH = 4.0;
const Point2D POI(3.0, 1.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
constexpr std::uint32_t NODE = 9;

GeoPosition carAt(int second)
{
    return direct(ORIGIN, 0.0, second);
}

GeoPosition conePosition()
{
    return direct(ORIGIN, 20.0, 40.0);
}

struct CalculationSpec
{
    std::int32_t id;
    std::string name;
    bool to_cone; // else to the track
    std::uint32_t from_poi;
    DistanceType type;
    TrackTarget target;
    ResultTransformation transformation;
    bool use_poi = true;
};

const std::vector<CalculationSpec> CALCULATIONS = {
    {1, "centre to cone", true, 0, DistanceType::EUCLIDEAN, TrackTarget::CENTER, ResultTransformation::AS_IS},
    {2, "poi to cone along x", true, 1, DistanceType::X, TrackTarget::CENTER, ResultTransformation::AS_IS},
    {3, "poi to cone across, inverted", true, 1, DistanceType::Y, TrackTarget::CENTER,
     ResultTransformation::INVERT},
    {4, "poi to cone across, absolute", true, 1, DistanceType::Y, TrackTarget::CENTER,
     ResultTransformation::ABSOLUTE},
    {5, "centre to track", false, 0, DistanceType::EUCLIDEAN, TrackTarget::CENTER,
     ResultTransformation::AS_IS},
    {6, "centre to track edge", false, 0, DistanceType::EUCLIDEAN, TrackTarget::EDGE,
     ResultTransformation::AS_IS},
    {8, "poi switched off", true, 1, DistanceType::EUCLIDEAN, TrackTarget::CENTER,
     ResultTransformation::AS_IS, false},
    {9, "no such poi", true, 2, DistanceType::EUCLIDEAN, TrackTarget::CENTER, ResultTransformation::AS_IS},
};

class CalculationExtensionTest : public ::testing::Test
{
protected:
    CalculationExtensionTest()
    {
        std::vector<double> latitudes, longitudes, headings;
        for (int second = 0; second <= 10; ++second) {
            latitudes.push_back(carAt(second).latitude);
            longitudes.push_back(carAt(second).longitude);
            headings.push_back(HEADING);
        }
        addChannel(1, "latitude", latitudes);
        addChannel(2, "longitude", longitudes);
        addChannel(3, "heading", headings);
    }

    void addChannel(std::uint32_t local_id, const std::string& name, std::vector<double> values)
    {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(1, local_id);
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(1.0, 0.0);
        setup.config_manager = &m_channels;
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem(name));
        lum::data::MemoryChannelOptions options;
        options.reduction_block = 4;
        m_channels.addChannel(lum::data::SyncScalarChannel::create(std::move(setup), std::move(values),
                                                                   m_regions, local_id, options));
    }

    /// The setup text of the scene; @p with_cone false leaves the cone out, as if deleted.
    std::string sceneText(bool with_cone, const std::string& first_name = CALCULATIONS[0].name)
    {
        overmap::ObjectManager manager;
        manager.getReferencePlane()->setCenter(ORIGIN);
        const math_geo::ProjectionPlane* plane = manager.getReferencePlane();
        auto car = std::make_shared<overmap::Car>(1, plane);
        car->setCoordinateSystem(math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
        car->resetPois();
        car->addPoi(overmap::Poi{POI, "Test point"});
        car->setLatitudeChannel(fetcher().findById(channel_config::ChannelID(1, 1)));
        car->setLongitudeChannel(fetcher().findById(channel_config::ChannelID(1, 2)));
        car->setHeadingChannel(fetcher().findById(channel_config::ChannelID(1, 3)));
        manager.addObject(car);
        auto cone = std::make_shared<overmap::Cone>(2, plane);
        cone->setGeoPosition(conePosition());
        if (with_cone)
            manager.addObject(cone);
        auto track = std::make_shared<overmap::TrackLine>(3, plane);
        track->setWidth(TRACK_WIDTH);
        const GeoPosition south = direct(direct(ORIGIN, 90.0, TRACK_EAST), 180.0, 50.0);
        track->setStart(south);
        track->setEnd(direct(south, 0.0, 200.0));
        manager.addObject(track);
        for (const CalculationSpec& row : CALCULATIONS) {
            auto calculation = std::make_shared<overmap::Calculation>(row.id);
            calculation->setName(row.id == 1 ? first_name : row.name);
            calculation->setFrom(car);
            calculation->setTo(row.to_cone ? std::shared_ptr<overmap::GeoObject>(cone) : track);
            calculation->setFromPoiIdx(row.from_poi);
            calculation->setUseFromPoi(row.use_poi);
            calculation->setDistanceType(row.type);
            calculation->setTrackTarget(row.target);
            calculation->setResultTransformation(row.transformation);
            manager.addCalculation(calculation);
        }
        // A cone carried 10 m ahead of the car, in the car's frame.
        auto carried = std::make_shared<overmap::Cone>(4, plane);
        carried->setReferenceObject(car);
        carried->setXYPosition(Point2D(10.0, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT));
        manager.addObject(carried);
        auto ahead = std::make_shared<overmap::Calculation>(10);
        ahead->setName("car to the cone it carries");
        ahead->setFrom(car);
        ahead->setTo(carried);
        ahead->setDistanceType(DistanceType::X);
        manager.addCalculation(ahead);
        auto still = std::make_shared<overmap::Calculation>(7);
        still->setName("cone to track");
        still->setFrom(cone);
        still->setTo(track);
        manager.addCalculation(still);
        std::string text;
        overmap::XmlReadWriter(&manager, nullptr).write(text);
        return text;
    }

    overmap_replay::ChannelListFetcher& fetcher() { return m_fetcher; }

    std::shared_ptr<ferrin::Channel> listed(std::int32_t calculation_id) const
    {
        return m_channels.channel(QCalculationExtension::resultChannelId(NODE, calculation_id));
    }

    lum::data::MemoryChannelConfigManager m_channels;
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    overmap_replay::ChannelListFetcher m_fetcher{m_channels};
    QExtensionModule m_module{"overmap", NODE};
};

/// The value that calculation @p row has with the car at its sample @p second.
double expected(const CalculationSpec& row, int second)
{
    const GeoPosition car = carAt(second);
    if (!row.to_cone)
        return row.target == TrackTarget::EDGE ? TRACK_EAST - TRACK_WIDTH / 2 : TRACK_EAST;
    if (row.type == DistanceType::EUCLIDEAN)
        return distance(car, conePosition());
    const Point2D v = inFrame(atLocal(car, HEADING, POI.x, POI.y), HEADING, conePosition());
    const double component = row.type == DistanceType::X ? v.x : v.y;
    return row.transformation == ResultTransformation::INVERT     ? -component
           : row.transformation == ResultTransformation::ABSOLUTE ? std::fabs(component)
                                                                  : component;
}

TEST_F(CalculationExtensionTest, EveryDistanceTypeTrackTargetAndTransformationMatchesTheGeodesic)
{
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    for (const CalculationSpec& row : CALCULATIONS) {
        const auto channel = std::dynamic_pointer_cast<ferrin::ScalarChannel>(listed(row.id));
        ASSERT_TRUE(channel) << row.name;
        EXPECT_EQ(channel->getName(), row.name);
        EXPECT_EQ(channel->getUnit(), "m");
        EXPECT_TRUE(channel->isUsed());
        EXPECT_EQ(channel->getChannelType(), 57) << "Calculation";
        for (const double time : {0.0, 3.5, 10.0}) {
            ferrin::Tick tick = ferrin::NO_TICK;
            EXPECT_NEAR(channel->getValueAtTime(time, &tick), expected(row, static_cast<int>(time)), 1e-3)
                << row.name << " at " << time;
            EXPECT_EQ(tick, static_cast<ferrin::Tick>(time)) << "the car's sample the value belongs to";
        }
        EXPECT_NEAR(channel->calculateValue(0.0, 10.0, ferrin::CALC_MAX),
                    std::max(expected(row, 0), expected(row, 10)), 1e-3)
            << row.name << ": monotonous over the drive";
    }
    const auto still = std::dynamic_pointer_cast<ferrin::ScalarChannel>(listed(7));
    ASSERT_TRUE(still);
    EXPECT_NEAR(still->getValueAtTime(123.0, nullptr), TRACK_EAST - 40.0 * std::sin(20.0 * DEG), 1e-3)
        << "objects that stand still give their distance at any time";
    const auto it = still->getSampleIterator(0, daq::SEEK_AT_OR_AFTER);
    ASSERT_TRUE(it->isValid());
    EXPECT_DOUBLE_EQ(*static_cast<const double*>(it->getValue()), still->getValueAtTime(0.0, nullptr));
    EXPECT_FALSE(it->next()) << "its one sample";
    EXPECT_FALSE(still->getSampleIterator(1, daq::SEEK_AT_OR_AFTER)->isValid());
}

TEST_F(CalculationExtensionTest, TimesWithoutASampleOfAnInputGiveNoValue)
{
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    const auto channel = extension.resultChannel(1);
    ASSERT_TRUE(channel);
    uni_testing::LogCapture log;
    for (const double time : {-0.5, 11.0, 500.0, std::nan("")}) {
        ferrin::Tick tick = 0;
        EXPECT_TRUE(std::isnan(channel->getValueAtTime(time, &tick))) << time;
        EXPECT_EQ(tick, ferrin::NO_TICK) << time;
        EXPECT_EQ(channel->getSampleAtTime(time), nullptr) << time;
    }
    EXPECT_TRUE(log.none("overmap")) << "the gap is seen before an object would complain about it";
    // An object carried by another has a place exactly when its carrier has one.
    const auto carried = extension.resultChannel(10);
    ASSERT_TRUE(carried);
    EXPECT_NEAR(carried->getValueAtTime(3.5, nullptr), 10.0, 1e-6);
    EXPECT_TRUE(std::isnan(carried->getValueAtTime(11.0, nullptr)));
    EXPECT_TRUE(std::isnan(channel->calculateValue(0.0, 10.0, 99)));
    EXPECT_TRUE(log.contains("lum_calc", 1, "calculateValue: unknown calculation type 99"));
    // Samples of the result are those of the car, each with the distance at its time.
    auto it = channel->getSampleIterator(4, daq::SEEK_AT_OR_AFTER);
    ASSERT_TRUE(it->isValid());
    EXPECT_EQ(it->getTimestamp(), 4u);
    EXPECT_NEAR(*static_cast<const double*>(it->getValue()), expected(CALCULATIONS[0], 4), 1e-3);
    ASSERT_TRUE(it->next());
    EXPECT_NEAR(*static_cast<const double*>(it->getValue()), expected(CALCULATIONS[0], 5), 1e-3);
}

TEST_F(CalculationExtensionTest, ARecordingStillBeingWrittenHasValuesUpToNowAndNoneBeyondItsEnd)
{
    // The car's channels as a recording in progress: five samples so far.
    std::vector<std::shared_ptr<lum::data::AsyncScalarChannel>> live;
    for (std::uint32_t local = 1; local <= 3; ++local) {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(1, local);
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(1.0, 0.0);
        setup.config_manager = &m_channels;
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem("live"));
        live.push_back(lum::data::AsyncScalarChannel::create(std::move(setup), m_regions, 10 + local));
        for (int second = 0; second < 5; ++second) {
            const GeoPosition car = carAt(second);
            live.back()->append(static_cast<ferrin::Tick>(second), local == 1   ? car.latitude
                                                                   : local == 2 ? car.longitude
                                                                                : HEADING);
        }
        live.back()->publish();
        m_channels.addChannel(live.back());
    }
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    const auto channel = extension.resultChannel(1);
    ASSERT_TRUE(channel);
    EXPECT_NEAR(channel->getValueAtTime(2.0, nullptr), expected(CALCULATIONS[0], 2), 1e-3);
    EXPECT_NEAR(channel->getValueAtTime(8.0, nullptr), expected(CALCULATIONS[0], 4), 1e-3)
        << "while recording, the newest sample is the present";
    for (const auto& input : live)
        input->finish();
    // At a new time: like an object's update, the scene answers a time it has seen from memory.
    EXPECT_TRUE(std::isnan(channel->getValueAtTime(8.5, nullptr)))
        << "once it has ended, nothing lies beyond";
    EXPECT_NEAR(channel->getValueAtTime(3.0, nullptr), expected(CALCULATIONS[0], 3), 1e-3);
}

TEST_F(CalculationExtensionTest, ReducedDataSummarisesTheResultsOfABlockOfTheClocksSamples)
{
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    const auto channel = extension.resultChannel(2);
    ASSERT_TRUE(channel);
    // Blocks of four samples: at 9.5 s the last complete one before is that of samples 4 to 7.
    double low = INFINITY, high = -INFINITY, sum = 0.0, squares = 0.0;
    for (int second = 4; second <= 7; ++second) {
        const double value = expected(CALCULATIONS[1], second);
        low = std::min(low, value);
        high = std::max(high, value);
        sum += value;
        squares += value * value;
    }
    for (const std::uint32_t kind : {ferrin::REDUCED_KIND_SAMPLES, ferrin::REDUCED_KIND_TICKS}) {
        const auto reduced = channel->getReducedValueAtTime(9.5, 1, kind, true);
        ASSERT_TRUE(reduced) << kind;
        EXPECT_NEAR(reduced->min, low, 1e-3);
        EXPECT_NEAR(reduced->max, high, 1e-3);
        EXPECT_NEAR(reduced->avg, sum / 4, 1e-3);
        EXPECT_NEAR(reduced->rms, std::sqrt(squares / 4), 1e-3);
        EXPECT_FALSE(channel->getReducedValueAtTime(3.5, 1, kind, true)) << "no complete block before";
    }
    EXPECT_NEAR(channel->calculateValue(4.0, 7.0, ferrin::CALC_AVERAGE), sum / 4, 1e-3);
    EXPECT_NEAR(channel->calculateValue(4.0, 7.0, ferrin::CALC_PEAK2PEAK), high - low, 1e-3);
    EXPECT_NEAR(channel->calculateValue(4.0, 7.0, ferrin::CALC_ACRMS),
                std::sqrt(squares / 4 - (sum / 4) * (sum / 4)), 1e-3);
}

TEST_F(CalculationExtensionTest, OfTwoCalculationsWithOneIdTheFirstHasTheChannel)
{
    std::string text = sceneText(true);
    // A copy of calculation 5 (to the track) under calculation 1's id, after all others.
    const std::size_t begin = text.find("<Calculation calculationId=\"5\"");
    ASSERT_NE(begin, std::string::npos);
    std::string copy = text.substr(begin, text.find("/>", begin) + 2 - begin);
    copy.replace(copy.find("\"5\""), 3, "\"1\"");
    text.insert(text.find("</Calculations>"), copy);
    m_module.setExtensionConfiguration(QString::fromStdString(text));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    ASSERT_TRUE(listed(1));
    EXPECT_EQ(listed(1), extension.resultChannel(1));
    EXPECT_NEAR(extension.resultChannel(1)->getValueAtTime(2.0, nullptr), expected(CALCULATIONS[0], 2), 1e-3);
}

TEST_F(CalculationExtensionTest, ASetupChangeRemovesRenamesAndKeepsChannels)
{
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    QCalculationExtension extension(m_module, m_channels, m_fetcher);
    QSignalSpy changed(&extension, &QCalculationExtension::resultChannelsChanged);
    ASSERT_TRUE(changed.isValid());
    const auto track_channel = listed(5);
    ASSERT_TRUE(track_channel);
    ASSERT_TRUE(listed(1));

    // The cone is deleted: the calculations to it lose their end and their channels.
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(false, "renamed")));
    EXPECT_EQ(changed.count(), 1);
    for (std::int32_t id : {1, 2, 3, 4, 7, 8, 9}) {
        EXPECT_EQ(listed(id), nullptr) << id;
        EXPECT_EQ(extension.resultChannel(id), nullptr) << id;
    }
    EXPECT_EQ(listed(5), track_channel) << "a calculation that stays keeps its channel";
    EXPECT_NEAR(std::dynamic_pointer_cast<ferrin::ScalarChannel>(listed(5))->getValueAtTime(2.0, nullptr),
                TRACK_EAST, 1e-3);

    // Back again, with calculation 1 renamed: a new channel under its old id and name.
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true, "renamed")));
    ASSERT_TRUE(listed(1));
    EXPECT_EQ(listed(1)->getName(), "renamed");
    const auto first = listed(1);
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true, "renamed again")));
    EXPECT_EQ(listed(1), first);
    EXPECT_EQ(first->getName(), "renamed again") << "the name follows the setup";

    // A text that does not read keeps everything as it was, and says so.
    uni_testing::LogCapture log;
    changed.clear();
    m_module.setExtensionConfiguration(QStringLiteral("<Overmap><GeoObjects>"));
    EXPECT_TRUE(log.contains("lum_calc", 1, "Unable to load overmap setup for the calculations"));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(listed(1), first);
    EXPECT_EQ(listed(5), track_channel);
}

TEST_F(CalculationExtensionTest, TheExtensionTakesItsChannelsAlongWhenItGoes)
{
    m_module.setExtensionConfiguration(QString::fromStdString(sceneText(true)));
    {
        QCalculationExtension extension(m_module, m_channels, m_fetcher);
        EXPECT_EQ(m_channels.channels().size(), 3u + 10u);
    }
    EXPECT_EQ(m_channels.channels().size(), 3u);
}

// --- The example setup over the example drives -------------------------------------------------

/// A recorded channel's value at @p time, straight from the recording.
double recorded(const lum::data::MemoryChannelConfigManager& channels, std::uint32_t node,
                std::uint32_t local, double time)
{
    const auto channel = std::dynamic_pointer_cast<ferrin::ScalarChannel>(
        channels.channel(channel_config::ChannelID(node, local)));
    return channel ? channel->getValueAtTime(time, nullptr) : std::nan("");
}

TEST(ExampleSetup, CalculationsAreChannelsWithTheDistancesOfTheRecordings)
{
    const std::string examples = LUMERO_EXAMPLES_DIR;
    const auto recordings = overmap_replay::loadRecordings(
        {examples + "/recordings/car1_drive_100hz.csv", examples + "/recordings/car2_drive_100hz.csv"});
    ASSERT_TRUE(recordings) << recordings.error;
    overmap_replay::ChannelListFetcher fetcher(*recordings.manager);
    QExtensionModule module("overmap", 3);
    ASSERT_TRUE(module.loadFromFile(QString::fromStdString(examples + "/setups/proving_ground.xml")));
    QCalculationExtension extension(module, *recordings.manager, fetcher);
    EXPECT_EQ(extension.resultChannels().size(), 6u);

    const auto channel = [&](std::int32_t id) {
        return std::dynamic_pointer_cast<ferrin::ScalarChannel>(
            recordings.manager->channel(QCalculationExtension::resultChannelId(3, id)));
    };
    ASSERT_TRUE(channel(1));
    EXPECT_EQ(channel(1)->getName(), "Gap car 1 front to car 2 front");
    ASSERT_TRUE(channel(5));
    // Cars: latitude n/1, longitude n/2, heading n/4; antenna offsets and POIs from the setup.
    const GeoPosition cone(47.998462535, 10.246339898);
    for (const double time : {20.0, 65.0, 91.37}) {
        const GeoPosition car1(recorded(*recordings.manager, 1, 1, time),
                               recorded(*recordings.manager, 1, 2, time));
        const GeoPosition car2(recorded(*recordings.manager, 2, 1, time),
                               recorded(*recordings.manager, 2, 2, time));
        const double heading1 = recorded(*recordings.manager, 1, 4, time);
        const double heading2 = recorded(*recordings.manager, 2, 4, time);
        // Front: (2.35, 0) from the centre; car 1's antenna is 0.45 m behind it, car 2's
        // 0.6 m behind and 0.1 m to the left.
        const GeoPosition front1 = atLocal(car1, heading1, 2.35 + 0.45, 0.0);
        const GeoPosition front2 = atLocal(car2, heading2, 2.35 + 0.6, -0.1);
        EXPECT_NEAR(channel(1)->getValueAtTime(time, nullptr), distance(front1, front2), 2e-3) << time;
        // Car 1 front right (2.35, -0.925) to cone 1 along car 1's x, inverted.
        const GeoPosition front_right1 = atLocal(car1, heading1, 2.35 + 0.45, -0.925);
        EXPECT_NEAR(channel(5)->getValueAtTime(time, nullptr), -inFrame(front_right1, heading1, cone).x,
                    2e-3 + 1e-5 * distance(front_right1, cone))
            << time;
    }

    // Car 2 round the hairpin: an arc of radius 50 m from the west end of its chord to the
    // east end, bulging north; its centre line is as far as car 2's centre from the circle.
    const GeoPosition west(47.998597438523, 10.245);
    const GeoPosition east(47.998597438523, 10.246339897686);
    const GeoPosition centre(west.latitude, (west.longitude + east.longitude) / 2);
    const double radius = distance(west, east) / 2;
    int on_the_arc = 0;
    for (double time = 0.0; time < 120.0; time += 0.5) {
        const GeoPosition car2(recorded(*recordings.manager, 2, 1, time),
                               recorded(*recordings.manager, 2, 2, time));
        if (!(car2.latitude > centre.latitude + 1e-5))
            continue;
        ++on_the_arc;
        const GeoPosition middle = atLocal(car2, recorded(*recordings.manager, 2, 4, time), 0.6, -0.1);
        EXPECT_NEAR(channel(4)->getValueAtTime(time, nullptr), std::fabs(distance(middle, centre) - radius),
                    5e-3)
            << time;
    }
    EXPECT_GT(on_the_arc, 5);
}

// --- Geometry of ends that the setup text cannot give: a track as the from side ---------------

TEST(CalculationGeometry, ATrackOnTheFromSideIsMeasuredTowardsTheOtherSideInItsFrame)
{
    overmap::ObjectManager manager;
    manager.getReferencePlane()->setCenter(ORIGIN);
    const math_geo::ProjectionPlane* plane = manager.getReferencePlane();
    // Two east-west tracks 4 m wide, the second 30 m north of the first, and a cone 10 m
    // north of the first, facing north.
    const auto eastWest = [&](std::int32_t id, double north) {
        auto track = std::make_shared<overmap::TrackLine>(id, plane);
        track->setWidth(TRACK_WIDTH);
        const GeoPosition middle = direct(ORIGIN, 0.0, north);
        track->setStart(direct(middle, 270.0, 100.0));
        track->setEnd(direct(middle, 90.0, 100.0));
        return track;
    };
    const auto south = eastWest(1, 0.0);
    const auto north = eastWest(2, 30.0);
    auto cone = std::make_shared<overmap::Cone>(3, plane);
    cone->setCoordinateSystem(math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    cone->setGeoPosition(direct(direct(ORIGIN, 0.0, 10.0), 90.0, 7.0));

    overmap::Calculation calculation;
    calculation.setFrom(south);
    calculation.setTo(cone);
    calculation.setDistanceType(DistanceType::X);
    auto measured = lum::calc::measure(calculation);
    ASSERT_TRUE(measured);
    EXPECT_NEAR(measured->value, 10.0, 1e-3) << "ahead of the cone's own axes, from the track to it";
    calculation.setTrackTarget(TrackTarget::EDGE);
    measured = lum::calc::measure(calculation);
    ASSERT_TRUE(measured);
    EXPECT_NEAR(measured->value, 10.0 - TRACK_WIDTH / 2, 1e-3);

    calculation.setTrackTarget(TrackTarget::CENTER);
    calculation.setTo(north);
    calculation.setDistanceType(DistanceType::EUCLIDEAN);
    measured = lum::calc::measure(calculation);
    ASSERT_TRUE(measured);
    EXPECT_NEAR(measured->value, 30.0, 1e-3);
    calculation.setDistanceType(DistanceType::X);
    measured = lum::calc::measure(calculation);
    ASSERT_TRUE(measured);
    EXPECT_NEAR(measured->value, 30.0, 1e-3) << "along the reference plane's x, forward (north)";
}

} // namespace
