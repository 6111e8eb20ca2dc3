#include <om_model/position_object.h>

#include <om_model/coordinate_defaults.h>

#include "om_log.h"

#include <ferrin_core/scalar_channel.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace overmap {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {
constexpr const char* CORRECTING_SYSTEM =
    "PositionObject::setXYPosition() - correcting the coordinate system";

bool sameBits(double a, double b)
{
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::memcpy(&x, &a, sizeof x);
    std::memcpy(&y, &b, sizeof y);
    return x == y;
}

double readChannel(ferrin::ScalarChannel& channel, double time)
{
    return channel.getValueAtTime(time, nullptr);
}
} // namespace

PositionObject::PositionObject(const math_geo::ProjectionPlane* plane) : GeoObject(plane)
{
    init();
}

PositionObject::PositionObject(std::int32_t id, const math_geo::ProjectionPlane* plane) : GeoObject(id, plane)
{
    init();
}

PositionObject::~PositionObject() = default;

void PositionObject::init()
{
    m_object_plane = math_geo::ProjectionPlane(GeoPosition(0.0, 0.0), 0.0, defaultObjectCoordinateSystem());
    m_pois.push_back(Poi{Point2D(0.0, 0.0, localCoordinateSystem()), "Center"});
    const CoordinateSystem plane_system =
        getPlane() ? getPlane()->getXYCoordinateSystem() : defaultPlaneCoordinateSystem();
    m_xy_position = Point2D(0.0, 0.0, plane_system);
}

void PositionObject::setPlane(const math_geo::ProjectionPlane* plane)
{
    GeoObject::setPlane(plane);
    if (m_xy_flag)
        setXYPosition(m_xy_position);
    else if (!hasPositionChannels())
        setGeoPosition(getGeoPosition());
}

Point2D PositionObject::toLocal(const GeoPosition& position) const
{
    return turnedPlane().toPlane(position);
}

const math_geo::ProjectionPlane& PositionObject::turnedPlane() const
{
    const double heading = effectiveHeading();
    const double rotation = localCoordinateSystem() == CoordinateSystem::DIN70000 ? -heading : heading;
    // Every POI and contour point of one place goes through the same plane: it is turned
    // again only when the place, the system or the angle changed in any bit.
    const GeoPosition center = m_object_plane.getCenter();
    const GeoPosition turned_center = m_turned_plane.getCenter();
    if (!m_turned_valid || !sameBits(rotation, m_turned_plane.getRotation()) ||
        !sameBits(center.latitude, turned_center.latitude) ||
        !sameBits(center.longitude, turned_center.longitude) ||
        m_turned_plane.getXYCoordinateSystem() != localCoordinateSystem()) {
        m_turned_plane = m_object_plane;
        m_turned_plane.setRotation(rotation);
        m_turned_valid = true;
    }
    return m_turned_plane;
}

void PositionObject::setCoordinateSystem(CoordinateSystem value)
{
    m_object_plane.setXYCoordinateSystem(value);
    for (Poi& poi : m_pois)
        poi.position.setCoordinateSystem(value);
}

GeoPosition PositionObject::toGeo(const Point2D& pt) const
{
    UNI_ASSERT(pt.getCoordinateSystem() == m_object_plane.getXYCoordinateSystem());
    return turnedPlane().toGeoPosition(pt);
}

void PositionObject::setLength(double length)
{
    m_length = length;
}

void PositionObject::setWidth(double width)
{
    m_width = width;
}

void PositionObject::updateXYFromGeo()
{
    m_xy_position = referencePlane().toPlane(getGeoPosition());
}

void PositionObject::updateGeoFromXY()
{
    storeCenter(referencePlane().toGeoPosition(m_xy_position));
}

void PositionObject::storeCenter(const GeoPosition& center)
{
    // An invalid centre (from a not-a-number XY position) is reported by the plane's assertion
    // and stored all the same: the object follows its XY position.
    m_object_plane.setCenter(center);
}

void PositionObject::setGeoPosition(const GeoPosition& position)
{
    if (!position.valid()) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Invalid position for object " << getName() << " | "
                                                << position.latitude << ", " << position.longitude;
        return;
    }
    m_object_plane.setCenter(position);
    m_xy_flag = false;
    updateXYFromGeo();
    m_last_update_time = -1.0;
}

void PositionObject::setXYPosition(const Point2D& point)
{
    m_xy_position = point;
    m_xy_flag = true;
    if (!m_reference_object) {
        if (point.getCoordinateSystem() != referencePlane().getXYCoordinateSystem())
            uni::log(detail::LOG_CHANNEL, SEV_ERROR, CORRECTING_SYSTEM);
        updateGeoFromXY();
        m_last_update_time = -1.0;
        return;
    }
    const CoordinateSystem parent_system = m_reference_object->localCoordinateSystem();
    if (point.getCoordinateSystem() != parent_system) {
        uni::log(detail::LOG_CHANNEL, SEV_ERROR, CORRECTING_SYSTEM);
        m_xy_position.setCoordinateSystem(parent_system);
    }
    storeCenter(m_reference_object->toGeo(m_xy_position));
    m_last_update_time = -1.0;
}

