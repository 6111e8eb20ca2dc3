#include <om_ui/gps_source_filter_model.h>

#include <qchannel/qchannel.h>

namespace overmap_ui {

GPSSourceFilterModel::GPSSourceFilterModel(QObject* parent) : ChannelListSortFilterProxyModel(parent) {}

GPSSourceFilterModel::~GPSSourceFilterModel() = default;

bool GPSSourceFilterModel::acceptsChannel(const lum::qchannel::QChannel& channel) const
{
    // Positions and headings are read as numbers: only a scalar channel can carry them.
    return channel.ferrinScalarChannel() != nullptr;
}

} // namespace overmap_ui
