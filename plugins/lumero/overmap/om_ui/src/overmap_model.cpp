#include <om_ui/overmap_model.h>

#include "om_ui_log.h"

#include <om_ui/object_lists.h>
#include <om_ui/qcalculation.h>
#include <om_ui/qcar.h>
#include <om_ui/qcone.h>
#include <om_ui/qlocator.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qtrack.h>

#include <ferrin_core/scalar_channel.h>
#include <lum_host/if_application_state.h>
#include <lum_host/qextension_module.h>
#include <lum_utils/image_setup_xml.h>
#include <lum_utils/image_store.h>
#include <math_geo/geo_position.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <pugixml.hpp>

#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QQmlEngine>
#include <QSet>
#include <QSettings>

#include <cmath>
#include <sstream>

namespace overmap_ui {

using lum::qchannel::QChannel;
using lum::qchannel::QChannelListModel;

namespace {

constexpr double PROBE_INTERVAL_MS = 60000;
/// Closer than this, two objects stand on one another.
constexpr double SAME_PLACE_METRES = 0.001;

math_geo::GeoPosition toGeo(const QGeoCoordinate& coordinate)
{
    return math_geo::GeoPosition(coordinate.latitude(), coordinate.longitude());
}

QGeoCoordinate toQt(const math_geo::GeoPosition& position)
{
    return QGeoCoordinate(position.latitude, position.longitude);
}

math_geo::Point2D toPoint(QPointF point)
{
    return math_geo::Point2D(point.x(), point.y(), overmap::defaultPlaneCoordinateSystem());
}

QPointF toQt(const math_geo::Point2D& point)
{
    return QPointF(point.x, point.y);
}

/// The local file of @p url; a URL without scheme is taken as a path.
QString localPath(const QUrl& url)
{
    if (url.isLocalFile())
        return url.toLocalFile();
    return url.scheme().isEmpty() ? url.path() : QString();
}

} // namespace

OvermapModel::OvermapModel(QObject* parent)
    : QObject(parent), m_network(std::make_unique<QNetworkAccessManager>()),
      m_input_channels(std::make_unique<QChannelListModel>(QChannelListModel::DELIVERY_IMMEDIATE)),
      m_objects_manager(std::make_unique<QObjectManager>(m_reference_plane.projectionPlane()))
{
    m_objects_manager->setChannelFetcher(&m_channel_fetcher);
    connect(m_objects_manager.get(), &QObjectManager::dataChanged, this,
            &OvermapModel::scheduleExtensionUpdate);
    connect(m_objects_manager.get(), &QObjectManager::dataChanged, this, &OvermapModel::resetInputChannels);
    connect(&m_reference_plane, &ReferencePlane::planeChanged, m_objects_manager.get(),
            &QObjectManager::updateXYPositions);
    connect(&m_reference_plane, &ReferencePlane::planeChanged, this, &OvermapModel::scheduleExtensionUpdate);

    m_probe_timer.setInterval(static_cast<int>(PROBE_INTERVAL_MS));
    m_probe_timer.setSingleShot(false);
    connect(&m_probe_timer, &QTimer::timeout, this, &OvermapModel::checkNetwork);
    connect(m_network.get(), &QNetworkAccessManager::finished, this, &OvermapModel::checkNetworkReply);
    m_probe_url = QUrl(QSettings().value(PROBE_URL_KEY, QString::fromLatin1(DEFAULT_PROBE_URL)).toString());
    checkNetwork();
}

OvermapModel::~OvermapModel()
{
    // The members go in reverse order, the objects manager first; its objects must not
    // call back into a model that is half gone.
    if (m_locator)
        disconnect(m_locator.data(), nullptr, this, nullptr);
    disconnect(m_objects_manager.get(), nullptr, this, nullptr);
    m_extension_ready = false;
}

lum::qchannel::QChannelListModel* OvermapModel::inputChannels() const
{
    QQmlEngine::setObjectOwnership(m_input_channels.get(), QQmlEngine::CppOwnership);
    return m_input_channels.get();
}

QPositionObject* OvermapModel::locator() const
{
    return m_locator.data();
}

bool OvermapModel::isOnline() const
{
    m_probe_timer.start();
    return m_online;
}

void OvermapModel::scheduleExtensionUpdate()
{
    if (!m_extension_ready || m_update_pending)
        return;
    // The queued call is the whole debounce: a burst of changes in one turn of the event
    // loop costs one write.
    QMetaObject::invokeMethod(this, "sendXMLToExtension", Qt::QueuedConnection);
    m_update_pending = true;
}

void OvermapModel::sendXMLToExtension()
{
    if (m_extension == nullptr || !m_extension_ready)
        return;
    m_update_pending = false;

    overmap::ObjectManager record;
    record.setDescription(m_description.toStdString());
    record.setReferencePlane(*m_reference_plane.projectionPlane());
    record.setPlaneDefinition(
        {toGeo(m_reference_plane.primaryGPSPoint()), toGeo(m_reference_plane.secondaryGPSPoint()),
         toPoint(m_reference_plane.primaryXYPoint()), toPoint(m_reference_plane.secondaryXYPoint())});
    record.setUsePlaneDefinitionPoints(m_reference_plane.usePointsDefinition());
    record.setViewDescription(m_reference_plane.description().toStdString());
    overmap::MapSetupView view;
    view.center = toGeo(m_reference_plane.viewCenter());
    view.rotation = m_reference_plane.viewRotation();
    view.scale = m_reference_plane.viewScaling();
    record.setMapSetupView(view);
    if (const AerialImage* image = m_reference_plane.backgroundImage()) {
        overmap::AerialImage aerial;
        aerial.imagePath = image->imagePath().toStdString();
        aerial.definition = {toGeo(image->primaryGPSPoint()), toGeo(image->secondaryGPSPoint()),
                             toPoint(image->primaryXYPoint()), toPoint(image->secondaryXYPoint())};
        record.setAerialImage(aerial);
    }
    record.setObjectsDescription(m_objects_manager->description().toStdString());

    for (QPositionObject* object : m_objects_manager->positionObjects()->typedList()) {
        object->syncModelPois();
        record.addObject(object->positionModel());
    }
    for (QTrack* track : m_objects_manager->tracks()->typedList())
        record.addObject(track->geoModel());
    record.setLocator(m_locator ? m_locator->geoModel() : nullptr);
    for (QCalculation* calculation : m_objects_manager->calculations()->typedList())
        record.addCalculation(calculation->calculationModel());

    std::string text;
    overmap::XmlReadWriter(&record, nullptr).write(text);
    m_sending_to_extension = true;
    m_extension->setExtensionConfiguration(QString::fromStdString(text));
    m_sending_to_extension = false;
}

void OvermapModel::loadFromExtension()
{
    if (m_sending_to_extension)
        return; // the echo of this model's own write
    if (m_extension == nullptr || m_channel_list == nullptr)
        return;
    if (m_update_pending) {
        // A write of this model is on its way and will overwrite the incoming text.
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Update in this UI-extension is pending - ignoring update "
                                                   "from the model (assuming just a topology change)";
        return;
    }
    m_channel_fetcher.setNodeId(m_extension->nodeId());
    m_extension_ready = false;

    overmap::ObjectManager record;
    if (!overmap::XmlReadWriter(&record, &m_channel_fetcher)
             .read(m_extension->getExtensionConfiguration().toStdString())) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Unanble to load overmap setup for the UI";
        m_extension_ready = true;
        return;
    }

