#include <om_instrument/overmap_instrument.h>

#include <instrument_interface/if_application.h>
#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>
#include <qchannel/qchannel.h>

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <mutex>

namespace im {

const std::string OVERMAP_TYPE_ID = "lum::overmap";
const std::string OVERMAP_GROUP = "Automotive";

namespace {

/// Qt's fuzzy rule for doubles: equal when the smaller magnitude is at least 1e12 times
/// the difference.
bool sameValue(double a, double b)
{
    return std::fabs(a - b) * 1e12 <= std::min(std::fabs(a), std::fabs(b));
}

/// The window mode with which the map asks for its input channels.
constexpr std::int32_t INPUT_WINDOW_MODE = 2;

} // namespace

OvermapInstrument::OvermapInstrument(QObject* parent)
    : InstrumentModel(parent), m_geo_model(std::make_unique<overmap_ui::OvermapModel>()),
      m_filter_model(std::make_unique<overmap_ui::PositionObjectsFilteredModel>())
{
    setMaxChannels(0);
    connect(m_geo_model.get(), &overmap_ui::OvermapModel::configurationUpdated, this,
            [this] { onDataWindowChangeDetected(); });
    connect(m_geo_model.get(), &overmap_ui::OvermapModel::configurationUpdated, this,
            &OvermapInstrument::checkForOrphanedFilteredObjects);
    m_filter_model->setSourceModel(m_geo_model->objectsManager()->positionObjects());
}

OvermapInstrument::~OvermapInstrument()
{
    m_filter_model.reset();
    m_geo_model.reset();
}

void OvermapInstrument::connectToApplication()
{
    IfApplication* application = getApplication();
    if (application == nullptr)
        return;
    m_geo_model->setExtension(application->getExtensionModule(QString::fromLatin1(EXTENSION_ID)));
    m_geo_model->setChannelList(application->getChannels());
}

void OvermapInstrument::updateDataWindows()
{
    std::lock_guard<std::recursive_mutex> lock(channelsLock());
    std::vector<ChannelDataWindow>& windows = dataWindows();
    windows.clear();
    const auto* objects = m_geo_model->objectsManager()->positionObjects();
    for (int i = 0; i < objects->size(); ++i) {
        const overmap_ui::QPositionObject* object = objects->at(i);
        if (object == nullptr)
            continue;
        for (lum::qchannel::QChannel* channel :
             {object->headingChannel(), object->latitudeChannel(), object->longitudeChannel()}) {
            if (channel == nullptr)
                continue;
            ChannelDataWindow window;
            window.channel = channel->ferrinChannel();
            window.mode = INPUT_WINDOW_MODE;
            windows.push_back(std::move(window));
        }
    }
}

void OvermapInstrument::setShowMap(bool show_map)
{
    if (m_show_map == show_map)
        return;
    m_show_map = show_map;
    Q_EMIT showMapChanged(m_show_map);
}

void OvermapInstrument::setMapOpacity(double map_opacity)
{
    if (sameValue(m_map_opacity, map_opacity))
        return;
    m_map_opacity = map_opacity;
    Q_EMIT mapOpacityChanged(m_map_opacity);
}

void OvermapInstrument::setShowBackgroundImage(bool show_background_image)
{
    if (m_show_background_image == show_background_image)
        return;
    m_show_background_image = show_background_image;
    Q_EMIT showBackgroundImageChanged(m_show_background_image);
}

void OvermapInstrument::setBackgroundImageOpacity(double background_image_opacity)
{
    if (sameValue(m_background_image_opacity, background_image_opacity))
        return;
    m_background_image_opacity = background_image_opacity;
    Q_EMIT backgroundImageOpacityChanged(m_background_image_opacity);
}

void OvermapInstrument::setCenter(const QGeoCoordinate& center)
{
    if (m_center == center)
        return;
    m_center = center;
    Q_EMIT centerChanged(m_center);
}

void OvermapInstrument::setZoomFactor(double zoom_factor)
{
    if (sameValue(m_zoom_factor, zoom_factor))
        return;
    m_zoom_factor = zoom_factor;
    Q_EMIT zoomFactorChanged(m_zoom_factor);
}

void OvermapInstrument::setMapHeading(double map_heading)
{
    if (sameValue(m_map_heading, map_heading))
        return;
    m_map_heading = map_heading;
    Q_EMIT mapHeadingChanged(m_map_heading);
}

void OvermapInstrument::setFollowObjectPosition(bool follow)
{
    if (m_follow_object_position == follow)
        return;
    m_follow_object_position = follow;
    Q_EMIT followObjectPositionChanged(m_follow_object_position);
}

void OvermapInstrument::setPositionObjectToFollow(int id)
{
    if (m_position_object_to_follow == id)
        return;
    m_position_object_to_follow = id;
    Q_EMIT positionObjectToFollowChnaged(m_position_object_to_follow);
}

QString OvermapInstrument::filteredObjects() const
{
    QStringList parts;
    for (int id : m_filter_model->getFilteredIds())
        parts << QString::number(id);
    return parts.join(QLatin1Char(','));
}

void OvermapInstrument::setFilteredObjects(const QString& value)
{
    if (filteredObjects() == value)
        return;
    m_filter_model->clearFilter();
    // Empty parts are kept: the empty text stands for the one id 0, as saved settings have it.
    for (const QString& part : value.split(QLatin1Char(','), Qt::KeepEmptyParts))
        m_filter_model->setFiltered(part.toInt(), true);
    Q_EMIT filteredObjectsChanged();
}

bool OvermapInstrument::isObjectFiltered(int id) const
{
    return m_filter_model->isFiltered(id);
}

void OvermapInstrument::setObjectFiltered(int id, bool filtered)
{
    if (isObjectFiltered(id) == filtered)
        return;
    m_filter_model->setFiltered(id, filtered);
    Q_EMIT objectFilterChanged();
}

void OvermapInstrument::checkForOrphanedFilteredObjects()
{
    // Over a copy: the set shrinks during the walk.
    const std::set<int> ids = m_filter_model->getFilteredIds();
    for (int id : ids) {
        if (m_geo_model->objectsManager()->getObjectById(id) == nullptr)
            m_filter_model->setFiltered(id, false);
    }
}

} // namespace im
