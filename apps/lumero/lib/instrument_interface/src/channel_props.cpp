#include <instrument_interface/channel_props.h>

#include <instrument_interface/channel_properties_list_model.h>
#include <instrument_interface/property_change_forwarder.h>

#include <qt_utils/qt_checked_connect.h>

namespace im {

using lum::qchannel::QChannel;

ChannelProps::ChannelProps(QChannel* channel, QObject* parent)
    : QObject(parent), m_channel(channel),
      m_forwarder(new PropertyChangeForwarder(this, "settingChanged(QObject*,QString)"))
{
    CHECKED_CONNECT(this, &ChannelProps::settingChanged, this, &ChannelProps::configChanged);
    if (channel == nullptr)
        return;
    CHECKED_CONNECT(channel, &QChannel::destroying, this, &ChannelProps::onChannelDestroying);
    // Through the slot's virtual call, so that subclasses see every item change.
    CHECKED_CONNECT(channel, &QChannel::configItemChanged, this, &ChannelProps::channelConfigChanged);
    CHECKED_CONNECT(channel, &QChannel::minValChanged, this, &ChannelProps::minValueChanged);
    CHECKED_CONNECT(channel, &QChannel::maxValChanged, this, &ChannelProps::maxValueChanged);
    CHECKED_CONNECT(channel, &QChannel::unitChanged, this, &ChannelProps::unitChanged);
}

ChannelProps::~ChannelProps() = default;

void ChannelProps::setUnifiedProperties(ChannelProps* /*unified_properties*/) {}

void ChannelProps::setChannelList(ChannelPropertiesListModel* channel_list)
{
    m_channel_list = channel_list;
}

double ChannelProps::minValue() const
{
    return m_channel ? m_channel->minValue() : 0.0;
}

double ChannelProps::maxValue() const
{
    return m_channel ? m_channel->maxValue() : 1.0;
}

QString ChannelProps::unit() const
{
    return m_channel ? m_channel->unit() : QString();
}

void ChannelProps::channelConfigChanged(channel_config::ChannelID /*id*/, QString /*key*/)
{
    Q_EMIT channelChanged(m_channel);
}

void ChannelProps::onChannelDestroying(QChannel* channel)
{
    // The channel is kept, so that listeners find the row by it; the guarded pointer lets
    // go of it by itself once the object is gone.
    Q_EMIT channelDestroyed(channel);
}

} // namespace im