    setConfigFile(QString());
    m_objects_manager->clear();

    setDescription(QString::fromStdString(record.getDescription()));
    const math_geo::ProjectionPlane& plane = *record.getReferencePlane();
    const overmap::PlaneDefinition& definition = record.getPlaneDefinition();
    m_reference_plane.setDescription(QString::fromStdString(record.getViewDescription()));
    m_reference_plane.setPlaneOrigin(toQt(plane.getCenter()));
    m_reference_plane.setPlaneRotation(plane.getRotation());
    m_reference_plane.setPrimaryGPSPoint(toQt(definition.primaryPosition));
    m_reference_plane.setPrimaryXYPoint(toQt(definition.primaryPoint));
    m_reference_plane.setSecondaryGPSPoint(toQt(definition.secondaryPosition));
    m_reference_plane.setSecondaryXYPoint(toQt(definition.secondaryPoint));
    m_reference_plane.setUsePointsDefinition(record.getUsePlaneDefinitionPoints());
    const overmap::MapSetupView& view = record.getMapSetupView();
    QGeoCoordinate center = toQt(view.center);
    const QGeoCoordinate origin = m_reference_plane.planeOrigin();
    if (center.latitude() == 0.0 && center.longitude() == 0.0 &&
        (origin.latitude() != 0.0 || origin.longitude() != 0.0))
        center = origin;
    m_reference_plane.setViewCenter(center);
    m_reference_plane.setViewRotation(view.rotation);
    m_reference_plane.setViewScaling(view.scale);
    if (AerialImage* image = m_reference_plane.backgroundImage()) {
        const overmap::AerialImage& aerial = record.getAerialImage();
        image->setImagePath(QString::fromStdString(aerial.imagePath));
        image->setPoints(toQt(aerial.definition.primaryPosition), toQt(aerial.definition.primaryPoint),
                         toQt(aerial.definition.secondaryPosition), toQt(aerial.definition.secondaryPoint));
    }
    m_objects_manager->setDescription(QString::fromStdString(record.getObjectsDescription()));

