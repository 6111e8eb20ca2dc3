#pragma once

#include <om_ui/qchannel_fetcher.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>
#include <om_ui/reference_plane.h>

// Complete types: the views read these properties, which needs their meta-types.
#include <lum_host/if_application_state.h>
#include <lum_host/qextension_module.h>
#include <lum_utils/image_store.h>
#include <qchannel/qchannel_list_model.h>

#include <QGeoCoordinate>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <cstdint>
#include <memory>

class QNetworkAccessManager;
class QNetworkReply;

namespace overmap_ui {

/// The centre of the display layer: keeps the object graph the views bind to and the
/// setup text in the host's extension module in step. The extension holds the one true
/// copy; the model is a cache with write-back: it rebuilds on every change of the text,
/// and writes the whole graph back once per turn of the event loop after any change.
class OvermapModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(overmap_ui::QObjectManager* objectsManager READ objectsManager CONSTANT)
    Q_PROPERTY(QExtensionModule* extension READ extension WRITE setExtension NOTIFY extensionChanged)
    Q_PROPERTY(lum::qchannel::QChannelListModel* channelList READ channelList WRITE setChannelList NOTIFY
                   channelListChanged)
    Q_PROPERTY(lum_utils::ImageStore* imageStore READ imageStore WRITE setImageStore NOTIFY imageStoreChanged)
    Q_PROPERTY(overmap_ui::ReferencePlane* referencePlane READ referencePlane CONSTANT)
    Q_PROPERTY(lum::qchannel::QChannelListModel* inputChannels READ inputChannels CONSTANT)
    Q_PROPERTY(overmap_ui::QPositionObject* locator READ locator WRITE setLocator NOTIFY locatorChanged)
    Q_PROPERTY(bool mapSetupLocked READ mapSetupLocked WRITE setMapSetupLocked NOTIFY mapSetupLockedChanged)
    Q_PROPERTY(bool isOnline READ isOnline NOTIFY isOnlineChanged)
    Q_PROPERTY(double displayTime READ displayTime WRITE setDisplayTime NOTIFY displayTimeChanged)
    Q_PROPERTY(QString configFile READ configFile NOTIFY configFileChanged)
    Q_PROPERTY(lum::IfApplicationState* appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)
    Q_PROPERTY(QString version READ version CONSTANT)

public:
    /// The settings key of the address that the online probe asks for.
    static constexpr const char* PROBE_URL_KEY = "overmap/onlineProbeUrl";
    /// The map provider's home page: what a user with internet reaches.
    static constexpr const char* DEFAULT_PROBE_URL = "https://www.openstreetmap.org/";

    explicit OvermapModel(QObject* parent = nullptr);
    ~OvermapModel() override;

    QObjectManager* objectsManager() const { return m_objects_manager.get(); }
    QExtensionModule* extension() const { return m_extension; }
    Q_INVOKABLE void setExtension(QExtensionModule* extension);
    lum::qchannel::QChannelListModel* channelList() const { return m_channel_list; }
    void setChannelList(lum::qchannel::QChannelListModel* list);
    lum_utils::ImageStore* imageStore() const { return m_image_store; }
    void setImageStore(lum_utils::ImageStore* store);
    ReferencePlane* referencePlane() { return &m_reference_plane; }
    /// Every channel that moves an object, once each, in first-use order.
    lum::qchannel::QChannelListModel* inputChannels() const;
    QPositionObject* locator() const;
    void setLocator(QPositionObject* object);
    bool mapSetupLocked() const { return m_map_setup_locked; }
    void setMapSetupLocked(bool locked);
    /// Reading it (re)starts the probe timer: a model nobody asks never polls.
    bool isOnline() const;
    double displayTime() const { return m_display_time; }
    void setDisplayTime(double time);
    QString configFile() const { return m_config_file; }
    lum::IfApplicationState* appState() const { return m_app_state; }
    void setAppState(lum::IfApplicationState* state);
    QString description() const { return m_description; }
    void setDescription(const QString& description);
    QString version() const { return QStringLiteral("1.0"); }

    Q_INVOKABLE bool loadSetup(QUrl url);
    Q_INVOKABLE bool saveSetup(QUrl url);
    Q_INVOKABLE bool loadLocation(QUrl url);
    Q_INVOKABLE bool saveLocation(QUrl url);
    Q_INVOKABLE bool loadObjects(QUrl url);
    Q_INVOKABLE bool saveObjects(QUrl url);
    Q_INVOKABLE void resetModel();
    Q_INVOKABLE lum::qchannel::QChannel* getChannel(quint32 local_id);
    /// A place for a new object on which no other stands.
    Q_INVOKABLE QGeoCoordinate defaultPosition();

    /// The address of the online probe; set, it probes at once.
    QUrl probeUrl() const { return m_probe_url; }
    void setProbeUrl(const QUrl& url);

Q_SIGNALS:
    void configurationUpdated();
    void inputChannelsChanged();
    void locatorChanged();
    void mapSetupLockedChanged();
    void isOnlineChanged(bool isOnline);
    void appDataChanged();
    void displayTimeChanged();
    void channelListChanged();
    void imageStoreChanged();
    void extensionChanged();
    void appStateChanged();
    void configFileChanged();
    void descriptionChanged(QString description);

private Q_SLOTS:
    void checkNetwork();
    void checkNetworkReply(QNetworkReply* reply);
    void updatePositions();
    void sendXMLToExtension();
    void resetInputChannels();

private:
    void scheduleExtensionUpdate();
    void loadFromExtension();
    void bindChannels(QPositionObject& object);
    void setConfigFile(const QString& path);
    /// The file's text into the extension in place of the named top-level elements.
    bool loadParts(const QUrl& url, const QStringList& elements, bool extract_images);
    bool saveWhole(const QUrl& url);
    void extractEmbeddedImages(const QString& xml);
    QString embedBackgroundImage(const QString& xml);

    // Destroyed last to first: the objects manager goes first, as it owns the objects.
    QChannelFetcher m_channel_fetcher;
    ReferencePlane m_reference_plane;
    QPointer<QPositionObject> m_locator;
    std::unique_ptr<QNetworkAccessManager> m_network;
    mutable QTimer m_probe_timer;
    std::unique_ptr<lum::qchannel::QChannelListModel> m_input_channels;
    std::unique_ptr<QObjectManager> m_objects_manager;

    QExtensionModule* m_extension = nullptr;
    lum::qchannel::QChannelListModel* m_channel_list = nullptr;
    lum_utils::ImageStore* m_image_store = nullptr;
    lum::IfApplicationState* m_app_state = nullptr;
    bool m_extension_ready = true;
    bool m_update_pending = false;
    bool m_sending_to_extension = false;
    bool m_map_setup_locked = true;
    bool m_online = true;
    double m_display_time = 0.0;
    QString m_config_file;
    QString m_description;
    QUrl m_probe_url;
};

} // namespace overmap_ui
