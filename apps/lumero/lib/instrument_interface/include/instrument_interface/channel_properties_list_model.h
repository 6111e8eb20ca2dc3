#pragma once

#include <instrument_interface/channel_props.h>

#include <qobject_list_model/qobjectlist_model_t.h>

#include <channel_config/channel_id.h>
#include <qchannel/qchannel.h>

#include <QObject>

namespace im {

/// The channels an instrument displays, one ChannelProps per row in display order.
/// Takes ChannelProps objects only. The look-ups by channel scan from the first row and
/// answer -1 (false) when no row has that channel.
class ChannelPropertiesListModel : public QObjectListModelT<ChannelProps>
{
    Q_OBJECT

public:
    explicit ChannelPropertiesListModel(QObject* parent = nullptr);

    using QObjectListModel::contains;
    using QObjectListModel::indexOf;

    Q_INVOKABLE bool contains(lum::qchannel::QChannel* channel) const;
    Q_INVOKABLE int indexOf(lum::qchannel::QChannel* channel) const;
    /// The first row whose channel has this id, node and local part alike.
    Q_INVOKABLE int indexOf(channel_config::ChannelID channel_id) const;
    Q_INVOKABLE int indexOfChannel(lum::qchannel::QChannel* channel) const;
};

} // namespace im