    QObjectManager* manager = m_objects_manager.get();
    for (const std::shared_ptr<overmap::GeoObject>& object : record.getObjects()) {
        object->setPlane(m_reference_plane.projectionPlane());
        QPositionObject* position_object = nullptr;
        if (auto car = std::dynamic_pointer_cast<overmap::Car>(object))
            position_object = new QCar(car, manager);
        else if (auto cone = std::dynamic_pointer_cast<overmap::Cone>(object))
            position_object = new QCone(cone, manager);
        else if (auto locator = std::dynamic_pointer_cast<overmap::Locator>(object))
            position_object = new QLocator(locator, manager);
        if (position_object != nullptr) {
            position_object->refreshPois();
            bindChannels(*position_object);
            manager->addPositionObject(position_object);
        } else if (auto path = std::dynamic_pointer_cast<overmap::TrackPath>(object)) {
            manager->addTrack(new QTrackPath(path, nullptr));
        } else if (auto line = std::dynamic_pointer_cast<overmap::TrackLine>(object)) {
            manager->addTrack(new QTrackLine(line, nullptr));
        }
    }

    const std::shared_ptr<overmap::GeoObject>& record_locator = record.getLocator();
    setLocator(record_locator ? manager->findPositionObject(record_locator.get()) : nullptr);

    for (const std::shared_ptr<overmap::Calculation>& calculation : record.getCalculations())
        manager->addExistingCalculation(new QCalculation(calculation, manager, &m_channel_fetcher));

    m_extension_ready = true;
    resetInputChannels();
    Q_EMIT configurationUpdated();
}

void OvermapModel::bindChannels(QPositionObject& object)
{
    if (m_channel_list == nullptr)
        return;
    const std::shared_ptr<overmap::PositionObject>& model = object.positionModel();
    const auto bind = [this, &object](const overmap::PositionObject::ChannelPtr& channel,
                                      void (QPositionObject::*setter)(QChannel*)) {
        if (!channel)
            return;
        QChannel* qchannel = m_channel_list->getChannelByID(channel->getChannelId());
        if (UNI_ASSERT(qchannel != nullptr))
            (object.*setter)(qchannel);
    };
    bind(model->getLatitudeChannel(), &QPositionObject::setLatitudeChannel);
    bind(model->getLongitudeChannel(), &QPositionObject::setLongitudeChannel);
    bind(model->getHeadingChannel(), &QPositionObject::setHeadingChannel);
}

void OvermapModel::resetInputChannels()
{
    // A rebuild adds objects one by one; it resets the list once at its end.
    if (!m_extension_ready)
        return;
    m_input_channels->clearList(false);
    QList<QObject*> channels;
    QSet<QObject*> seen;
    for (QPositionObject* object : m_objects_manager->positionObjects()->typedList()) {
        for (QChannel* channel :
             {object->headingChannel(), object->latitudeChannel(), object->longitudeChannel()}) {
            if (channel != nullptr && !seen.contains(channel)) {
                seen.insert(channel);
                channels.append(channel);
            }
        }
    }
    if (!channels.isEmpty())
        m_input_channels->appendChannels(channels);
    Q_EMIT inputChannelsChanged();
}

