#include <om_model/car.h>

#include <om_model/xml_elements.h>

#include "om_log.h"

#include <math_geo/rectangle.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>
#include <xpugixml/xpugixml.h>

#include <boost/lexical_cast.hpp>
#include <pugixml.hpp>

#include <fstream>
#include <sstream>

namespace overmap {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;

Car::Car(const math_geo::ProjectionPlane* plane) : PositionObject(plane)
{
    init();
}

Car::Car(std::int32_t id, const math_geo::ProjectionPlane* plane) : PositionObject(id, plane)
{
    init();
}

Car::~Car() = default;

void Car::init()
{
    setName("Car");
    setColor("#FFA500");
    const CoordinateSystem local = localCoordinateSystem();
    m_gps_offset = Point2D(0.0, 0.0, local);
    // 5 m long, 2 m wide, x along the length.
    setContour({Point2D(2.5, 1.0, local), Point2D(-2.5, 1.0, local), Point2D(-2.5, -1.0, local),
                Point2D(2.5, -1.0, local)});
}

const std::vector<std::string>& Car::standardPoiNames()
{
    static const std::vector<std::string> names{"Center",     "Front left",  "Front center", "Front right",
                                                "Back right", "Back center", "Back left"};
    return names;
}

void Car::updatePois()
{
    const CoordinateSystem local = localCoordinateSystem();
    std::vector<Poi>& list = pois();
    if (list.size() < standardPoiNames().size()) {
        list.clear();
        for (const std::string& name : standardPoiNames())
            list.push_back(Poi{Point2D(0.0, 0.0, local), name});
    }
    const double l = getLength() / 2.0;
    const double w = getWidth() / 2.0;
    list[1].position = Point2D(l, w, local);
    list[2].position = Point2D(l, 0.0, local);
    list[3].position = Point2D(l, -w, local);
    list[4].position = Point2D(-l, -w, local);
    list[5].position = Point2D(-l, 0.0, local);
    list[6].position = Point2D(-l, w, local);
}

void Car::setLength(double length)
{
    PositionObject::setLength(length);
    updatePois();
}

void Car::setWidth(double width)
{
    PositionObject::setWidth(width);
    updatePois();
}

Point2D Car::offsetIn(CoordinateSystem system) const
{
    Point2D offset = m_gps_offset;
    if (offset.getCoordinateSystem() != system)
        offset.toCoordSystem(system);
    return offset;
}

GeoPosition Car::toGeo(const Point2D& pt) const
{
    if (isXYPosition())
        return PositionObject::toGeo(pt);
    return PositionObject::toGeo(pt - m_gps_offset);
}

std::vector<Point2D> Car::contourInLocalSystem() const
{
    // A car switched to another frame keeps its contour's label; the points are the same.
    std::vector<Point2D> points = m_contour;
    const CoordinateSystem local = localCoordinateSystem();
    for (Point2D& point : points) {
        if (point.getCoordinateSystem() == local)
            continue;
        // SAE is a label without a conversion: its numbers are taken as they stand.
        if (local == CoordinateSystem::SAE || point.getCoordinateSystem() == CoordinateSystem::SAE)
            point.setCoordinateSystem(local);
        else
            point.toCoordSystem(local);
    }
    return points;
}

Point2D Car::toLocal(const GeoPosition& position) const
{
    if (isXYPosition())
        return PositionObject::toLocal(position);
    return PositionObject::toLocal(position) + m_gps_offset;
}

void Car::updateXYFromGeo()
{
    if (isXYPosition()) {
        PositionObject::updateXYFromGeo();
        return;
    }
    const Point2D xy = referencePlane().toPlane(getGeoPosition());
    storeXYPosition(xy - offsetIn(xy.getCoordinateSystem()));
}

void Car::updateGeoFromXY()
{
    if (isXYPosition()) {
        PositionObject::updateGeoFromXY();
        return;
    }
    const Point2D& xy = getXYPosition();
    storeCenter(referencePlane().toGeoPosition(xy + offsetIn(xy.getCoordinateSystem())));
}

void Car::setGpsOffset(const Point2D& offset)
{
    UNI_ASSERT(offset.getCoordinateSystem() == localCoordinateSystem());
    m_gps_offset = offset;
    if (isXYPosition())
        updateGeoFromXY();
    else
        updateXYFromGeo();
    markStale();
}

void Car::setCoordinateSystem(CoordinateSystem value)
{
    PositionObject::setCoordinateSystem(value);
    m_gps_offset.setCoordinateSystem(value);
}

void Car::setContour(const std::vector<Point2D>& points)
{
    const CoordinateSystem local = localCoordinateSystem();
    m_contour = points;
    for (Point2D& point : m_contour) {
        if (point.getCoordinateSystem() != local) {
            uni::log(detail::LOG_CHANNEL, SEV_ERROR,
                     "Car::setContour() - contour has different coordiante system");
            point.toCoordSystem(local);
        }
    }
    if (points.size() < 2) {
        setWidth(0.0);
        setLength(0.0);
        return;
    }
    const math_geo::Rectangle given = math_geo::Rectangle::bounding(points);
    const Point2D center = given.center();
    if (center != Point2D(0.0, 0.0, local)) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_DETAIL) << "The given contour center is not in 0/0, but " << center;
        const Point2D stored_center = math_geo::Rectangle::bounding(m_contour).center();
        for (Point2D& point : m_contour)
            point += -stored_center;
    }
    setLength(given.width());
    setWidth(given.height());
}

