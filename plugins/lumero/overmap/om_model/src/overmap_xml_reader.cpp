#include <om_model/overmap_xml_read_writer.h>

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/if_channel_fetcher.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>
#include <om_model/xml_elements.h>

#include "om_log.h"
#include "setup_xml_common.h"

#include <channel_config/channel_id.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <pugixml.hpp>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>
#include <xpugixml/xpugixml.h>

#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

namespace overmap {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using setup_xml::AttributeReader;
using setup_xml::valueOf;

namespace {

const char* const LOG = detail::LOG_CHANNEL;

/// The element's own text as the vertex loop needs it: a CDATA child, else the first
/// PCDATA child. Untrimmed and uncopied, since a polyline's text runs to megabytes and
/// the loop skips white space anyway.
std::string_view vertexText(const pugi::xml_node& element)
{
    for (pugi::xml_node child : element.children())
        if (child.type() == pugi::node_cdata)
            return child.value();
    for (pugi::xml_node child : element.children())
        if (child.type() == pugi::node_pcdata)
            return child.value();
    return {};
}

bool isPositionElement(const std::string& name)
{
    return name == "Car" || name == "Cone" || name == "Locator";
}

/// `positionX` and `positionY`, both required, labelled with @p system.
std::optional<Point2D> readPoint(AttributeReader& attributes, const pugi::xml_attribute& x_attribute,
                                 CoordinateSystem system)
{
    const std::optional<double> x = attributes.real(x_attribute);
    const std::optional<double> y = attributes.real("positionY");
    if (!x || !y)
        return std::nullopt;
    return Point2D(*x, *y, system);
}

std::optional<Point2D> readPoint(AttributeReader& attributes, CoordinateSystem system)
{
    return readPoint(attributes, attributes.find("positionX"), system);
}

/// `latitude` and `longitude`, both required.
std::optional<GeoPosition> readGeoPosition(AttributeReader& attributes)
{
    const std::optional<double> latitude = attributes.real("latitude");
    const std::optional<double> longitude = attributes.real("longitude");
    if (!latitude || !longitude)
        return std::nullopt;
    return GeoPosition(*latitude, *longitude);
}

/// A plane point element; false, and nothing changed, unless all four numbers are read.
bool readPlanePoint(const pugi::xml_node& element, GeoPosition& position, Point2D& point)
{
    AttributeReader attributes(element);
    const std::optional<GeoPosition> read_position = readGeoPosition(attributes);
    const std::optional<Point2D> read_point = readPoint(attributes, defaultPlaneCoordinateSystem());
    if (!read_position || !read_point)
        return false;
    position = *read_position;
    point = *read_point;
    return true;
}

class Reader
{
public:
    Reader(ObjectManager& manager, IfChannelFetcher* fetcher) : m_manager(manager), m_channel_fetcher(fetcher)
    {}

    bool readView(const pugi::xml_node& view);
    bool readGeoObjects(const pugi::xml_node& objects);
    bool readTracks(const pugi::xml_node& tracks);
    bool readCalculations(const pugi::xml_node& calculations);

private:
    bool readPositionObject(const pugi::xml_node& element);
    bool readReferences(const pugi::xml_node& objects);
    bool readLineEnds(const pugi::xml_node& element, TrackLine& line, AttributeReader& attributes);
    void readCalculation(const pugi::xml_node& element);
    std::optional<PositionObject::ChannelPtr> lookUpChannel(const AttributeReader& attributes,
                                                            const std::string& prefix);

