#include <om_ui/position_objects_filtered_model.h>

#include <om_ui/qgeo_object.h>

#include <qobject_list_model/qobjectlist_model.h>

namespace overmap_ui {

void PositionObjectsFilteredModel::setFiltered(int id, bool filtered)
{
    if (filtered)
        m_filtered_ids.insert(id);
    else
        m_filtered_ids.erase(id);
    invalidateFilter();
}

void PositionObjectsFilteredModel::clearFilter()
{
    m_filtered_ids.clear();
    invalidateFilter();
}

bool PositionObjectsFilteredModel::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    const QModelIndex index = sourceModel()->index(source_row, 0, source_parent);
    const QVariant data = sourceModel()->data(index, QObjectListModel::OBJECT_ROLE);
    QObject* object =
        data.userType() == QMetaType::QObjectStar ? data.value<QObject*>() : qvariant_cast<QObject*>(data);
    const auto* geo_object = qobject_cast<const QGeoObject*>(object);
    return geo_object != nullptr && m_filtered_ids.count(geo_object->objectId()) == 0;
}

} // namespace overmap_ui