std::vector<Point2D> readContourFile(const std::string& path, CoordinateSystem system)
{
    std::ifstream in(path);
    if (!in) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Could not open contour input file " << path;
        return {};
    }
    std::vector<Point2D> vertices;
    std::string line;
    while (std::getline(in, line)) {
        Point2D vertex(0.0, 0.0, system);
        std::istringstream fields(line);
        std::string field;
        for (int index = 0; std::getline(fields, field, ','); ++index) {
            if (index >= 2) {
                UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
                    << "Contour input file fas too many cordinates" << path;
                return {};
            }
            // Blanks and line ends only: a tab or a line of nothing but a carriage return
            // leaves text that does not convert, and the file is refused.
            const std::size_t first = field.find_first_not_of(" \r\n");
            const std::size_t last = field.find_last_not_of(" \r\n");
            field = first == std::string::npos ? std::string() : field.substr(first, last - first + 1);
            double value = 0.0;
            if (!boost::conversion::try_lexical_convert(field, value)) {
                UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Error in parsing the contour input file " << path;
                return {};
            }
            if (index == 0)
                vertex.x = value;
            else
                vertex.y = value;
        }
        vertices.push_back(vertex);
    }
    return vertices;
}

bool Car::loadContourFile(const std::string& path)
{
    std::vector<Point2D> vertices = readContourFile(path, localCoordinateSystem());
    if (vertices.size() < 3)
        return false;
    const Point2D center = math_geo::Rectangle::bounding(vertices).center();
    for (Point2D& vertex : vertices)
        vertex += -center;
    setContour(vertices);
    return true;
}

void Car::saveVehicle(pugi::xml_document& document) const
{
    pugi::xml_node root = document.append_child("Car");
    xml::writePois(root, *this);
    xml::writeContour(root, m_contour);
    pugi::xml_node meta = root.append_child("MetaData");
    xpugi::addAttribute(meta, "description", m_description);
    xpugi::addAttribute(meta, "length", xml::formatReal(m_vehicle_length));
    xpugi::addAttribute(meta, "width", xml::formatReal(m_vehicle_width));
}

bool Car::loadVehicle(const pugi::xml_document& document)
{
    const pugi::xml_node root = document.document_element();
    if (!root)
        return false;
    bool result = false;
    const pugi::xml_node contour = root.child("Contour");
    if (contour)
        result = xml::readContour(contour, *this);
    const pugi::xml_node pois = root.child("Pois");
    if (pois)
        result = xml::readPois(pois, *this);
    if (!contour && !pois)
        return false;
    m_vehicle_length = getLength();
    m_vehicle_width = getWidth();
    if (const pugi::xml_node meta = root.child("MetaData")) {
        m_description = xpugi::getAttribute(meta, "description");
        const std::optional<double> length = xml::parseReal(xpugi::getAttribute(meta, "length"));
        const std::optional<double> width = xml::parseReal(xpugi::getAttribute(meta, "width"));
        if (length && width) {
            m_vehicle_length = *length;
            m_vehicle_width = *width;
        }
    }
    return result;
}

} // namespace overmap