void OvermapModel::setChannelList(lum::qchannel::QChannelListModel* list)
{
    if (m_channel_list == list)
        return;
    m_channel_list = list;
    m_channel_fetcher.setChannelList(list);
    if (m_extension != nullptr)
        loadFromExtension();
    Q_EMIT channelListChanged();
}

void OvermapModel::setExtension(QExtensionModule* extension)
{
    if (m_extension == extension)
        return;
    m_extension = extension;
    if (extension != nullptr) {
        // The former extension's connection stays: a host replaces an extension only
        // together with the model.
        connect(extension, &QExtensionModule::extensionConfigurationChanged, this,
                &OvermapModel::loadFromExtension);
        m_channel_fetcher.setNodeId(extension->nodeId());
    }
    Q_EMIT extensionChanged();
    if (m_channel_list != nullptr)
        loadFromExtension();
}

void OvermapModel::setImageStore(lum_utils::ImageStore* store)
{
    if (m_image_store == store)
        return;
    m_image_store = store;
    Q_EMIT imageStoreChanged();
}

void OvermapModel::setAppState(lum::IfApplicationState* state)
{
    if (m_app_state == state)
        return;
    m_app_state = state;
    Q_EMIT appStateChanged();
}

void OvermapModel::setDescription(const QString& description)
{
    if (m_description == description)
        return;
    m_description = description;
    Q_EMIT descriptionChanged(m_description);
    scheduleExtensionUpdate();
}

void OvermapModel::setDisplayTime(double time)
{
    if (std::fabs(time - m_display_time) < 1e-06)
        return;
    m_display_time = time;
    Q_EMIT displayTimeChanged();
    m_objects_manager->updatePositions(time);
}

void OvermapModel::updatePositions()
{
    m_objects_manager->updatePositions(m_display_time);
}

void OvermapModel::setLocator(QPositionObject* object)
{
    if (m_locator.data() == object)
        return;
    if (m_locator)
        disconnect(m_locator.data(), nullptr, this, nullptr);
    m_locator = object;
    if (object != nullptr) {
        connect(object, &QObject::destroyed, this, [this] {
            m_locator.clear();
            scheduleExtensionUpdate();
            Q_EMIT locatorChanged();
        });
    }
    scheduleExtensionUpdate();
    Q_EMIT locatorChanged();
}

void OvermapModel::setMapSetupLocked(bool locked)
{
    if (m_map_setup_locked == locked)
        return;
    m_map_setup_locked = locked;
    Q_EMIT mapSetupLockedChanged();
}

void OvermapModel::setConfigFile(const QString& path)
{
    m_config_file = path;
    Q_EMIT configFileChanged();
}

lum::qchannel::QChannel* OvermapModel::getChannel(quint32 local_id)
{
    if (m_channel_list == nullptr)
        return nullptr;
    QChannel* channel = m_channel_fetcher.getChannelByLocalId(local_id);
    if (channel != nullptr)
        QQmlEngine::setObjectOwnership(channel, QQmlEngine::CppOwnership);
    return channel;
}

void OvermapModel::resetModel()
{
    m_objects_manager->clear();
    m_reference_plane.clear();
    setConfigFile(QString());
    setDescription(QString());
    setLocator(nullptr);
    scheduleExtensionUpdate();
}

QGeoCoordinate OvermapModel::defaultPosition()
{
    QGeoCoordinate candidate = m_locator ? m_locator->position() : m_reference_plane.planeOrigin();
    const QList<QPositionObject*> objects = m_objects_manager->positionObjects()->typedList();
    bool moved = true;
    while (moved) {
        moved = false;
        for (const QPositionObject* object : objects) {
            const double distance =
                toGeo(object->position()).distanceTo(toGeo(candidate), math_geo::DistanceMethod::GEODESIC);
            if (distance < SAME_PLACE_METRES) {
                const QPointF xy = m_reference_plane.projectToXY(candidate);
                candidate = m_reference_plane.projectToGPS(xy.x() - 1.0, xy.y() - 1.0);
                moved = true;
            }
        }
    }
    return candidate;
}

// --- files ---

bool OvermapModel::loadSetup(QUrl url)
{
    QFile file(localPath(url));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QString text = QString::fromUtf8(file.readAll());
    extractEmbeddedImages(text);
    if (m_extension != nullptr)
        m_extension->setExtensionConfiguration(text);
    // Behind the call: the extension's signal clears the config file.
    setConfigFile(file.fileName());
    return true;
}

