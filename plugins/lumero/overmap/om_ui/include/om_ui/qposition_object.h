#pragma once

#include <om_ui/qgeo_object.h>
#include <om_ui/qpoi.h>

#include <math_geo/point_2d.h>
#include <qchannel/qchannel.h>

#include <QGeoCoordinate>
#include <QPointF>
#include <QPointer>

#include <array>
#include <atomic>
#include <memory>

namespace overmap {
class PositionObject;
}

namespace overmap_ui {

/// The Qt face of an object standing at one point: binds channels to its model object,
/// moves it at each time step, and tells the views what changed. The model does the
/// geometry; this class decides which signals follow which change.
class QPositionObject : public QGeoObject
{
    Q_OBJECT
    Q_PROPERTY(double latitude READ latitude WRITE setLatitude NOTIFY latitudeChanged)
    Q_PROPERTY(double longitude READ longitude WRITE setLongitude NOTIFY longitudeChanged)
    Q_PROPERTY(double heading READ heading NOTIFY headingChanged)
    Q_PROPERTY(double inputHeading READ inputHeading WRITE setInputHeading NOTIFY inputHeadingChanged)
    Q_PROPERTY(QGeoCoordinate position READ position WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(QGeoCoordinate centerPosition READ centerPosition NOTIFY centerPositionChanged)
    Q_PROPERTY(QPointF xyPosition READ xyPosition WRITE setXYPosition NOTIFY xyPositionChanged)
    Q_PROPERTY(CoordinateSystem objectCoordinateSystem READ objectCoordinateSystem WRITE
                   setObjectCoordinateSystem NOTIFY objectCoordinateSystemChanged)
    Q_PROPERTY(overmap_ui::QPositionObject* referenceObject READ referenceObject WRITE setReferenceObject
                   NOTIFY referenceObjectChanged)
    Q_PROPERTY(
        bool useXYCoordinates READ useXYCoordinates WRITE setUseXYCoordinates NOTIFY useXYCoordinatesChanged)
    Q_PROPERTY(lum::qchannel::QChannel* latitudeChannel READ latitudeChannel WRITE setLatitudeChannel NOTIFY
                   latitudeChannelChanged)
    Q_PROPERTY(lum::qchannel::QChannel* longitudeChannel READ longitudeChannel WRITE setLongitudeChannel
                   NOTIFY longitudeChannelChanged)
    Q_PROPERTY(lum::qchannel::QChannel* headingChannel READ headingChannel WRITE setHeadingChannel NOTIFY
                   headingChannelChanged)
    Q_PROPERTY(overmap_ui::QPoiList* poiList READ poiList NOTIFY poiListChanged)
    Q_PROPERTY(bool validPosition READ validPosition NOTIFY validPositionChanged)
    Q_PROPERTY(bool isGPSConnected READ isGPSConnected NOTIFY isGPSConnectedChanged)

public:
    /// The systems the views offer, and the model's systems they stand for.
    enum CoordinateSystem
    {
        DIN_70000 = 0,
        SAE = 1,
        X_FRONT_Y_LEFT = 2
    };
    Q_ENUM(CoordinateSystem)

    /// @p parent is the object manager, through which reference objects are found.
    QPositionObject(std::shared_ptr<overmap::PositionObject> model, QObject* parent);
    ~QPositionObject() override;

    double width() const override;
    double length() const override;
    math_geo::GeoBounds enclosingRectangle() const override;
    bool isUserMovable() const override;

    /// Where the object's centre stands: the model's position here.
    virtual QGeoCoordinate centerPosition() const;
    /// Brings the object to @p time; allocates nothing and writes nothing to the setup.
    Q_INVOKABLE virtual void updatePositionData(double time);
    virtual void setUseXYCoordinates(bool use);

    Q_INVOKABLE void setInputHeadingFromCoord(double heading,
                                              overmap_ui::QPositionObject::CoordinateSystem object_coord_sys);
    /// The POI on the globe with the present heading; a default coordinate for a bad index.
    Q_INVOKABLE QGeoCoordinate getPoiGeoPosition(int poi_idx) const;

    double latitude() const;
    void setLatitude(double value);
    double longitude() const;
    void setLongitude(double value);
    double heading() const;
    double inputHeading() const;
    void setInputHeading(double value);
    QGeoCoordinate position() const;
    void setPosition(const QGeoCoordinate& coordinate);
    QPointF xyPosition() const;
    void setXYPosition(QPointF point);
    CoordinateSystem objectCoordinateSystem() const;
    void setObjectCoordinateSystem(CoordinateSystem system);
    QPositionObject* referenceObject() const;
    void setReferenceObject(QPositionObject* object);
    bool useXYCoordinates() const;
    lum::qchannel::QChannel* latitudeChannel() const { return m_latitude_channel; }
    lum::qchannel::QChannel* longitudeChannel() const { return m_longitude_channel; }
    lum::qchannel::QChannel* headingChannel() const { return m_heading_channel; }
    QPoiList* poiList() { return &m_poi_list; }
    bool validPosition() const { return m_valid_position; }
    bool isGPSConnected() const { return m_gps_connected; }

    /// Rebuilds the POI list from the model, after the model object is complete.
    void refreshPois();
    /// Brings the POIs of the list into the model, before a write of the setup.
    void syncModelPois();

    const std::shared_ptr<overmap::PositionObject>& positionModel() const { return m_model; }

public Q_SLOTS:
    void setLatitudeChannel(lum::qchannel::QChannel* channel);
    void setLongitudeChannel(lum::qchannel::QChannel* channel);
    void setHeadingChannel(lum::qchannel::QChannel* channel);
    /// After the reference plane moved: an object placed in the plane follows it.
    void updateXYPositions();

Q_SIGNALS:
    void positionChanged();
    void centerPositionChanged();
    void xyPositionChanged();
    void latitudeChanged();
    void longitudeChanged();
    void headingChanged();
    void latitudeChannelChanged();
    void longitudeChannelChanged();
    void headingChannelChanged();
    void inputHeadingChanged();
    void objectCoordinateSystemChanged();
    void referenceObjectChanged();
    void poiListChanged();
    void useXYCoordinatesChanged();
    void validPositionChanged();
    void isGPSConnectedChanged();

protected Q_SLOTS:
    void checkGPSConnection();
    void updateFromReferenceObject();

protected:
    void connectNotify(const QMetaMethod& signal) override;
    void disconnectNotify(const QMetaMethod& signal) override;
    void updateValidity();
    /// Tells the views that the object's place moved: latitude, longitude, position, centre
    /// (which follows the position) and XY position, in that order.
    void emitPlaceChanged();

private:
    enum class Axis
    {
        LATITUDE,
        LONGITUDE
    };
    void bindPositionChannel(Axis axis, lum::qchannel::QChannel* channel);
    /// Sets the latitude or the longitude by hand; @p changed is that coordinate's own signal.
    void setGeoCoordinate(double math_geo::GeoPosition::*coordinate, double value,
                          void (QPositionObject::*changed)());
    void fillPoiList();
    void onPoiAdded(QObject* object);
    /// Drops both position channels, as a null channel would.
    void dropPositionChannels();
    void dropHeadingChannel();
    /// The system in which an XY position of this object is read.
    math_geo::CoordinateSystem xySystem() const;
    /// Takes the object off its reference without a signal.
    void clearReference();

    std::shared_ptr<overmap::PositionObject> m_model;
    QPointer<lum::qchannel::QChannel> m_latitude_channel;
    QPointer<lum::qchannel::QChannel> m_longitude_channel;
    QPointer<lum::qchannel::QChannel> m_heading_channel;
    QPoiList m_poi_list;
    bool m_valid_position = false;
    bool m_gps_connected = false;
    QPointer<QPositionObject> m_reference_object;
    /// How many listen to each signal of a time step (latitude, longitude, position, centre,
    /// XY position, heading, input heading); a time step emits only those that are heard, as
    /// an emission nobody hears costs it more than the rest of its work.
    std::array<std::atomic<int>, 7> m_step_listeners{};
};

} // namespace overmap_ui