void PositionObject::setHeading(double degrees)
{
    if (std::isnan(degrees)) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Invalid heading for object " << getName();
        return;
    }
    // An infinite value has no remainder, and a tiny negative one rounds up to 360 when the
    // turn is added: both are reported by the range assertion and stored as they come out.
    double heading = std::fmod(degrees, 360.0);
    if (heading < 0)
        heading += 360.0;
    UNI_ASSERT(heading >= 0 && heading < 360.0);
    m_heading = heading;
}

void PositionObject::setHeadingFromCoord(double degrees, CoordinateSystem system)
{
    if (system == CoordinateSystem::DIN70000 && degrees != 0.0)
        degrees = 360.0 - degrees;
    setHeading(degrees);
}

double PositionObject::effectiveHeading() const
{
    double heading = getHeading();
    if (localCoordinateSystem() == CoordinateSystem::DIN70000 && heading != 0.0)
        heading = 360.0 - heading;
    const double plane_rotation = getPlane() ? getPlane()->getRotation() : 0.0;
    if (const PositionObject* parent = m_reference_object.get()) {
        double parent_heading = parent->getHeading();
        if (parent->m_reference_object)
            parent_heading = parent->effectiveHeading() - plane_rotation;
        else if (parent->localCoordinateSystem() == CoordinateSystem::DIN70000)
            parent_heading = 360.0 - parent_heading;
        if (!parent->m_reference_object && !parent->m_xy_flag && m_xy_flag)
            parent_heading -= plane_rotation;
        heading += parent_heading;
    }
    return m_xy_flag ? heading + plane_rotation : heading;
}

void PositionObject::setLatitudeChannel(ChannelPtr channel)
{
    m_latitude_channel = std::move(channel);
    m_xy_flag = false;
    m_last_update_time = -1.0;
}

void PositionObject::setLongitudeChannel(ChannelPtr channel)
{
    m_longitude_channel = std::move(channel);
    m_xy_flag = false;
    m_last_update_time = -1.0;
}

void PositionObject::setHeadingChannel(ChannelPtr channel)
{
    m_heading_channel = std::move(channel);
    m_last_update_time = -1.0;
}

bool PositionObject::hasPositionChannels() const
{
    return m_latitude_channel || m_longitude_channel;
}

void PositionObject::setReferenceObject(std::shared_ptr<PositionObject> object)
{
    if (object.get() == this)
        return;
    if (object) {
        const PositionObject* its_parent = object->m_reference_object.get();
        if (its_parent == this || (its_parent && its_parent->dependsOn(this)))
            return;
    }
    const GeoPosition globe = getGeoPosition();
    m_reference_object = std::move(object);
    const Point2D point =
        m_reference_object ? m_reference_object->toLocal(globe) : referencePlane().toPlane(globe);
    setXYPosition(point);
}

bool PositionObject::dependsOn(const PositionObject* object) const
{
    for (const PositionObject* p = m_reference_object.get(); p; p = p->m_reference_object.get()) {
        if (p == object)
            return true;
        if (p == this) // a cycle the setter never lets in; stop rather than loop
            return false;
    }
    return false;
}

void PositionObject::addPoi(const Poi& poi)
{
    m_pois.push_back(poi);
}

void PositionObject::setPoi(std::size_t idx, const Poi& poi)
{
    if (!UNI_ASSERT(idx < m_pois.size()))
        return;
    m_pois[idx] = poi;
}

void PositionObject::resetPois()
{
    m_pois.assign(1, Poi{Point2D(0.0, 0.0, localCoordinateSystem()), "Center"});
}

GeoPosition PositionObject::poiPosition(std::size_t index) const
{
    if (index >= m_pois.size())
        return GeoPosition();
    return toGeo(m_pois[index].position);
}

void PositionObject::update(double time)
{
    if (time == m_last_update_time)
        return;
    PositionObject* parent = m_reference_object.get();
    if (!parent) {
        if (m_xy_flag)
            return;
        constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
        place(time, {m_latitude_channel ? readChannel(*m_latitude_channel, time) : NONE,
                     m_longitude_channel ? readChannel(*m_longitude_channel, time) : NONE,
                     m_heading_channel ? readChannel(*m_heading_channel, time) : NONE});
        return;
    }
    if (parent->m_reference_object.get() == this)
        return;
    parent->update(time);
    Point2D local = m_xy_position;
    local.setCoordinateSystem(parent->localCoordinateSystem());
    const GeoPosition globe = parent->toGeo(local);
    if (globe.valid())
        m_object_plane.setCenter(globe);
    else
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Invalid position for object " << getName();
}

void PositionObject::update(double time, const ChannelReading& reading)
{
    if (time == m_last_update_time)
        return;
    if (m_reference_object || m_xy_flag) {
        update(time);
        return;
    }
    place(time, reading);
}

void PositionObject::place(double time, const ChannelReading& reading)
{
    if (m_heading_channel)
        setHeading(reading.heading);
    if (hasPositionChannels()) {
        GeoPosition position = getGeoPosition();
        if (m_latitude_channel)
            position.latitude = reading.latitude;
        if (m_longitude_channel)
            position.longitude = reading.longitude;
        if (position.valid()) {
            m_object_plane.setCenter(position);
        } else {
            UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
                << "Invalid latitude and/or longitude (" << position << ") position for object " << getName();
        }
    }
    updateXYFromGeo();
    m_last_update_time = time;
}

} // namespace overmap
