#pragma once

#include <om_ui/if_object_manager.h>
#include <om_ui/object_lists.h>
#include <om_ui/qgeo_object.h>

#include <QGeoCoordinate>
#include <QGeoRectangle>
#include <QObject>
#include <QString>

namespace math_geo {
class ProjectionPlane;
}

namespace overmap {
class GeoObject;
}

namespace overmap_ui {

class QCalculation;
class QChannelFetcher;
class QPositionObject;
class QTrack;

/// Owns the display objects of one scene in the lists that the views bind to, makes new
/// ones with their default names, and passes the time step and plane changes on to them.
/// Every change of any object ends in dataChanged, upon which the setup is written.
class QObjectManager : public QObject, public IfObjectManager
{
    Q_OBJECT
    Q_PROPERTY(overmap_ui::QPositionObjectList* positionObjects READ positionObjects CONSTANT)
    Q_PROPERTY(overmap_ui::QTrackList* tracks READ tracks CONSTANT)
    Q_PROPERTY(overmap_ui::QGeoObjectList* allObjects READ allObjects CONSTANT)
    Q_PROPERTY(overmap_ui::QCalculationList* calculations READ calculations CONSTANT)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)
    Q_PROPERTY(QGeoCoordinate allObjectsCenter READ allObjectsCenter NOTIFY dataChanged)

public:
    /// @p plane is the scene's reference plane, given to every new model object; not owned.
    explicit QObjectManager(math_geo::ProjectionPlane* plane, QObject* parent = nullptr);
    ~QObjectManager() override;

    QPositionObjectList* positionObjects() const { return m_position_objects; }
    QTrackList* tracks() const { return m_tracks; }
    QGeoObjectList* allObjects() const { return m_all_objects; }
    QCalculationList* calculations() const { return m_calculations; }

    /// Makes an object of @p type with a free default name ("Car 1"); null for an unknown type.
    Q_INVOKABLE overmap_ui::QGeoObject* addObject(overmap_ui::QGeoObject::Type type);
    Q_INVOKABLE overmap_ui::QGeoObject* addObject(int type);
    /// Removes row @p idx of allObjects, also when a calculation uses it: asking
    /// isItemRemovable first is the caller's task. Objects placed on it lose their reference.
    Q_INVOKABLE bool removeItem(int idx);
    /// False for a bad row and for an object that a calculation measures from or to.
    Q_INVOKABLE bool isItemRemovable(int idx) const;
    /// Null for a negative or unknown id.
    Q_INVOKABLE overmap_ui::QGeoObject* getObjectById(int id) const;
    /// The union of all objects' extents; a default rectangle without objects.
    Q_INVOKABLE QGeoRectangle enclosingRectangle() const;
    Q_INVOKABLE overmap_ui::QCalculation* addCalculation();
    Q_INVOKABLE bool removeCalculation(int idx);

    QGeoCoordinate allObjectsCenter() const;
    QString description() const { return m_description; }
    void setDescription(const QString& text);

    void setChannelFetcher(QChannelFetcher* fetcher) { m_channel_fetcher = fetcher; }
    math_geo::ProjectionPlane* projectionPlane() const { return m_projection_plane; }

    // For the model that builds a scene from its setup.
    void addPositionObject(QPositionObject* object);
    void addTrack(QTrack* object);
    /// Adds a calculation read from the setup; its name is kept.
    void addExistingCalculation(QCalculation* calculation);
    /// Empties all lists, deleting the objects and calculations, and the description.
    /// The lists themselves stay, so that bindings to them survive.
    void clear();
    /// The display object of @p model, compared by pointer; null if there is none.
    QPositionObject* findPositionObject(const overmap::GeoObject* model) const;
    QGeoObject* findGeoObject(const overmap::GeoObject* model) const;

    // IfObjectManager
    QList<QGeoObject*> allGeoObjects() const override;
    QChannelFetcher* channelFetcher() const override { return m_channel_fetcher; }

public Q_SLOTS:
    /// Brings every position object to @p time (seconds); tracks do not move with time.
    void updatePositions(double time);
    /// After the reference plane moved.
    void updateXYPositions();

Q_SIGNALS:
    void dataChanged();
    void descriptionChanged(QString description);

private:
    /// Gives @p object the first free name "<default name> <n>", n counting from the
    /// number of objects of its type.
    void nameNewObject(QGeoObject* object);

    QPositionObjectList* m_position_objects;
    QTrackList* m_tracks;
    QGeoObjectList* m_all_objects;
    QCalculationList* m_calculations;
    QChannelFetcher* m_channel_fetcher = nullptr;
    math_geo::ProjectionPlane* m_projection_plane;
    QString m_description;
};

} // namespace overmap_ui
