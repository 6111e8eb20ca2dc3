#pragma once

#include <om_model/geo_object.h>
#include <om_model/poi.h>

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>
#include <math_geo/projection_plane.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace ferrin {
class ScalarChannel;
}

namespace overmap {

/// An object standing at one point of the scene, placed either on the globe (by
/// channels or a fixed position) or by an XY position in the reference plane, or in the
/// local frame of a reference object. Its own plane is centred on its present position
/// and turned by its heading, so that its local points (contour, POIs) reach the globe.
class PositionObject : public GeoObject
{
public:
    using ChannelPtr = std::shared_ptr<ferrin::ScalarChannel>;

    ~PositionObject() override;

    /// Stores the plane; an XY-placed object is placed again, a fixed one re-derives its
    /// XY position. Objects under channels wait for their next update.
    void setPlane(const math_geo::ProjectionPlane* plane) override;
    /// A geographic position in this object's local frame.
    virtual math_geo::Point2D toLocal(const math_geo::GeoPosition& position) const;
    /// Sets the local system and relabels every POI; the numbers stay.
    virtual void setCoordinateSystem(math_geo::CoordinateSystem value);
    virtual bool hasSelectablePois() const = 0;
    /// A local point (in the local system) on the globe, with heading and parents applied.
    virtual math_geo::GeoPosition toGeo(const math_geo::Point2D& pt) const;
    /// Extent along local x, metres.
    virtual void setLength(double length);
    /// Extent along local y, metres.
    virtual void setWidth(double width);
    /// XY position := reference plane projection of the centre.
    virtual void updateXYFromGeo();
    /// Centre := reference plane position of the XY position.
    virtual void updateGeoFromXY();

    double getLength() const { return m_length; }
    double getWidth() const { return m_width; }

    math_geo::GeoPosition getGeoPosition() const { return m_object_plane.getCenter(); }
    /// Places the object on the globe; an invalid position is logged and ignored.
    void setGeoPosition(const math_geo::GeoPosition& position);
    const math_geo::Point2D& getXYPosition() const { return m_xy_position; }
    /// Places the object in the reference plane, or in its parent's frame when it has one.
    void setXYPosition(const math_geo::Point2D& point);
    bool isXYPosition() const { return m_xy_flag; }

    /// The stored heading, degrees in [0, 360), counted in the sense of the local system.
    double getHeading() const { return m_heading; }
    /// Normalises into one turn; not-a-number is logged and ignored.
    void setHeading(double degrees);
    /// A heading given in @p system: DIN70000 counts the other way round.
    void setHeadingFromCoord(double degrees, math_geo::CoordinateSystem system);
    /// Heading with the parents and the reference plane's rotation included, degrees.
    double effectiveHeading() const;

    void setLatitudeChannel(ChannelPtr channel);
    void setLongitudeChannel(ChannelPtr channel);
    void setHeadingChannel(ChannelPtr channel);
    const ChannelPtr& getLatitudeChannel() const { return m_latitude_channel; }
    const ChannelPtr& getLongitudeChannel() const { return m_longitude_channel; }
    const ChannelPtr& getHeadingChannel() const { return m_heading_channel; }
    /// True when a latitude or a longitude channel is set.
    bool hasPositionChannels() const;

    const std::shared_ptr<PositionObject>& getReferenceObject() const { return m_reference_object; }
    /// Hangs the object on @p object (null: on the scene), keeping its place on the globe.
    /// Self-references and cycles are refused silently.
    void setReferenceObject(std::shared_ptr<PositionObject> object);
    /// True when @p object stands in this object's parent chain.
    bool dependsOn(const PositionObject* object) const;

    const std::vector<Poi>& getPois() const { return m_pois; }
    std::size_t poiCount() const { return m_pois.size(); }
    /// Throws std::out_of_range for a bad index.
    const Poi& getPoi(std::size_t index) const { return m_pois.at(index); }
    void addPoi(const Poi& poi);
    void setPoi(std::size_t idx, const Poi& poi);
    /// Leaves only "Center" at (0, 0).
    void resetPois();
    /// The POI on the globe; a default position for a bad index.
    math_geo::GeoPosition poiPosition(std::size_t index) const;

    math_geo::CoordinateSystem localCoordinateSystem() const
    {
        return m_object_plane.getXYCoordinateSystem();
    }

    /// What the object's own channels give at one time; not-a-number where it has none.
    struct ChannelReading
    {
        double latitude;
        double longitude;
        double heading;
    };

    /// Brings the object to @p time (seconds): reads its channels, or follows its parent.
    void update(double time);
    /// The same with @p reading, read at @p time from this object's channels by a caller
    /// that looked at the values first, so that they are not read twice. An object that
    /// follows a parent or its XY position does not read its channels and ignores it.
    void update(double time, const ChannelReading& reading);
    /// Time of the last update; -1.0 when the object has been moved since.
    double getLastUpdateTime() const { return m_last_update_time; }

protected:
    explicit PositionObject(const math_geo::ProjectionPlane* plane);
    PositionObject(std::int32_t id, const math_geo::ProjectionPlane* plane);

    /// Overwrite the derived coordinates without any side effect, for overrides of the
    /// update operations.
    void storeXYPosition(const math_geo::Point2D& point) { m_xy_position = point; }
    void storeCenter(const math_geo::GeoPosition& center);
    void markStale() { m_last_update_time = -1.0; }
    std::vector<Poi>& pois() { return m_pois; }

private:
    void init();
    /// update() of an object placed by its own channels.
    void place(double time, const ChannelReading& reading);
    /// The object's plane turned by the effective heading, as toGeo and toLocal use it.
    const math_geo::ProjectionPlane& turnedPlane() const;

    double m_length = 0.0;
    double m_width = 0.0;
    std::vector<Poi> m_pois;
    /// Centred on the object, unturned: the heading turns only the copy that toGeo uses,
    /// so that a new heading costs no cosine until a point is placed.
    math_geo::ProjectionPlane m_object_plane;
    double m_heading = 0.0;
    ChannelPtr m_latitude_channel;
    ChannelPtr m_longitude_channel;
    ChannelPtr m_heading_channel;
    math_geo::Point2D m_xy_position;
    bool m_xy_flag = false;
    std::shared_ptr<PositionObject> m_reference_object;
    double m_last_update_time = -1.0;
    /// Cache of turnedPlane(), checked against the object's plane and heading at each use;
    /// like the rest of the object, not for concurrent use.
    mutable math_geo::ProjectionPlane m_turned_plane;
    mutable bool m_turned_valid = false;
};

} // namespace overmap
