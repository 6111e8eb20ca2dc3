#include "setup_fixture.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/locator.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <lum_data/recording_channels.h>
#include <lum_import/importers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace om_test {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;

std::shared_ptr<ferrin::ScalarChannel> ListChannelFetcher::findById(channel_config::ChannelID id)
{
    for (const auto& channel : channels)
        if (channel->getChannelId() == id)
            return channel;
    return nullptr;
}

std::shared_ptr<ferrin::ScalarChannel> ListChannelFetcher::findByName(std::string name)
{
    for (const auto& channel : channels)
        if (channel->getLongName() == name)
            return channel;
    return nullptr;
}

RecordingChannels::RecordingChannels(std::uint32_t node)
{
    std::string csv = "time [s],latitude [deg],longitude [deg],heading [deg],speed [km/h],fix_quality\n";
    for (int i = 0; i < 200; ++i)
        csv += std::to_string(i * 0.01) + "," + std::to_string(47.995 + i * 1e-6) + ",10.245," +
               std::to_string(i * 0.1) + ",50.0,4\n";
    const lum::import::ImportResult imported = lum::import::importCsvText(csv);
    EXPECT_TRUE(imported) << imported.error;
    lum::data::RecordingChannelOptions options;
    options.node_id = node;
    m_channels = lum::data::makeRecordingChannels(imported.recording, m_config, m_regions, options);
}

std::shared_ptr<ferrin::ScalarChannel> RecordingChannels::byName(const std::string& name) const
{
    for (const auto& channel : m_channels)
        if (channel->getName() == name)
            return channel;
    ADD_FAILURE() << "no channel " << name;
    return nullptr;
}

namespace {

class Draw
{
public:
    explicit Draw(std::uint32_t seed) : m_engine(seed) {}
    double real(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_engine); }
    bool chance(double p) { return real(0.0, 1.0) < p; }
    template <typename T>
    const T& pick(const std::vector<T>& list)
    {
        return list.at(static_cast<std::size_t>(integer(0, static_cast<int>(list.size()) - 1)));
    }

private:
    std::mt19937 m_engine;
};

const std::vector<CoordinateSystem> NAMED_SYSTEMS = {CoordinateSystem::X_RIGHT_Y_FRONT,
                                                     CoordinateSystem::X_FRONT_Y_LEFT,
                                                     CoordinateSystem::DIN70000, CoordinateSystem::SAE};

/// Millimetres, so that a point given in the plane survives the twelve digits exactly and
/// the positions derived from it come out the same after a read.
double millimetres(Draw& draw, double low, double high)
{
    return std::round(draw.real(low, high) * 1000.0) / 1000.0;
}

GeoPosition near(Draw& draw, const GeoPosition& site)
{
    return GeoPosition(site.latitude + draw.real(-0.002, 0.002), site.longitude + draw.real(-0.003, 0.003));
}

void placeObject(Draw& draw, overmap::PositionObject& object, const GeoPosition& site,
                 const std::vector<std::shared_ptr<ferrin::ScalarChannel>>& channels)
{
    object.setName("object " + std::to_string(object.getId()));
    object.setColor(draw.chance(0.5) ? "#ff8800" : "#0055aa");
    // SAE is a label without conversion: a car, whose antenna offset is converted, or a
    // parent, whose children are, cannot use it.
    CoordinateSystem system = draw.pick(NAMED_SYSTEMS);
    if (system == CoordinateSystem::SAE && dynamic_cast<overmap::Car*>(&object) != nullptr)
        system = CoordinateSystem::DIN70000;
    object.setCoordinateSystem(system);
    if (draw.chance(0.5))
        object.setXYPosition(
            Point2D(draw.real(-200, 200), draw.real(-200, 200), overmap::defaultPlaneCoordinateSystem()));
    else
        object.setGeoPosition(near(draw, site));
    object.setHeading(draw.real(0.0, 359.0));
    if (!channels.empty() && draw.chance(0.3)) {
        object.setLatitudeChannel(channels.at(0));
        object.setLongitudeChannel(channels.at(1));
        if (draw.chance(0.5))
            object.setHeadingChannel(channels.at(2));
    }
    const int extra = draw.integer(0, 3);
    for (int i = 0; i < extra; ++i)
        object.addPoi({Point2D(draw.real(-3, 3), draw.real(-2, 2), object.localCoordinateSystem()),
                       "poi " + std::to_string(i)});
}

} // namespace

