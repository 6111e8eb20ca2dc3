#include <om_model/overmap_xml_read_writer.h>

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>
#include <om_model/xml_elements.h>

#include "om_log.h"
#include "setup_xml_common.h"

#include <channel_config/channel_id.h>
#include <ferrin_core/scalar_channel.h>

#include <pugixml.hpp>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>
#include <xpugixml/xpugixml.h>

namespace overmap {

using math_geo::GeoPosition;
using math_geo::Point2D;
using setup_xml::COORDINATE_SYSTEMS;
using setup_xml::DISTANCE_TYPES;
using setup_xml::nameOf;
using setup_xml::RESULT_TRANSFORMATIONS;
using setup_xml::TRACK_TARGETS;

namespace {

const char* const LOG = detail::LOG_CHANNEL;

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
    // A system without a name is left out and comes back as the default.
    if (const char* system = nameOf(COORDINATE_SYSTEMS, object.localCoordinateSystem(), nullptr))
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
    xpugi::addAttribute(element, "distanceType",
                        nameOf(DISTANCE_TYPES, calculation.getDistanceType(), "EUCLIDEAN"));
    xpugi::addAttribute(element, "trackTarget",
                        nameOf(TRACK_TARGETS, calculation.getTrackTarget(), "CENTER"));
    xpugi::addAttribute(element, "resultTransformation",
                        nameOf(RESULT_TRANSFORMATIONS, calculation.getResultTransformation(), "AS_IS"));
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

} // namespace

XmlReadWriter::XmlReadWriter(ObjectManager* manager, IfChannelFetcher* fetcher)
    : m_manager(manager), m_channel_fetcher(fetcher)
{}

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
