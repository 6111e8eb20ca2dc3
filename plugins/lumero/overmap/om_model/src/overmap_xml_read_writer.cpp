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

#include <channel_config/channel_id.h>
#include <ferrin_core/scalar_channel.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/lexical_cast.hpp>
#include <pugixml.hpp>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>
#include <xpugixml/xpugixml.h>

#include <cstdlib>
#include <optional>
#include <string_view>

namespace overmap {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {

const char* const LOG = detail::LOG_CHANNEL;

// ---------------------------------------------------------------- shared

const char* coordinateSystemName(CoordinateSystem system)
{
    switch (system) {
    case CoordinateSystem::X_RIGHT_Y_FRONT:
        return "X_RIGHT_Y_FRONT";
    case CoordinateSystem::X_FRONT_Y_LEFT:
        return "X_FRONT_Y_LEFT";
    case CoordinateSystem::DIN70000:
        return "DIN70000";
    case CoordinateSystem::SAE:
        return "SAE";
    default:
        return nullptr;
    }
}

std::optional<CoordinateSystem> coordinateSystemFromName(const std::string& name)
{
    for (CoordinateSystem system : {CoordinateSystem::DIN70000, CoordinateSystem::SAE,
                                    CoordinateSystem::X_FRONT_Y_LEFT, CoordinateSystem::X_RIGHT_Y_FRONT})
        if (name == coordinateSystemName(system))
            return system;
    return std::nullopt;
}

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

/// Every number of the format must convert as a whole; a missing attribute reads as
/// empty text and fails like junk does.
double realAttribute(const pugi::xml_node& node, const char* name)
{
    const std::optional<double> value = xml::parseReal(xpugi::getAttribute(node, name));
    if (!value)
        throw boost::bad_lexical_cast();
    return *value;
}

template <typename T>
T numberAttribute(const pugi::xml_node& node, const char* name)
{
    return boost::lexical_cast<T>(xpugi::getAttribute(node, name));
}

// ---------------------------------------------------------------- writing

void addReal(pugi::xml_node& node, const char* name, double value)
{
    xpugi::addAttribute(node, name, xml::formatReal(value));
}

void addPoint(pugi::xml_node& node, const Point2D& point)
{
    addReal(node, "positionX", point.x);
    addReal(node, "positionY", point.y);
}

void addChannel(pugi::xml_node& node, const std::string& prefix, const PositionObject::ChannelPtr& channel)
{
    if (!channel)
        return;
    xpugi::addAttribute(node, prefix + "ChannelID", channel->getChannelId().toString());
    xpugi::addAttribute(node, prefix + "ChannelLongName", channel->getLongName());
    xpugi::addAttribute(node, prefix + "ChannelDomain", channel->getDomain());
    xpugi::addAttribute(node, prefix + "ChannelShortName", channel->getName());
}

void writePositionObject(pugi::xml_node& parent, const char* element_name, const PositionObject& object)
{
    pugi::xml_node element = parent.append_child(element_name);
    xpugi::addAttribute(element, "objectId", std::to_string(object.getId()));
    xpugi::addAttribute(element, "name", object.getName());
    xpugi::addAttribute(element, "color", object.getColor());
    if (object.isXYPosition()) {
        addPoint(element, object.getXYPosition());
    } else {
        addReal(element, "latitude", object.getGeoPosition().latitude);
        addReal(element, "longitude", object.getGeoPosition().longitude);
    }
    addReal(element, "heading", object.getHeading());
    addChannel(element, "latitude", object.getLatitudeChannel());
    addChannel(element, "longitude", object.getLongitudeChannel());
    addChannel(element, "heading", object.getHeadingChannel());
    if (object.getReferenceObject())
        xpugi::addAttribute(element, "referenceObjectID",
                            std::to_string(object.getReferenceObject()->getId()));
    if (const char* system = coordinateSystemName(object.localCoordinateSystem()))
        xpugi::addAttribute(element, "coordinateSystem", system);

    const auto* car = dynamic_cast<const Car*>(&object);
    if (car != nullptr && !object.isXYPosition()) {
        addReal(element, "gpsOffsetX", car->getGpsOffset().x);
        addReal(element, "gpsOffsetY", car->getGpsOffset().y);
    }
    xml::writePois(element, object);
    if (car != nullptr)
        xml::writeContour(element, car->getContour());
    if (const auto* locator = dynamic_cast<const Locator*>(&object)) {
        for (const QualityPosition& entry : locator->getQualityPositions()) {
            pugi::xml_node quality = element.append_child("QualityPosition");
            addReal(quality, "lowerLimit", entry.lowerLimit);
            addReal(quality, "upperLimit", entry.upperLimit);
            addChannel(quality, "quality", entry.channel);
        }
    }
}

void writeTrack(pugi::xml_node& parent, const char* element_name, const Track& track)
{
    pugi::xml_node element = parent.append_child(element_name);
    xpugi::addAttribute(element, "objectId", std::to_string(track.getId()));
    xpugi::addAttribute(element, "name", track.getName());
    xpugi::addAttribute(element, "color", track.getColor());
    addReal(element, "trackWidth", track.getWidth());
    addReal(element, "trackOrigin", track.getOrigin());
    addReal(element, "trackRadius", track.getRadius());
    addReal(element, "trackArcLength", track.getArcLength());
    addReal(element, "trackArcBearing", track.getArcBearing());

    const auto* line = dynamic_cast<const TrackLine*>(&track);
    if (line == nullptr) {
        xpugi::setText(element, xml::formatPositionText(track.getPositions()));
        return;
    }
    if (!line->isStartByXY() || !line->isEndByXY()) {
        pugi::xml_node positions = element.append_child("GPSPositions");
        xpugi::setText(positions, xml::formatPositionText(track.getPositions()));
    }
    if (line->isStartByXY()) {
        pugi::xml_node start = element.append_child("StartXY");
        addPoint(start, line->getStartPoint());
    }
    if (line->isEndByXY()) {
        pugi::xml_node end = element.append_child("EndXY");
        addPoint(end, line->getEndPoint());
    }
}

const char* distanceTypeName(DistanceType type)
{
    switch (type) {
    case DistanceType::X:
        return "X";
    case DistanceType::Y:
        return "Y";
    default:
        return "EUCLIDEAN";
    }
}

const char* resultTransformationName(ResultTransformation value)
{
    switch (value) {
    case ResultTransformation::ABSOLUTE:
        return "ABSOLUTE";
    case ResultTransformation::INVERT:
        return "INVERT";
    default:
        return "AS_IS";
    }
}

const char* boolText(bool value)
{
    return value ? "true" : "false";
}

void writeCalculation(pugi::xml_node& parent, const Calculation& calculation)
{
    pugi::xml_node element = parent.append_child("Calculation");
    xpugi::addAttribute(element, "calculationId", std::to_string(calculation.getId()));
    xpugi::addAttribute(element, "name", calculation.getName());
    if (calculation.getFrom())
        xpugi::addAttribute(element, "fromId", std::to_string(calculation.getFrom()->getId()));
    xpugi::addAttribute(element, "fromPoiIdx", std::to_string(calculation.getFromPoiIdx()));
    xpugi::addAttribute(element, "useFromPoi", boolText(calculation.useFromPoi()));
    if (calculation.getTo())
        xpugi::addAttribute(element, "toId", std::to_string(calculation.getTo()->getId()));
    xpugi::addAttribute(element, "toPoiIdx", std::to_string(calculation.getToPoiIdx()));
    xpugi::addAttribute(element, "useToPoi", boolText(calculation.useToPoi()));
    xpugi::addAttribute(element, "distanceType", distanceTypeName(calculation.getDistanceType()));
    xpugi::addAttribute(element, "trackTarget",
                        calculation.getTrackTarget() == TrackTarget::EDGE ? "EDGE" : "CENTER");
    xpugi::addAttribute(element, "resultTransformation",
                        resultTransformationName(calculation.getResultTransformation()));
}

void writePlanePoint(pugi::xml_node& parent, const char* element_name, const GeoPosition& position,
                     const Point2D& point)
{
    pugi::xml_node element = parent.append_child(element_name);
    addReal(element, "latitude", position.latitude);
    addReal(element, "longitude", position.longitude);
    addPoint(element, point);
}

void writePlaneDefinition(pugi::xml_node& parent, const PlaneDefinition& definition)
{
    writePlanePoint(parent, "PrimaryPlanePoint", definition.primaryPosition, definition.primaryPoint);
    writePlanePoint(parent, "SecondaryPlanePoint", definition.secondaryPosition, definition.secondaryPoint);
}

void writeView(pugi::xml_node& root, const ObjectManager& manager)
{
    pugi::xml_node view = root.append_child("View");
    const math_geo::ProjectionPlane& plane = *manager.getReferencePlane();
    xpugi::addAttribute(view, "description", manager.getViewDescription());
    addReal(view, "latitude", plane.getCenter().latitude);
    addReal(view, "longitude", plane.getCenter().longitude);
    addReal(view, "rotation", plane.getRotation());
    xpugi::addAttribute(view, "usePlaneDefinitionPoints", boolText(manager.getUsePlaneDefinitionPoints()));
    writePlaneDefinition(view, manager.getPlaneDefinition());

    const MapSetupView& map = manager.getMapSetupView();
    pugi::xml_node map_view = view.append_child("MapSetupView");
    addReal(map_view, "latitude", map.center.latitude);
    addReal(map_view, "longitude", map.center.longitude);
    addReal(map_view, "rotation", map.rotation);
    addReal(map_view, "mapScaleS", map.scale);

    pugi::xml_node image = view.append_child("BGImage");
    xpugi::addAttribute(image, "imagePath", manager.getAerialImage().imagePath);
    writePlaneDefinition(image, manager.getAerialImage().definition);
}

/// Collects the serialised document in one string, without a stream in between.
class StringWriter : public pugi::xml_writer
{
public:
    explicit StringWriter(std::string& out) : m_out(out) {}
    void write(const void* data, size_t size) override { m_out.append(static_cast<const char*>(data), size); }

private:
    std::string& m_out;
};

// ---------------------------------------------------------------- reading

class Reader
{
public:
    Reader(ObjectManager& manager, IfChannelFetcher* fetcher) : m_manager(manager), m_channel_fetcher(fetcher)
    {}