void generateSetup(overmap::ObjectManager& manager, std::uint32_t seed,
                   const std::vector<std::shared_ptr<ferrin::ScalarChannel>>& channels)
{
    Draw draw(seed);
    // Plane centre and rotation on round numbers: the plane comes back exactly, and so do
    // the positions derived from points given in it.
    const GeoPosition site(47.995 + millimetres(draw, -1, 1), 10.245 + millimetres(draw, -1, 1));
    manager.setDescription("generated setup " + std::to_string(seed));
    manager.setObjectsDescription(draw.chance(0.5) ? "objects & <more>" : "");
    manager.setViewDescription("view \"" + std::to_string(seed) + "\"");
    math_geo::ProjectionPlane plane = *manager.getReferencePlane();
    plane.setCenter(site);
    plane.setRotation(millimetres(draw, -30, 30));
    manager.setReferencePlane(plane);
    manager.setUsePlaneDefinitionPoints(draw.chance(0.5));
    const CoordinateSystem plane_system = overmap::defaultPlaneCoordinateSystem();
    overmap::PlaneDefinition definition{near(draw, site), near(draw, site),
                                        Point2D(draw.real(-50, 50), draw.real(-50, 50), plane_system),
                                        Point2D(draw.real(-50, 50), draw.real(-50, 50), plane_system)};
    manager.setPlaneDefinition(definition);
    manager.setMapSetupView({near(draw, site), draw.real(0.5, 4), draw.real(0, 90)});
    overmap::AerialImage image;
    image.definition = {near(draw, site), near(draw, site),
                        Point2D(draw.real(0, 900), draw.real(0, 900), plane_system),
                        Point2D(draw.real(0, 900), draw.real(0, 900), plane_system)};
    image.imagePath = draw.chance(0.5) ? "images/ground.png" : "";
    manager.setAerialImage(image);

    const math_geo::ProjectionPlane* reference = manager.getReferencePlane();
    std::vector<std::shared_ptr<overmap::PositionObject>> objects;
    std::vector<std::shared_ptr<overmap::GeoObject>> all;
    const int cars = draw.integer(1, 3);
    for (int i = 0; i < cars; ++i) {
        auto car = std::make_shared<overmap::Car>(reference);
        placeObject(draw, *car, site, channels);
        const double length = draw.real(3.5, 5.0);
        const double width = draw.real(1.6, 2.0);
        const CoordinateSystem local = car->localCoordinateSystem();
        car->setContour({Point2D(length / 2, width / 2, local), Point2D(-length / 2, width / 2, local),
                         Point2D(-length / 2, -width / 2, local), Point2D(length / 2, -width / 2, local)});
        if (!car->isXYPosition())
            car->setGpsOffset(Point2D(draw.real(-1, 1), draw.real(-0.5, 0.5), local));
        objects.push_back(car);
    }
    const int cones = draw.integer(0, 8);
    for (int i = 0; i < cones; ++i) {
        auto cone = std::make_shared<overmap::Cone>(reference);
        placeObject(draw, *cone, site, channels);
        objects.push_back(cone);
    }
    auto locator = std::make_shared<overmap::Locator>(reference);
    placeObject(draw, *locator, site, channels);
    locator->clearQualityPositions();
    for (int i = 0; i < 3; ++i)
        locator->addQualityPosition({i * 1.0, i + 0.5, channels.empty() ? nullptr : channels.back()});
    objects.push_back(locator);

    // Some cones ride on the first car, placed in its frame.
    for (std::size_t i = 1; i < objects.size(); ++i) {
        auto& object = objects[i];
        if (object->hasPositionChannels() || object == locator || !draw.chance(0.3))
            continue;
        object->setReferenceObject(objects.front());
        object->setXYPosition(
            Point2D(draw.real(-10, 10), draw.real(-5, 5), objects.front()->localCoordinateSystem()));
    }
    for (auto& object : objects) {
        manager.addObject(object);
        all.push_back(object);
    }
    manager.setLocator(locator);

    auto path = std::make_shared<overmap::TrackPath>(reference);
    std::vector<GeoPosition> vertices;
    GeoPosition at = near(draw, site);
    const int count = draw.integer(0, 60);
    for (int i = 0; i < count; ++i) {
        at = GeoPosition(at.latitude + draw.real(-1e-5, 1e-5), at.longitude + draw.real(-1e-5, 1e-5));
        vertices.push_back(at);
    }
    path->setPositions(vertices);
    path->setName("path");
    path->setWidth(draw.real(2, 6));
    path->setOrigin(draw.real(0, 1));
    manager.addObject(path);
    all.push_back(path);

    auto straight = std::make_shared<overmap::TrackLine>(reference);
    if (draw.chance(0.5))
        straight->setStartXY(Point2D(millimetres(draw, -80, 80), millimetres(draw, -80, 80),
                                     reference->getXYCoordinateSystem()));
    else
        straight->setStart(near(draw, site));
    if (draw.chance(0.5))
        straight->setEndXY(Point2D(millimetres(draw, -80, 80), millimetres(draw, -80, 80),
                                   reference->getXYCoordinateSystem()));
    else
        straight->setEnd(near(draw, site));
    straight->setName("straight");
    manager.addObject(straight);
    all.push_back(straight);

    auto arc = std::make_shared<overmap::TrackLine>(reference);
    arc->setStart(near(draw, site));
    arc->setEnd(near(draw, site));
    arc->setRadius(draw.real(20, 80));
    arc->setArcLength(draw.real(10, 100));
    arc->setArcBearing(draw.real(0, 359));
    arc->setName("arc");
    manager.addObject(arc);
    all.push_back(arc);

    const int calculations = draw.integer(0, 5);
    for (int i = 0; i < calculations; ++i) {
        auto calculation = std::make_shared<overmap::Calculation>();
        calculation->setName("distance " + std::to_string(i));
        calculation->setFrom(draw.pick(objects));
        calculation->setTo(draw.pick(all));
        calculation->setFromPoiIdx(static_cast<std::uint32_t>(draw.integer(0, 3)));
        calculation->setToPoiIdx(static_cast<std::uint32_t>(draw.integer(0, 3)));
        calculation->setUseFromPoi(draw.chance(0.5));
        calculation->setUseToPoi(draw.chance(0.5));
        calculation->setDistanceType(static_cast<overmap::DistanceType>(draw.integer(0, 2)));
        calculation->setTrackTarget(draw.chance(0.5) ? overmap::TrackTarget::EDGE
                                                     : overmap::TrackTarget::CENTER);
        calculation->setResultTransformation(static_cast<overmap::ResultTransformation>(draw.integer(0, 2)));
        manager.addCalculation(calculation);
    }
}

std::string writeSetup(overmap::ObjectManager& manager)
{
    std::string text;
    overmap::XmlReadWriter(&manager, nullptr).write(text);
    return text;
}

} // namespace om_test
