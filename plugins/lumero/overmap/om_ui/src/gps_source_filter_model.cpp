#include <om_ui/gps_source_filter_model.h>

#include <qchannel/qchannel.h>
#include <qobject_list_model/qobjectlist_model.h>

namespace overmap_ui {

GPSSourceFilterModel::GPSSourceFilterModel(QObject* parent) : QSortFilterProxyModel(parent) {}

GPSSourceFilterModel::~GPSSourceFilterModel() = default;

bool GPSSourceFilterModel::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    const QModelIndex index = sourceModel()->index(source_row, 0, source_parent);
    const auto* channel = qobject_cast<const lum::qchannel::QChannel*>(
        sourceModel()->data(index, QObjectListModel::OBJECT_ROLE).value<QObject*>());
    return channel != nullptr && channel->ferrinScalarChannel() != nullptr;
}

} // namespace overmap_ui
