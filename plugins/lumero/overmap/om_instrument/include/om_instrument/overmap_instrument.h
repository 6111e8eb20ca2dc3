#pragma once

#include <instrument_interface/instrument_model.h>
#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>

#include <QGeoCoordinate>
#include <QString>

#include <memory>
#include <string>

namespace im {

/// The type identifier and group of the map instrument; the plug-in's descriptor and the
/// instrument answer with these same two strings.
extern const std::string OVERMAP_TYPE_ID;
extern const std::string OVERMAP_GROUP;

/// The map instrument: how one instrument looks at the shared scene (map, background
/// image, camera, followed object, hidden objects), and the two models its view binds to.
/// The scene itself lives in the setup of the host's extension module; object ids are
/// the only link between the two.
class OvermapInstrument : public InstrumentModel
{
    Q_OBJECT
    Q_PROPERTY(bool showMap READ showMap WRITE setShowMap NOTIFY showMapChanged)
    Q_PROPERTY(double mapOpacity READ mapOpacity WRITE setMapOpacity NOTIFY mapOpacityChanged)
    Q_PROPERTY(bool showBackgroundImage READ showBackgroundImage WRITE setShowBackgroundImage NOTIFY
                   showBackgroundImageChanged)
    Q_PROPERTY(double backgroundImageOpacity READ backgroundImageOpacity WRITE setBackgroundImageOpacity
                   NOTIFY backgroundImageOpacityChanged)
    Q_PROPERTY(QGeoCoordinate center READ center WRITE setCenter NOTIFY centerChanged)
    Q_PROPERTY(double zoomFactor READ zoomFactor WRITE setZoomFactor NOTIFY zoomFactorChanged)
    Q_PROPERTY(double mapHeading READ mapHeading WRITE setMapHeading NOTIFY mapHeadingChanged)
    Q_PROPERTY(bool followObjectPosition READ followObjectPosition WRITE setFollowObjectPosition NOTIFY
                   followObjectPositionChanged)
    Q_PROPERTY(int positionObjectToFollow READ positionObjectToFollow WRITE setPositionObjectToFollow NOTIFY
                   positionObjectToFollowChnaged)
    Q_PROPERTY(overmap_ui::OvermapModel* geoModel READ geoModel CONSTANT)
    Q_PROPERTY(overmap_ui::PositionObjectsFilteredModel* objectsFilterModel READ objectsFilterModel CONSTANT)
    Q_PROPERTY(
        QString filteredObjects READ filteredObjects WRITE setFilteredObjects NOTIFY filteredObjectsChanged)

public:
    /// The extension module that holds the scene's setup.
    static constexpr const char* EXTENSION_ID = "EB69CED9-93DA-4E49-A377-2161F674DC1D";

    explicit OvermapInstrument(QObject* parent = nullptr);
    ~OvermapInstrument() override;

    std::string getType() const override { return OVERMAP_TYPE_ID; }
    std::string getGroup() const override { return OVERMAP_GROUP; }
    bool hostCapabilityFlag() const override { return true; }
    void connectToApplication() override;
    /// The heading, latitude and longitude channel of every position object, hidden or not.
    void updateDataWindows() override;

    bool showMap() const { return m_show_map; }
    void setShowMap(bool show_map);
    double mapOpacity() const { return m_map_opacity; }
    void setMapOpacity(double map_opacity);
    bool showBackgroundImage() const { return m_show_background_image; }
    void setShowBackgroundImage(bool show_background_image);
    double backgroundImageOpacity() const { return m_background_image_opacity; }
    void setBackgroundImageOpacity(double background_image_opacity);
    QGeoCoordinate center() const { return m_center; }
    void setCenter(const QGeoCoordinate& center);
    double zoomFactor() const { return m_zoom_factor; }
    void setZoomFactor(double zoom_factor);
    double mapHeading() const { return m_map_heading; }
    void setMapHeading(double map_heading);
    bool followObjectPosition() const { return m_follow_object_position; }
    void setFollowObjectPosition(bool follow);
    int positionObjectToFollow() const { return m_position_object_to_follow; }
    void setPositionObjectToFollow(int id);
    overmap_ui::OvermapModel* geoModel() const { return m_geo_model.get(); }
    overmap_ui::PositionObjectsFilteredModel* objectsFilterModel() const { return m_filter_model.get(); }

    /// The hidden ids, ascending, as "2,5,11"; empty for none.
    QString filteredObjects() const;
    /// Replaces the hidden ids; a part that is no number stands for id 0.
    void setFilteredObjects(const QString& value);

    Q_INVOKABLE bool isObjectFiltered(int id) const;
    Q_INVOKABLE void setObjectFiltered(int id, bool filtered);

Q_SIGNALS:
    void showMapChanged(bool show_map);
    void mapOpacityChanged(double map_opacity);
    void showBackgroundImageChanged(bool show_background_image);
    void backgroundImageOpacityChanged(double background_image_opacity);
    void centerChanged(QGeoCoordinate center);
    void zoomFactorChanged(double zoom_factor);
    void mapHeadingChanged(double map_heading);
    void followObjectPositionChanged(bool followObjectPosition);
    void positionObjectToFollowChnaged(int position_object_to_follow);
    void objectFilterChanged();
    void filteredObjectsChanged();

private Q_SLOTS:
    /// Drops hidden ids whose objects the new configuration no longer has.
    void checkForOrphanedFilteredObjects();

private:
    bool m_show_map = true;
    double m_map_opacity = 1.0;
    QGeoCoordinate m_center{0.0, 0.0};
    double m_zoom_factor = 1.0;
    double m_map_heading = 0.0;
    bool m_show_background_image = true;
    double m_background_image_opacity = 1.0;
    bool m_follow_object_position = false;
    int m_position_object_to_follow = -1;
    // The filter goes first on destruction: it points into the model's lists.
    std::unique_ptr<overmap_ui::OvermapModel> m_geo_model;
    std::unique_ptr<overmap_ui::PositionObjectsFilteredModel> m_filter_model;
};

} // namespace im
