#include <instrument_interface/instrument_model.h>

#include <instrument_interface/if_application.h>
#include <instrument_interface/property_change_forwarder.h>

#include <config_items/config_item_variant.h>
#include <qchannel/qchannel_list_model.h>
#include <qt_utils/qt_checked_connect.h>
#include <uni_base/uni_assert.h>

#include <QtGlobal>

#include <algorithm>
#include <functional>
#include <variant>

namespace im {

using lum::qchannel::QChannel;

namespace {

/// A relative coordinate into 0..1: the upper bound first, so that NaN ends at 0.
double clampRelative(double value)
{
    return qBound(0.0, value, 1.0);
}

} // namespace

InstrumentModel::InstrumentModel(QObject* parent, bool supports_time_range_connection)
    : QObject(parent), m_channels(new ChannelPropertiesListModel(this)),
      m_supports_time_range_connection(supports_time_range_connection),
      m_forwarder(new PropertyChangeForwarder(this, "settingChanged(QObject*,QString)"))
{
    static const int provider_type = qRegisterMetaType<const IfChannelDataWindowProvider*>();
    (void)provider_type;
    m_channels->setTracking(true);

    CHECKED_CONNECT(this, &InstrumentModel::positionChanged, this, &InstrumentModel::geometryChanged);
    CHECKED_CONNECT(this, &InstrumentModel::widthChanged, this, &InstrumentModel::geometryChanged);
    CHECKED_CONNECT(this, &InstrumentModel::heightChanged, this, &InstrumentModel::geometryChanged);
    CHECKED_CONNECT(this, &InstrumentModel::channelsChanged, this, &InstrumentModel::configChanged);
    CHECKED_CONNECT(m_channels, &QAbstractItemModel::rowsMoved, this, &InstrumentModel::configChanged);
    CHECKED_CONNECT(this, &InstrumentModel::geometryChanged, this, &InstrumentModel::configChanged);
    CHECKED_CONNECT(this, &InstrumentModel::settingChanged, this, &InstrumentModel::configChanged);
    m_forwarder->addProperty("timeFormatVisible", true);
    m_forwarder->addProperty("backgroundVisible", true);
    m_forwarder->addProperty("channelLabelFormat", true);
}

InstrumentModel::~InstrumentModel() = default;

// --- virtual operations --------------------------------------------------------------------

void InstrumentModel::initUnifiedProperties()
{
    if (m_unified_properties != nullptr)
        return;
    m_unified_properties = createChannelProps(nullptr);
    if (m_unified_properties == nullptr)
        return;
    m_unified_properties->setChannelList(m_channels);
    m_forwarder->addSource(m_unified_properties, "unifiedProperties");
}

bool InstrumentModel::showsTimeSpan() const
{
    return false;
}

bool InstrumentModel::usesTimeFormat() const
{
    return false;
}

bool InstrumentModel::acceptsChannel(QChannel* channel) const
{
    return channel != nullptr && channel->ferrinChannel() != nullptr;
}

void InstrumentModel::hostHook() {}

void InstrumentModel::removeChannelsNotAcceptable()
{
    for (int row = m_channels->size() - 1; row >= 0; --row)
        removeChannelIfNotAcceptable(channelAt(row));
}

void InstrumentModel::connectToApplication() {}

bool InstrumentModel::hostCapabilityFlag() const
{
    return false;
}

std::set<channel_config::ChannelID> InstrumentModel::getExtraChannelIds() const
{
    return {};
}

void InstrumentModel::secondHostHook() {}

ChannelProps* InstrumentModel::createChannelProps(QChannel* channel)
{
    return new ChannelProps(channel, this);
}

void InstrumentModel::channelAboutToBeAdded(QChannel* /*channel*/, ChannelProps* /*props*/) {}

void InstrumentModel::channelAdded(QChannel* /*channel*/, ChannelProps* /*props*/) {}

void InstrumentModel::channelRemoved(QChannel* /*channel*/, ChannelProps* /*props*/) {}

// --- data windows ----------------------------------------------------------------------------

std::vector<ChannelDataWindow> InstrumentModel::getDataWindows() const
{
    std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
    return m_data_windows;
}

std::string InstrumentModel::getDelegateValue() const
{
    return m_window_delegate != nullptr ? m_window_delegate->getDelegateValue() : std::string();
}

std::string InstrumentModel::getDataWindowProviderType() const
{
    return getType();
}

void InstrumentModel::onDataWindowChangeDetected()
{
    updateDataWindows();
    Q_EMIT dataWindowsChanged(this);
}

// --- properties ------------------------------------------------------------------------------

bool InstrumentModel::setQProperty(const char* name, const QVariant& value)
{
    return setProperty(name, value);
}

void InstrumentModel::setKey(const QString& key)
{
    if (m_key == key)
        return;
    m_key = key;
    Q_EMIT keyChanged();
}

void InstrumentModel::setPosition(const QPointF& position)
{
    const QPointF clamped(clampRelative(position.x()), clampRelative(position.y()));
    if (clamped == m_geometry.topLeft())
        return;
    m_geometry.moveTopLeft(clamped);
    Q_EMIT positionChanged();
}

void InstrumentModel::setWidth(double width)
{
    if (width == m_geometry.width())
        return;
    m_geometry.setWidth(clampRelative(width));
    Q_EMIT widthChanged();
}

void InstrumentModel::setHeight(double height)
{
    if (height == m_geometry.height())
        return;
    m_geometry.setHeight(clampRelative(height));
    Q_EMIT heightChanged();
}

void InstrumentModel::setGeometry(double x, double y, double width, double height)
{
    x = clampRelative(x);
    y = clampRelative(y);
    width = clampRelative(width);
    height = clampRelative(height);
    if (width + x > 1.0)
        x = 1.0 - width;
    if (height + y > 1.0)
        y = 1.0 - height;

    const QPointF top_left(x, y);
    if (top_left != m_geometry.topLeft()) {
        m_geometry.moveTopLeft(QPointF(clampRelative(x), clampRelative(y)));
        Q_EMIT positionChanged();
    }
    if (width != m_geometry.width()) {
        m_geometry.setWidth(width);
        Q_EMIT widthChanged();
    }
    if (height != m_geometry.height()) {
        m_geometry.setHeight(height);
        Q_EMIT heightChanged();
    }
}

void InstrumentModel::setGeometry(const QRectF& geometry)
{
    setGeometry(geometry.x(), geometry.y(), geometry.width(), geometry.height());
}

QRectF InstrumentModel::getGeometry() const
{
    return QRectF(m_geometry.topLeft(), m_geometry.size());
}

QString InstrumentModel::getTypeQString() const
{
    return QString::fromStdString(getType());
}

QChannel* InstrumentModel::getChannelWithId(channel_config::ChannelID id) const
{
    return channelAt(m_channels->indexOf(id));
}

bool InstrumentModel::isGrouped() const
{
    return parent() != nullptr && parent()->inherits("im::InstrumentsGroupModel");
}

void InstrumentModel::setBackgroundVisible(bool visible)
{
    if (m_background_visible == visible)
        return;
    m_background_visible = visible;
    Q_EMIT backgroundVisibleChanged();
}

void InstrumentModel::setTimeFormatVisible(bool visible)
{
    if (m_time_format_visible == visible)
        return;
    m_time_format_visible = visible;
    Q_EMIT timeFormatVisibleChanged();
}

void InstrumentModel::setChannelLabelFormat(ChannelLabelFormat format)
{
    if (m_channel_label_format == CHANNEL_LABEL_NOT_AVAILABLE || m_channel_label_format == format)
        return;
    m_channel_label_format = format;
    Q_EMIT channelLabelFormatChanged();
}

void InstrumentModel::setTimeRangeConnectionMode(TimeRangeConnectionMode mode)
{
    if (!m_supports_time_range_connection || m_time_range_connection_mode == mode)
        return;
    m_time_range_connection_mode = mode;
    Q_EMIT timeRangeConnectionModeChanged();
}

void InstrumentModel::setConnectionGroup(const QString& group)
{
    if (m_connection_group == group)
        return;
    m_connection_group = group;
    Q_EMIT connectionGroupChanged(m_connection_group);
}

void InstrumentModel::setMaxChannels(int max_channels)
{
    if (m_max_channels == max_channels)
        return;
    m_max_channels = max_channels;
    Q_EMIT maxChannelsChanged();
}

void InstrumentModel::setType(int type)
{
    if (m_type == type)
        return;
    m_type = type;
    Q_EMIT typeChanged();
}

void InstrumentModel::requestFullZoom()
{
    Q_EMIT fullZoomRequested();
}

// --- channels --------------------------------------------------------------------------------

QChannel* InstrumentModel::channelAt(int row) const
{
    const ChannelProps* props = m_channels->at(row);
    return props != nullptr ? props->channel() : nullptr;
}

ChannelProps* InstrumentModel::prepareChannel(QChannel* channel)
{
    ChannelProps* props = createChannelProps(channel);
    if (!UNI_ASSERT(props != nullptr))
        return nullptr;
    props->setUnifiedProperties(m_unified_properties);
    CHECKED_CONNECT(props, SIGNAL(channelDestroyed(lum::qchannel::QChannel*)), this,
                    SLOT(removeChannel(lum::qchannel::QChannel*)));
    CHECKED_CONNECT(props, &ChannelProps::channelChanged, this, &InstrumentModel::updateDataWindows);
    channelAboutToBeAdded(channel, props);
    return props;
}

void InstrumentModel::completeChannel(QChannel* channel, ChannelProps* props)
{
    CHECKED_CONNECT(props, &ChannelProps::configChanged, this, &InstrumentModel::configChanged);
    CHECKED_CONNECT(props, &ChannelProps::channelChanged, this,
                    &InstrumentModel::removeChannelIfNotAcceptable);
    channelAdded(channel, props);
}

bool InstrumentModel::addChannel(QChannel* channel)
{
    if (channel == nullptr || m_channels->contains(channel) || m_channels->size() >= m_max_channels ||
        !acceptsChannel(channel))
        return false;
    ChannelProps* props = prepareChannel(channel);
    if (props == nullptr)
        return false;
    {
        std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
        m_channels->append(props);
    }
    completeChannel(channel, props);
    updateDataWindows();
    Q_EMIT channelsChanged();
    return true;
}

bool InstrumentModel::addChannels(QList<QChannel*> channels)
{
    if (channels.isEmpty())
        return false;
    QList<QChannel*> taken;
    QList<QObject*> added;
    for (QChannel* channel : channels) {
        if (channel == nullptr || m_channels->contains(channel) || taken.contains(channel))
            continue;
        if (m_channels->size() + taken.size() >= m_max_channels || !acceptsChannel(channel))
            continue;
        if (ChannelProps* props = prepareChannel(channel)) {
            taken.append(channel);
            added.append(props);
        }
    }
    if (!added.isEmpty()) {
        std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
        m_channels->append(added);
    }
    for (int i = 0; i < taken.size(); ++i)
        completeChannel(taken.at(i), static_cast<ChannelProps*>(added.at(i)));
    updateDataWindows();
    Q_EMIT channelsChanged();
    return true;
}

bool InstrumentModel::removeChannelAt(int row)
{
    ChannelProps* props = m_channels->at(row);
    if (props == nullptr)
        return false;
    QChannel* channel = props->channel();
    {
        std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
        m_channels->listRemove(row);
    }
    channelRemoved(channel, props);
    updateDataWindows();
    Q_EMIT channelsChanged();
    props->deleteLater();
    return true;
}

bool InstrumentModel::removeChannel(QChannel* channel)
{
    return removeChannelAt(m_channels->indexOf(channel));
}

bool InstrumentModel::removeChannels(QList<QChannel*> channels)
{
    if (channels.isEmpty())
        return true;
    bool all_found = true;
    std::vector<int> rows;
    for (QChannel* channel : channels) {
        const int row = m_channels->indexOf(channel);
        if (row == -1)
            all_found = false;
        else if (std::find(rows.begin(), rows.end(), row) == rows.end())
            rows.push_back(row);
    }
    // From the highest row down, so that the rows still to go keep their numbers.
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    QList<ChannelProps*> removed;
    {
        std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
        for (int row : rows) {
            removed.append(m_channels->at(row));
            m_channels->listRemove(row);
        }
    }
    for (ChannelProps* props : removed) {
        channelRemoved(props->channel(), props);
        props->deleteLater();
    }
    updateDataWindows();
    Q_EMIT channelsChanged();
    return all_found;
}

bool InstrumentModel::replaceChannel(int index, QChannel* channel)
{
    if (index < 0 || index >= m_channels->size() || channel == nullptr || m_channels->contains(channel) ||
        !acceptsChannel(channel))
        return false;
    if (!removeChannelAt(index))
        return false;
    ChannelProps* props = prepareChannel(channel);
    if (props == nullptr)
        return false;
    {
        std::lock_guard<std::recursive_mutex> lock(m_channels_lock);
        m_channels->insert(index, props);
    }
    completeChannel(channel, props);
    updateDataWindows();
    Q_EMIT channelsChanged();
    return true;
}

bool InstrumentModel::toggleChannel(QChannel* channel)
{
    if (channel == nullptr || m_max_channels == 0)
        return false;
    if (m_channels->contains(channel))
        return removeChannel(channel);
    if (!acceptsChannel(channel))
        return false;
    if (m_channels->size() >= m_max_channels)
        removeChannelAt(m_channels->size() - 1);
    return addChannel(channel);
}

void InstrumentModel::removeAllChannels()
{
    for (int row = m_channels->size() - 1; row >= 0; --row)
        removeChannelAt(row);
}

void InstrumentModel::removeChannelIfNotAcceptable(QChannel* channel)
{
    if (!acceptsChannel(channel))
        removeChannel(channel);
}

// --- control channel -------------------------------------------------------------------------

void InstrumentModel::setControlChannel(QChannel* channel)
{
    if (m_control_channel == channel)
        return;
    if (m_control_channel != nullptr)
        disconnect(m_control_channel.data(), &QChannel::configItemChanged, this,
                   &InstrumentModel::onCCConfigItemChanged);
    m_control_channel = channel;
    if (channel != nullptr)
        CHECKED_CONNECT(channel, &QChannel::configItemChanged, this, &InstrumentModel::onCCConfigItemChanged);
    Q_EMIT controlChannelChanged();
    syncChannelsFromControlChannel();
}

void InstrumentModel::setCcChannelsItem(const QString& item)
{
    if (m_cc_channels_item == item)
        return;
    m_cc_channels_item = item;
    Q_EMIT ccChannelsItemChanged();
    syncChannelsFromControlChannel();
}

void InstrumentModel::onCCConfigItemChanged(channel_config::ChannelID id, QString key)
{
    if (m_control_channel == nullptr || m_control_channel->ferrinChannel() == nullptr)
        return;
    if (id == m_control_channel->ferrinChannel()->getChannelId() && key == m_cc_channels_item)
        syncChannelsFromControlChannel();
}

void InstrumentModel::syncChannelsFromControlChannel()
{
    if (m_control_channel == nullptr || m_control_channel->ferrinChannel() == nullptr)
        return;
    const channel_config::ConfigItemVariant item =
        m_control_channel->ferrinChannel()->getConfigItem(m_cc_channels_item.toStdString());
    const auto* single = std::get_if<config_items::SingleValueConfigItem<channel_config::ChannelID>>(&item);
    const auto* several = std::get_if<config_items::ValueListConfigItem<channel_config::ChannelID>>(&item);
    if (single == nullptr && several == nullptr)
        return;
    lum::qchannel::QChannelListModel* list =
        m_application != nullptr ? m_application->getChannels() : nullptr;
    if (list == nullptr)
        return;
    list->applyPendingChannelNotifications();

    if (single != nullptr) {
        QChannel* wanted = list->getChannelByID(single->getValue());
        removeAllChannels();
        addChannel(wanted);
        return;
    }
    // Channels behind the last wanted position stay: a shorter list does not shorten the rows.
    const std::vector<channel_config::ChannelID>& ids = several->getValues();
    for (int position = 0; position < static_cast<int>(ids.size()); ++position) {
        QChannel* wanted = list->getChannelByID(ids[static_cast<std::size_t>(position)]);
        while (m_channels->size() > position && channelAt(position) != wanted)
            removeChannelAt(position);
        if (m_channels->size() == position)
            addChannel(wanted);
    }
}

} // namespace im
