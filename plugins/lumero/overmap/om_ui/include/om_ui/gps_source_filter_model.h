#pragma once

#include <qchannel/channel_list_sort_filter_proxy_model.h>

namespace overmap_ui {

/// The channels a view offers as GPS sources (latitude, longitude, heading, quality):
/// the scalar channels of a channel list, in the list's order.
class GPSSourceFilterModel : public lum::qchannel::ChannelListSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit GPSSourceFilterModel(QObject* parent = nullptr);
    ~GPSSourceFilterModel() override;

protected:
    bool acceptsChannel(const lum::qchannel::QChannel& channel) const override;
};

} // namespace overmap_ui