bool OvermapModel::saveWhole(const QUrl& url)
{
    QFile file(localPath(url));
    if (m_extension == nullptr || !file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray bytes = embedBackgroundImage(m_extension->getExtensionConfiguration()).toUtf8();
    if (file.write(bytes) != bytes.size())
        return false;
    setConfigFile(file.fileName());
    return true;
}

bool OvermapModel::saveSetup(QUrl url)
{
    return saveWhole(url);
}

bool OvermapModel::saveLocation(QUrl url)
{
    return saveWhole(url);
}

bool OvermapModel::saveObjects(QUrl url)
{
    return saveWhole(url);
}

bool OvermapModel::loadLocation(QUrl url)
{
    return loadParts(url, {QStringLiteral("View")}, true);
}

bool OvermapModel::loadObjects(QUrl url)
{
    return loadParts(
        url, {QStringLiteral("GeoObjects"), QStringLiteral("Tracks"), QStringLiteral("Calculations")}, false);
}

bool OvermapModel::loadParts(const QUrl& url, const QStringList& elements, bool extract_images)
{
    QFile file(localPath(url));
    if (m_extension == nullptr || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray file_text = file.readAll();
    const QByteArray extension_text = m_extension->getExtensionConfiguration().toUtf8();
    pugi::xml_document target;
    pugi::xml_document source;
    target.load_buffer(extension_text.constData(), static_cast<std::size_t>(extension_text.size()));
    source.load_buffer(file_text.constData(), static_cast<std::size_t>(file_text.size()));
    pugi::xml_node target_root = target.child("Overmap");
    const pugi::xml_node source_root = source.child("Overmap");
    // All elements must be there in both before anything changes.
    for (const QString& name : elements) {
        const QByteArray element = name.toUtf8();
        if (!target_root.child(element.constData()) || !source_root.child(element.constData()))
            return false;
    }
    for (const QString& name : elements) {
        const QByteArray element = name.toUtf8();
        const pugi::xml_node old_node = target_root.child(element.constData());
        target_root.insert_copy_before(source_root.child(element.constData()), old_node);
        target_root.remove_child(old_node);
    }
    if (extract_images)
        extractEmbeddedImages(QString::fromUtf8(file_text));
    std::ostringstream out;
    target.save(out, " ", pugi::format_indent);
    m_extension->setExtensionConfiguration(QString::fromStdString(out.str()));
    return true;
}

void OvermapModel::extractEmbeddedImages(const QString& xml)
{
    if (!UNI_ASSERT(m_image_store != nullptr))
        return;
    lum_utils::readImagesFromSetupXml(xml, *m_image_store);
}

QString OvermapModel::embedBackgroundImage(const QString& xml)
{
    if (!UNI_ASSERT(m_image_store != nullptr))
        return xml;
    const AerialImage* image = m_reference_plane.backgroundImage();
    return image != nullptr ? lum_utils::addImageToSetupXml(xml, *m_image_store, image->imagePath()) : xml;
}

// --- online probe ---

void OvermapModel::setProbeUrl(const QUrl& url)
{
    m_probe_url = url;
    checkNetwork();
}

void OvermapModel::checkNetwork()
{
    // The reply is not tracked: the manager's finished signal delivers it.
    m_network->get(QNetworkRequest(m_probe_url));
}

void OvermapModel::checkNetworkReply(QNetworkReply* reply)
{
    const bool online = reply->error() == QNetworkReply::NoError;
    if (online != m_online) {
        // Logged on a change only: an offline machine hears of it once, not every minute.
        if (online)
            UNI_LOG(detail::LOG_CHANNEL, SEV_NOTICE)
                << "Map provider reachable again at " << m_probe_url.toString().toStdString();
        else
            UNI_LOG(detail::LOG_CHANNEL, SEV_NOTICE)
                << "Map provider not reachable at " << m_probe_url.toString().toStdString() << ": "
                << reply->errorString().toStdString() << "; the view shows no street map";
        m_online = online;
        Q_EMIT isOnlineChanged(m_online);
    }
    reply->deleteLater();
}

} // namespace overmap_ui