    ObjectManager& m_manager;
    IfChannelFetcher* m_channel_fetcher;
};

bool Reader::readView(const pugi::xml_node& view)
{
    AttributeReader attributes(view);
    if (std::optional<std::string> description = attributes.text("description"))
        m_manager.setViewDescription(*description);
    const std::optional<GeoPosition> center = readGeoPosition(attributes);
    const std::optional<double> rotation = attributes.real("rotation");
    if (!center || !rotation)
        return false;
    math_geo::ProjectionPlane plane = *m_manager.getReferencePlane();
    plane.setCenter(*center);
    plane.setRotation(*rotation);
    m_manager.setReferencePlane(plane);
    m_manager.setUsePlaneDefinitionPoints(attributes.text("usePlaneDefinitionPoints") == "true");

    // Each part is stored as soon as it is read: a later bad part ends the view but
    // keeps what came before.
    PlaneDefinition definition = m_manager.getPlaneDefinition();
    if (pugi::xml_node point = view.child("PrimaryPlanePoint")) {
        if (!readPlanePoint(point, definition.primaryPosition, definition.primaryPoint))
            return false;
        m_manager.setPlaneDefinition(definition);
    }
    if (pugi::xml_node point = view.child("SecondaryPlanePoint")) {
        if (!readPlanePoint(point, definition.secondaryPosition, definition.secondaryPoint))
            return false;
        m_manager.setPlaneDefinition(definition);
    }
    if (pugi::xml_node map_view = view.child("MapSetupView")) {
        AttributeReader map_attributes(map_view);
        const std::optional<GeoPosition> map_center = readGeoPosition(map_attributes);
        const std::optional<double> map_rotation = map_attributes.real("rotation");
        const std::optional<double> scale = map_attributes.real("mapScaleS");
        if (!map_attributes.ok())
            return false;
        MapSetupView map;
        map.center = *map_center;
        map.rotation = *map_rotation;
        map.scale = *scale;
        m_manager.setMapSetupView(map);
    }
    if (pugi::xml_node image_node = view.child("BGImage")) {
        AerialImage image = m_manager.getAerialImage();
        image.imagePath = xpugi::getAttribute(image_node, "imagePath");
        m_manager.setAerialImage(image);
        if (pugi::xml_node point = image_node.child("PrimaryPlanePoint")) {
            if (!readPlanePoint(point, image.definition.primaryPosition, image.definition.primaryPoint))
                return false;
            m_manager.setAerialImage(image);
        }
        if (pugi::xml_node point = image_node.child("SecondaryPlanePoint")) {
            if (!readPlanePoint(point, image.definition.secondaryPosition, image.definition.secondaryPoint))
                return false;
            m_manager.setAerialImage(image);
        }
    }
    return true;
}

/// Nothing when the group's ID attribute is missing; else the channel found, or null.
std::optional<PositionObject::ChannelPtr> Reader::lookUpChannel(const AttributeReader& attributes,
                                                                const std::string& prefix)
{
    const std::optional<std::string> id_text = attributes.text((prefix + "ChannelID").c_str());
    if (!id_text)
        return std::nullopt;
    // Domain and short name are written for people reading the file; the look-up needs
    // only id and long name.
    const std::string long_name = attributes.text((prefix + "ChannelLongName").c_str()).value_or("");
    if (!UNI_ASSERT(m_channel_fetcher != nullptr))
        return nullptr;
    const std::optional<channel_config::ChannelID> id = channel_config::ChannelID::fromString(*id_text);
    if (!id) {
        UNI_LOG(LOG, SEV_DETAIL) << "Can't get channel " << *id_text;
        return nullptr;
    }
    if (PositionObject::ChannelPtr channel = m_channel_fetcher->findById(*id))
        return channel;
    UNI_LOG(LOG, SEV_NOTE) << "Can't find channel by id " << *id_text;
    if (!long_name.empty()) {
        if (PositionObject::ChannelPtr channel = m_channel_fetcher->findByName(long_name))
            return channel;
        UNI_LOG(LOG, SEV_NOTE) << "Can't find channel by name " << long_name;
    }
    return nullptr;
}

bool Reader::readPositionObject(const pugi::xml_node& element)
{
    AttributeReader attributes(element);
    const std::optional<std::int32_t> id = attributes.number<std::int32_t>("objectId");
    if (!id)
        return false;
    const std::string type = element.name();
    const math_geo::ProjectionPlane* plane = m_manager.getReferencePlane();
    std::shared_ptr<PositionObject> object;
    if (type == "Car")
        object = std::make_shared<Car>(*id, plane);
    else if (type == "Cone")
        object = std::make_shared<Cone>(*id, plane);
    else
        object = std::make_shared<Locator>(*id, plane);

    if (std::optional<std::string> name = attributes.text("name"))
        object->setName(*name);
    if (std::optional<std::string> color = attributes.text("color"))
        object->setColor(*color);
    if (std::optional<std::string> text = attributes.text("coordinateSystem")) {
        if (const std::optional<CoordinateSystem> system = valueOf(setup_xml::COORDINATE_SYSTEMS, *text)) {
            object->setCoordinateSystem(*system);
        } else {
            UNI_LOG(LOG, SEV_DETAIL) << "Unsupported coordinate system '" << *text << "' - using default";
            attributes.fail();
        }
    }
    // A bad position or heading fails the element but keeps the object.
    if (const pugi::xml_attribute x = attributes.find("positionX")) {
        if (std::optional<Point2D> point = readPoint(attributes, x, defaultPlaneCoordinateSystem()))
            object->setXYPosition(*point);
    } else if (std::optional<GeoPosition> position = readGeoPosition(attributes)) {
        object->setGeoPosition(*position);
    }
    if (std::optional<double> heading = attributes.real("heading"))
        object->setHeading(*heading);
    if (auto channel = lookUpChannel(attributes, "latitude"))
        object->setLatitudeChannel(*channel);
    if (auto channel = lookUpChannel(attributes, "longitude"))
        object->setLongitudeChannel(*channel);
    if (auto channel = lookUpChannel(attributes, "heading"))
        object->setHeadingChannel(*channel);

    bool result = attributes.ok();
    if (auto car = std::dynamic_pointer_cast<Car>(object)) {
        if (const pugi::xml_attribute x = attributes.find("gpsOffsetX")) {
            const std::optional<double> offset_x = attributes.real(x);
            const std::optional<double> offset_y = attributes.real("gpsOffsetY");
            if (!offset_x || !offset_y)
                return false; // the car is dropped
            car->setGpsOffset(Point2D(*offset_x, *offset_y, car->localCoordinateSystem()));
        }
        if (pugi::xml_node contour = element.child("Contour"))
            result = xml::readContour(contour, *car) && result;
    }
    if (pugi::xml_node pois = element.child("Pois"))
        result = xml::readPois(pois, *object) && result;
    if (auto locator = std::dynamic_pointer_cast<Locator>(object)) {
        locator->clearQualityPositions();
        for (pugi::xml_node quality : element.children("QualityPosition")) {
            AttributeReader quality_attributes(quality);
            QualityPosition entry;
            // Limits follow strtod: whatever prefix converts counts, nothing gives 0.
            entry.lowerLimit = std::strtod(quality.attribute("lowerLimit").as_string(), nullptr);
            entry.upperLimit = std::strtod(quality.attribute("upperLimit").as_string(), nullptr);
            if (auto channel = lookUpChannel(quality_attributes, "quality"))
                entry.channel = *channel;
            locator->addQualityPosition(entry);
        }
    }
    m_manager.addObject(object);
    return result;
}

bool Reader::readReferences(const pugi::xml_node& objects)
{
    for (pugi::xml_node element : objects.children()) {
        if (element.type() != pugi::node_element || !isPositionElement(element.name()))
            continue;
        AttributeReader attributes(element);
        const pugi::xml_attribute reference = attributes.find("referenceObjectID");
        if (!reference)
            continue;
        const pugi::xml_attribute object_id = attributes.find("objectId");
        const std::optional<std::int32_t> id = attributes.number<std::int32_t>(object_id);
        const std::optional<std::int32_t> parent_id = attributes.number<std::int32_t>(reference);
        if (!id || !parent_id)
            return false; // an id that is no number ends the pass without a line
        const std::shared_ptr<PositionObject> object = m_manager.findPositionObjectById(*id);
        const std::shared_ptr<PositionObject> parent = m_manager.findPositionObjectById(*parent_id);
        if (!object || !parent) {
            UNI_LOG(LOG, SEV_NOTE) << "Error parsing reference object for object ID " << object_id.value();
            return false;
        }
        // The file's numbers are already in the parent's frame: they win over the
        // conversion that hanging the object on its parent does. They were read in the
        // plane's system, so setXYPosition reports and relabels them.
        const Point2D saved = object->getXYPosition();
        object->setReferenceObject(parent);
        object->setXYPosition(saved);
    }
    return true;
}

bool Reader::readGeoObjects(const pugi::xml_node& objects)
{
    AttributeReader attributes(objects);
    m_manager.setObjectsDescription(attributes.text("description").value_or(""));
    bool result = true;
    for (pugi::xml_node element : objects.children()) {
        if (element.type() != pugi::node_element)
            continue;
        if (!isPositionElement(element.name())) {
            UNI_LOG(LOG, SEV_DETAIL) << "Unkown node in overmap config \"" << element.name() << "\"";
            result = false;
            break;
        }
        result = readPositionObject(element) && result;
    }
    if (!readReferences(objects))
        result = false;
    // A locator that cannot be read or found leaves the scene without one; that is no error.
    if (const pugi::xml_attribute locator_id = attributes.find("locatorId"))
        if (const std::optional<std::int32_t> id = attributes.number<std::int32_t>(locator_id))
            if (std::shared_ptr<GeoObject> locator = m_manager.findObjectById(*id))
                m_manager.setLocator(locator);
    return result;
}

/// Start and end of a line: by XY where those children are, else from `GPSPositions`.
/// A bad XY point counts against @p attributes; false when the positions are unusable.
bool Reader::readLineEnds(const pugi::xml_node& element, TrackLine& line, AttributeReader& attributes)
{
    const CoordinateSystem plane_system = m_manager.getReferencePlane()->getXYCoordinateSystem();
    const auto readXY = [&](const char* name, void (TrackLine::*setter)(const Point2D&)) {
        pugi::xml_node node = element.child(name);
        if (!node)
            return false;
        AttributeReader point_attributes(node);
        const std::optional<Point2D> point = readPoint(point_attributes, plane_system);
        if (!point) {
            attributes.fail();
            return false;
        }
        (line.*setter)(*point);
        return true;
    };
    const bool start_set = readXY("StartXY", &TrackLine::setStartXY);
    const bool end_set = readXY("EndXY", &TrackLine::setEndXY);
    if (start_set && end_set)
        return true;
    pugi::xml_node gps = element.child("GPSPositions");
    if (!gps) {
        UNI_LOG(LOG, SEV_DETAIL) << "TrackLine XML node does not containt "
                                 << "GPSPositions"
                                 << " node";
        return false;
    }
    const std::vector<GeoPosition> positions = xml::parsePositionText(vertexText(gps));
    if (positions.size() != 2) {
        UNI_LOG(LOG, SEV_DETAIL) << "TrackLine XML node does not containt exactly 2 positions";
        return false;
    }
    if (!start_set)
        line.setStart(positions[0]);
    if (!end_set)
        line.setEnd(positions[1]);
    return true;
}

bool Reader::readTracks(const pugi::xml_node& tracks)
{
    constexpr std::pair<const char*, void (Track::*)(double)> NUMBERS[] = {
        {"trackWidth", &Track::setWidth},
        {"trackOrigin", &Track::setOrigin},
        {"trackRadius", &Track::setRadius},
        {"trackArcLength", &Track::setArcLength},
        {"trackArcBearing", &Track::setArcBearing}};
    bool result = true;
    for (pugi::xml_node element : tracks.children()) {
        if (element.type() != pugi::node_element)
            continue;
        const std::string type = element.name();
        if (type != "TrackPath" && type != "TrackLine") {
            UNI_LOG(LOG, SEV_DETAIL) << "Only Track XML items allowed";
            return false;
        }
        AttributeReader attributes(element);
        const std::optional<std::int32_t> id = attributes.number<std::int32_t>("objectId");
        if (!id)
            return false;
        std::shared_ptr<Track> track;
        std::shared_ptr<TrackLine> line;
        if (type == "TrackPath")
            track = std::make_shared<TrackPath>(*id, m_manager.getReferencePlane());
        else
            track = line = std::make_shared<TrackLine>(*id, m_manager.getReferencePlane());
        if (std::optional<std::string> name = attributes.text("name"))
            track->setName(*name);
        if (std::optional<std::string> color = attributes.text("color"))
            track->setColor(*color);
        if (!line)
            track->setPositions(xml::parsePositionText(vertexText(element)));
        else if (!readLineEnds(element, *line, attributes))
            return false;
        // Each number on its own: a bad one keeps its default and costs no other.
        for (const auto& [name, setter] : NUMBERS)
            if (std::optional<double> value = attributes.real(name))
                (track.get()->*setter)(*value);
        result = attributes.ok() && result;
        m_manager.addObject(track);
    }
    return result;
}

void Reader::readCalculation(const pugi::xml_node& element)
{
    AttributeReader attributes(element);
    const std::optional<std::int32_t> id = attributes.number<std::int32_t>("calculationId");
    if (!id)
        return;
    // Made before the rest is read: a calculation dropped below has taken its id all the same.
    auto calculation = std::make_shared<Calculation>(*id);
    const std::optional<std::int32_t> from_id = attributes.number<std::int32_t>("fromId");
    const std::optional<std::int32_t> to_id = attributes.number<std::int32_t>("toId");
    const std::optional<std::uint32_t> from_poi = attributes.number<std::uint32_t>("fromPoiIdx", 0);
    const std::optional<std::uint32_t> to_poi = attributes.number<std::uint32_t>("toPoiIdx", 0);
    if (!attributes.ok())
        return;
    calculation->setName(attributes.text("name").value_or(""));
    if (auto from = m_manager.findPositionObjectById(*from_id))
        calculation->setFrom(from);
    if (auto to = m_manager.findObjectById(*to_id))
        calculation->setTo(to);
    calculation->setFromPoiIdx(*from_poi);
    calculation->setToPoiIdx(*to_poi);
    const auto flag = [&](const char* name) {
        const std::optional<std::string> text = attributes.text(name);
        return !text || boost::algorithm::to_lower_copy(*text) == "true";
    };
    calculation->setUseFromPoi(flag("useFromPoi"));
    calculation->setUseToPoi(flag("useToPoi"));
    const auto upper = [&](const char* name) {
        return boost::algorithm::to_upper_copy(attributes.text(name).value_or(""));
    };
    calculation->setDistanceType(
        valueOf(setup_xml::DISTANCE_TYPES, upper("distanceType")).value_or(DistanceType::EUCLIDEAN));
    calculation->setTrackTarget(
        valueOf(setup_xml::TRACK_TARGETS, upper("trackTarget")).value_or(TrackTarget::CENTER));
    if (auto transformation = valueOf(setup_xml::RESULT_TRANSFORMATIONS, upper("resultTransformation")))
        calculation->setResultTransformation(*transformation);
    m_manager.addCalculation(calculation);
}

bool Reader::readCalculations(const pugi::xml_node& calculations)
{
    for (pugi::xml_node element : calculations.children()) {
        if (element.type() != pugi::node_element)
            continue;
        if (std::string(element.name()) != "Calculation") {
            UNI_LOG(LOG, SEV_DETAIL) << "Unkown node in overmap config in <Calculations> \"" << element.name()
                                     << "\"";
            return false;
        }
        // A calculation that cannot be read is dropped quietly: it only describes a
        // result, and the scene stays whole without it.
        readCalculation(element);
    }
    return true;
}

} // namespace

bool XmlReadWriter::read(const std::string& text)
{
    if (!UNI_ASSERT(m_manager != nullptr))
        return false;
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size()))
        return false;
    const pugi::xml_node root = document.document_element();
    if (!root)
        return false;

    m_manager->clear();
    m_manager->setDescription(xpugi::getAttribute(root, "description"));
    Reader reader(*m_manager, m_channel_fetcher);
    bool result = true;
    // The view first: it sets the reference plane every object is placed on.
    if (pugi::xml_node view = root.child("View"))
        result = reader.readView(view);
    if (pugi::xml_node objects = root.child("GeoObjects"))
        result = reader.readGeoObjects(objects) && result;
    if (pugi::xml_node tracks = root.child("Tracks"))
        result = reader.readTracks(tracks) && result;
    if (pugi::xml_node calculations = root.child("Calculations"))
        result = reader.readCalculations(calculations) && result;
    return result;
}

} // namespace overmap
