#include <instrument_interface/channel_properties_list_model.h>

namespace im {

using lum::qchannel::QChannel;

ChannelPropertiesListModel::ChannelPropertiesListModel(QObject* parent)
    : QObjectListModelT<ChannelProps>(parent)
{}

bool ChannelPropertiesListModel::contains(QChannel* channel) const
{
    return indexOf(channel) != -1;
}

int ChannelPropertiesListModel::indexOf(QChannel* channel) const
{
    const QList<QObject*> rows = list();
    for (int i = 0; i < rows.size(); ++i) {
        const auto* props = qobject_cast<const ChannelProps*>(rows.at(i));
        if (props != nullptr && props->channel() == channel)
            return i;
    }
    return -1;
}

int ChannelPropertiesListModel::indexOf(channel_config::ChannelID channel_id) const
{
    const QList<QObject*> rows = list();
    for (int i = 0; i < rows.size(); ++i) {
        const auto* props = qobject_cast<const ChannelProps*>(rows.at(i));
        const QChannel* channel = props != nullptr ? props->channel() : nullptr;
        if (channel == nullptr || !channel->ferrinChannel())
            continue;
        const channel_config::ChannelID id = channel->ferrinChannel()->getChannelId();
        if (id.getNodeId() == channel_id.getNodeId() && id.getLocalId() == channel_id.getLocalId())
            return i;
    }
    return -1;
}

int ChannelPropertiesListModel::indexOfChannel(QChannel* channel) const
{
    return indexOf(channel);
}

} // namespace im