    bool readView(const pugi::xml_node& view);
    bool readGeoObjects(const pugi::xml_node& objects);
    bool readTracks(const pugi::xml_node& tracks);
    void readCalculations(const pugi::xml_node& calculations, bool& result);

private:
    bool readPositionObject(const pugi::xml_node& element);
    bool readReferences(const pugi::xml_node& objects);
    bool readTrackAttributes(const pugi::xml_node& element, Track& track);
    std::shared_ptr<TrackLine> readTrackLine(const pugi::xml_node& element, std::int32_t id, bool& ok);
    void readCalculation(const pugi::xml_node& element);
    PositionObject::ChannelPtr lookUpChannel(const pugi::xml_node& node, const std::string& prefix);
    Point2D planePoint(const pugi::xml_node& node) const;
    void readPlanePoint(const pugi::xml_node& element, GeoPosition& position, Point2D& point) const;

    ObjectManager& m_manager;
    IfChannelFetcher* m_channel_fetcher;
};

Point2D Reader::planePoint(const pugi::xml_node& node) const
{
    return Point2D(realAttribute(node, "positionX"), realAttribute(node, "positionY"),
                   defaultPlaneCoordinateSystem());
}

void Reader::readPlanePoint(const pugi::xml_node& element, GeoPosition& position, Point2D& point) const
{
    const GeoPosition read_position(realAttribute(element, "latitude"), realAttribute(element, "longitude"));
    point = planePoint(element);
    position = read_position;
}

bool Reader::readView(const pugi::xml_node& view)
{
    try {
        if (xpugi::hasAttribute(view, "description"))
            m_manager.setViewDescription(xpugi::getAttribute(view, "description"));
        const GeoPosition center(realAttribute(view, "latitude"), realAttribute(view, "longitude"));
        const double rotation = realAttribute(view, "rotation");
        math_geo::ProjectionPlane plane = *m_manager.getReferencePlane();
        plane.setCenter(center);
        plane.setRotation(rotation);
        m_manager.setReferencePlane(plane);
        m_manager.setUsePlaneDefinitionPoints(xpugi::getAttribute(view, "usePlaneDefinitionPoints") ==
                                              "true");

        PlaneDefinition definition = m_manager.getPlaneDefinition();
        if (pugi::xml_node point = view.child("PrimaryPlanePoint")) {
            readPlanePoint(point, definition.primaryPosition, definition.primaryPoint);
            m_manager.setPlaneDefinition(definition);
        }
        if (pugi::xml_node point = view.child("SecondaryPlanePoint")) {
            readPlanePoint(point, definition.secondaryPosition, definition.secondaryPoint);
            m_manager.setPlaneDefinition(definition);
        }
        if (pugi::xml_node map_view = view.child("MapSetupView")) {
            MapSetupView map;
            map.center =
                GeoPosition(realAttribute(map_view, "latitude"), realAttribute(map_view, "longitude"));
            map.rotation = realAttribute(map_view, "rotation");
            map.scale = realAttribute(map_view, "mapScaleS");
            m_manager.setMapSetupView(map);
        }
        if (pugi::xml_node image_node = view.child("BGImage")) {
            AerialImage image = m_manager.getAerialImage();
            image.imagePath = xpugi::getAttribute(image_node, "imagePath");
            m_manager.setAerialImage(image);
            if (pugi::xml_node point = image_node.child("PrimaryPlanePoint")) {
                readPlanePoint(point, image.definition.primaryPosition, image.definition.primaryPoint);
                m_manager.setAerialImage(image);
            }
            if (pugi::xml_node point = image_node.child("SecondaryPlanePoint")) {
                readPlanePoint(point, image.definition.secondaryPosition, image.definition.secondaryPoint);
                m_manager.setAerialImage(image);
            }
        }
    } catch (const boost::bad_lexical_cast&) {
        return false;
    }
    return true;
}

PositionObject::ChannelPtr Reader::lookUpChannel(const pugi::xml_node& node, const std::string& prefix)
{
    const std::string id_text = xpugi::getAttribute(node, prefix + "ChannelID");
    const std::string long_name = xpugi::getAttribute(node, prefix + "ChannelLongName");
    // Domain and short name are written for people reading the file; the look-up needs
    // only id and long name.
    if (!UNI_ASSERT(m_channel_fetcher != nullptr))
        return nullptr;
    const std::optional<channel_config::ChannelID> id = channel_config::ChannelID::fromString(id_text);
    if (!id) {
        UNI_LOG(LOG, SEV_DETAIL) << "Can't get channel " << id_text;
        return nullptr;
    }
    if (PositionObject::ChannelPtr channel = m_channel_fetcher->findById(*id))
        return channel;
    UNI_LOG(LOG, SEV_NOTE) << "Can't find channel by id " << id_text;
    if (!long_name.empty()) {
        if (PositionObject::ChannelPtr channel = m_channel_fetcher->findByName(long_name))
            return channel;
        UNI_LOG(LOG, SEV_NOTE) << "Can't find channel by name " << long_name;
    }
    return nullptr;
}

bool Reader::readPositionObject(const pugi::xml_node& element)
{
    std::int32_t id = 0;
    try {
        id = numberAttribute<std::int32_t>(element, "objectId");
    } catch (const boost::bad_lexical_cast&) {
        return false;
    }
    const std::string type = element.name();
    const math_geo::ProjectionPlane* plane = m_manager.getReferencePlane();
    std::shared_ptr<PositionObject> object;
    if (type == "Car")
        object = std::make_shared<Car>(id, plane);
    else if (type == "Cone")
        object = std::make_shared<Cone>(id, plane);
    else
        object = std::make_shared<Locator>(id, plane);

    bool result = true;
    if (xpugi::hasAttribute(element, "name"))
        object->setName(xpugi::getAttribute(element, "name"));
    if (xpugi::hasAttribute(element, "color"))
        object->setColor(xpugi::getAttribute(element, "color"));
    if (xpugi::hasAttribute(element, "coordinateSystem")) {
        const std::string text = xpugi::getAttribute(element, "coordinateSystem");
        if (const std::optional<CoordinateSystem> system = coordinateSystemFromName(text)) {
            object->setCoordinateSystem(*system);
        } else {
            UNI_LOG(LOG, SEV_DETAIL) << "Unsupported coordinate system '" << text << "' - using default";
            result = false;
        }
    }
    // Position and heading are kept apart so that a bad one does not cost the other.
    try {
        if (xpugi::hasAttribute(element, "positionX"))
            object->setXYPosition(planePoint(element));
        else
            object->setGeoPosition(
                GeoPosition(realAttribute(element, "latitude"), realAttribute(element, "longitude")));
    } catch (const boost::bad_lexical_cast&) {
        result = false;
    }
    try {
        object->setHeading(realAttribute(element, "heading"));
    } catch (const boost::bad_lexical_cast&) {
        result = false;
    }
    if (xpugi::hasAttribute(element, "latitudeChannelID"))
        object->setLatitudeChannel(lookUpChannel(element, "latitude"));
    if (xpugi::hasAttribute(element, "longitudeChannelID"))
        object->setLongitudeChannel(lookUpChannel(element, "longitude"));
    if (xpugi::hasAttribute(element, "headingChannelID"))
        object->setHeadingChannel(lookUpChannel(element, "heading"));

    if (auto car = std::dynamic_pointer_cast<Car>(object)) {
        if (xpugi::hasAttribute(element, "gpsOffsetX")) {
            try {
                car->setGpsOffset(Point2D(realAttribute(element, "gpsOffsetX"),
                                          realAttribute(element, "gpsOffsetY"),
                                          car->localCoordinateSystem()));
            } catch (const boost::bad_lexical_cast&) {
                return false;
            }
        }
        if (pugi::xml_node contour = element.child("Contour"))
            result = xml::readContour(contour, *car) && result;
    }
    if (pugi::xml_node pois = element.child("Pois"))
        result = xml::readPois(pois, *object) && result;
    if (auto locator = std::dynamic_pointer_cast<Locator>(object)) {
        locator->clearQualityPositions();
        for (pugi::xml_node quality : element.children("QualityPosition")) {
            QualityPosition entry;
            // Limits follow strtod: whatever prefix converts counts, nothing gives 0.
            entry.lowerLimit = std::strtod(quality.attribute("lowerLimit").as_string(), nullptr);
            entry.upperLimit = std::strtod(quality.attribute("upperLimit").as_string(), nullptr);
            if (xpugi::hasAttribute(quality, "qualityChannelID"))
                entry.channel = lookUpChannel(quality, "quality");
            locator->addQualityPosition(entry);
        }
    }
    m_manager.addObject(object);
    return result;
}

bool Reader::readReferences(const pugi::xml_node& objects)
{
    for (pugi::xml_node element : objects.children()) {
        if (element.type() != pugi::node_element || !isPositionElement(element.name()) ||
            !xpugi::hasAttribute(element, "referenceObjectID"))
            continue;
        std::shared_ptr<PositionObject> object;
        std::shared_ptr<PositionObject> parent;
        try {
            object = m_manager.findPositionObjectById(numberAttribute<std::int32_t>(element, "objectId"));
            parent =
                m_manager.findPositionObjectById(numberAttribute<std::int32_t>(element, "referenceObjectID"));
        } catch (const boost::bad_lexical_cast&) {
            return false; // an id that is no number ends the pass without a line
        }
        if (!object || !parent) {
            UNI_LOG(LOG, SEV_NOTE) << "Error parsing reference object for object ID "
                                   << xpugi::getAttribute(element, "objectId");
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
    m_manager.setObjectsDescription(xpugi::getAttribute(objects, "description"));
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
    if (xpugi::hasAttribute(objects, "locatorId")) {
        // A locator that cannot be found leaves the scene without one; that is no error.
        std::int32_t id = 0;
        if (boost::conversion::try_lexical_convert(xpugi::getAttribute(objects, "locatorId"), id))
            if (std::shared_ptr<GeoObject> locator = m_manager.findObjectById(id))
                m_manager.setLocator(locator);
    }
    return result;
}

bool Reader::readTrackAttributes(const pugi::xml_node& element, Track& track)
{
    bool result = true;
    const auto guarded = [&](const char* name, void (Track::*setter)(double)) {
        try {
            (track.*setter)(realAttribute(element, name));
        } catch (const boost::bad_lexical_cast&) {
            result = false;
        }
    };
    guarded("trackWidth", &Track::setWidth);
    guarded("trackOrigin", &Track::setOrigin);
    guarded("trackRadius", &Track::setRadius);
    guarded("trackArcLength", &Track::setArcLength);
    guarded("trackArcBearing", &Track::setArcBearing);
    return result;
}

std::shared_ptr<TrackLine> Reader::readTrackLine(const pugi::xml_node& element, std::int32_t id, bool& ok)
{
    auto line = std::make_shared<TrackLine>(id, m_manager.getReferencePlane());
    if (xpugi::hasAttribute(element, "name"))
        line->setName(xpugi::getAttribute(element, "name"));
    if (xpugi::hasAttribute(element, "color"))
        line->setColor(xpugi::getAttribute(element, "color"));
    const CoordinateSystem plane_system = m_manager.getReferencePlane()->getXYCoordinateSystem();
    const auto readXY = [&](const char* name, void (TrackLine::*setter)(const Point2D&)) {
        pugi::xml_node node = element.child(name);
        if (!node)
            return false;
        try {
            (line.get()->*setter)(
                Point2D(realAttribute(node, "positionX"), realAttribute(node, "positionY"), plane_system));
            return true;
        } catch (const boost::bad_lexical_cast&) {
            ok = false;
            return false;
        }
    };
    const bool start_set = readXY("StartXY", &TrackLine::setStartXY);
    const bool end_set = readXY("EndXY", &TrackLine::setEndXY);
    if (start_set && end_set)
        return line;
    pugi::xml_node gps = element.child("GPSPositions");
    if (!gps) {
        UNI_LOG(LOG, SEV_DETAIL) << "TrackLine XML node does not containt "
                                 << "GPSPositions"
                                 << " node";
        return nullptr;
    }
    const std::vector<GeoPosition> positions = xml::parsePositionText(vertexText(gps));
    if (positions.size() != 2) {
        UNI_LOG(LOG, SEV_DETAIL) << "TrackLine XML node does not containt exactly 2 positions";
        return nullptr;
    }
    if (!start_set)
        line->setStart(positions[0]);
    if (!end_set)
        line->setEnd(positions[1]);
    return line;
}

bool Reader::readTracks(const pugi::xml_node& tracks)
{
    bool result = true;
    for (pugi::xml_node element : tracks.children()) {
        if (element.type() != pugi::node_element)
            continue;
        const std::string type = element.name();
        if (type != "TrackPath" && type != "TrackLine") {
            UNI_LOG(LOG, SEV_DETAIL) << "Only Track XML items allowed";
            return false;
        }
        std::int32_t id = 0;
        try {
            id = numberAttribute<std::int32_t>(element, "objectId");
        } catch (const boost::bad_lexical_cast&) {
            return false;
        }
        std::shared_ptr<Track> track;
        if (type == "TrackPath") {
            track = std::make_shared<TrackPath>(id, m_manager.getReferencePlane());
            if (xpugi::hasAttribute(element, "name"))
                track->setName(xpugi::getAttribute(element, "name"));
            if (xpugi::hasAttribute(element, "color"))
                track->setColor(xpugi::getAttribute(element, "color"));
            track->setPositions(xml::parsePositionText(vertexText(element)));
        } else {
            bool ok = true;
            track = readTrackLine(element, id, ok);
            if (!track)
                return false;
            result = ok && result;
        }
        result = readTrackAttributes(element, *track) && result;
        m_manager.addObject(track);
    }
    return result;
}

void Reader::readCalculation(const pugi::xml_node& element)
{
    auto calculation = std::make_shared<Calculation>(numberAttribute<std::int32_t>(element, "calculationId"));
    calculation->setName(xpugi::getAttribute(element, "name"));
    if (auto from = m_manager.findPositionObjectById(numberAttribute<std::int32_t>(element, "fromId")))
        calculation->setFrom(from);
    if (auto to = m_manager.findObjectById(numberAttribute<std::int32_t>(element, "toId")))
        calculation->setTo(to);
    if (xpugi::hasAttribute(element, "fromPoiIdx"))
        calculation->setFromPoiIdx(numberAttribute<std::uint32_t>(element, "fromPoiIdx"));
    if (xpugi::hasAttribute(element, "toPoiIdx"))
        calculation->setToPoiIdx(numberAttribute<std::uint32_t>(element, "toPoiIdx"));
    const auto flag = [&](const char* name) {
        return !xpugi::hasAttribute(element, name) ||
               boost::algorithm::to_lower_copy(xpugi::getAttribute(element, name)) == "true";
    };
    calculation->setUseFromPoi(flag("useFromPoi"));
    calculation->setUseToPoi(flag("useToPoi"));
    const auto upper = [&](const char* name) {
        return boost::algorithm::to_upper_copy(xpugi::getAttribute(element, name));
    };
    const std::string distance = upper("distanceType");
    calculation->setDistanceType(distance == "X"   ? DistanceType::X
                                 : distance == "Y" ? DistanceType::Y
                                                   : DistanceType::EUCLIDEAN);
    calculation->setTrackTarget(upper("trackTarget") == "EDGE" ? TrackTarget::EDGE : TrackTarget::CENTER);
    const std::string transformation = upper("resultTransformation");
    if (transformation == "ABSOLUTE")
        calculation->setResultTransformation(ResultTransformation::ABSOLUTE);
    else if (transformation == "INVERT")
        calculation->setResultTransformation(ResultTransformation::INVERT);
    m_manager.addCalculation(calculation);
}

void Reader::readCalculations(const pugi::xml_node& calculations, bool& result)
{
    for (pugi::xml_node element : calculations.children()) {
        if (element.type() != pugi::node_element)
            continue;
        if (std::string(element.name()) != "Calculation") {
            UNI_LOG(LOG, SEV_DETAIL) << "Unkown node in overmap config in <Calculations> \"" << element.name()
                                     << "\"";
            result = false;
            return;
        }
        // A calculation that cannot be read is dropped quietly: it only describes a
        // result, and the scene stays whole without it.
        try {
            readCalculation(element);
        } catch (const boost::bad_lexical_cast&) {
        }
    }
}

} // namespace

XmlReadWriter::XmlReadWriter(ObjectManager* manager, IfChannelFetcher* fetcher)
    : m_manager(manager), m_channel_fetcher(fetcher)
{}

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
        reader.readCalculations(calculations, result);
    return result;
}

void XmlReadWriter::write(std::string& out) const
{
    out.clear();
    if (!UNI_ASSERT(m_manager != nullptr))
        return;
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Overmap");
    xpugi::addAttribute(root, "version", "1.0");
    xpugi::addAttribute(root, "description", m_manager->getDescription());
    pugi::xml_node objects = root.append_child("GeoObjects");
    xpugi::addAttribute(objects, "description", m_manager->getObjectsDescription());
    pugi::xml_node tracks = root.append_child("Tracks");

    for (const std::shared_ptr<GeoObject>& object : m_manager->getObjects()) {
        if (const auto* car = dynamic_cast<const Car*>(object.get()))
            writePositionObject(objects, "Car", *car);
        else if (const auto* cone = dynamic_cast<const Cone*>(object.get()))
            writePositionObject(objects, "Cone", *cone);
        else if (const auto* locator = dynamic_cast<const Locator*>(object.get()))
            writePositionObject(objects, "Locator", *locator);
        else if (const auto* path = dynamic_cast<const TrackPath*>(object.get()))
            writeTrack(tracks, "TrackPath", *path);
        else if (const auto* line = dynamic_cast<const TrackLine*>(object.get()))
            writeTrack(tracks, "TrackLine", *line);
        else
            uni::log(LOG, SEV_DETAIL, "Unknown geo object type to write in XML");
    }
    if (m_manager->getLocator())
        xpugi::addAttribute(objects, "locatorId", std::to_string(m_manager->getLocator()->getId()));

    pugi::xml_node calculations = root.append_child("Calculations");
    for (const std::shared_ptr<Calculation>& calculation : m_manager->getCalculations())
        writeCalculation(calculations, *calculation);
    writeView(root, *m_manager);

    StringWriter writer(out);
    document.save(writer, "", pugi::format_raw);
}

} // namespace overmap
