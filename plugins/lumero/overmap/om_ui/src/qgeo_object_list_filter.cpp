#include <om_ui/qgeo_object_list_filter.h>

#include <om_ui/qposition_object.h>

#include <qobject_list_model/qobjectlist_model.h>
#include <qt_utils/qt_checked_connect.h>

#include <QQmlEngine>

namespace overmap_ui {

QGeoObjectListFilter::QGeoObjectListFilter(QObject* parent) : QSortFilterProxyModel(parent)
{
    CHECKED_CONNECT(this, &QAbstractItemModel::rowsInserted, this, &QGeoObjectListFilter::updateCount);
    CHECKED_CONNECT(this, &QAbstractItemModel::rowsRemoved, this, &QGeoObjectListFilter::updateCount);
    CHECKED_CONNECT(this, &QAbstractItemModel::modelReset, this, &QGeoObjectListFilter::updateCount);
    CHECKED_CONNECT(this, &QAbstractItemModel::layoutChanged, this, &QGeoObjectListFilter::updateCount);
}

QGeoObjectListFilter::~QGeoObjectListFilter() = default;

void QGeoObjectListFilter::setFilteredObject(QGeoObject* object)
{
    if (object == m_filtered_object)
        return;
    m_filtered_object = object;
    invalidateFilter();
    Q_EMIT filteredObjectChanged();
}

void QGeoObjectListFilter::setFilterDependent(bool filter)
{
    if (filter == m_filter_dependent)
        return;
    m_filter_dependent = filter;
    invalidateFilter();
    Q_EMIT filterDependentChanged();
}

int QGeoObjectListFilter::indexOf(QObject* object) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (get(row) == object)
            return row;
    }
    return -1;
}

QObject* QGeoObjectListFilter::get(int idx) const
{
    if (sourceModel() == nullptr)
        return nullptr;
    QObject* object = data(index(idx, 0), QObjectListModel::OBJECT_ROLE).value<QObject*>();
    QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
    return object;
}

bool QGeoObjectListFilter::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    if (m_filtered_object == nullptr)
        return true;
    const QModelIndex source = sourceModel()->index(source_row, 0, source_parent);
    QObject* object = source.data(QObjectListModel::OBJECT_ROLE).value<QObject*>();
    if (object == m_filtered_object)
        return false;
    if (m_filter_dependent) {
        const auto* position_object = qobject_cast<const QPositionObject*>(object);
        if (position_object != nullptr && position_object->referenceObject() == m_filtered_object)
            return false;
    }
    return true;
}

void QGeoObjectListFilter::updateCount()
{
    const int rows = rowCount();
    if (rows == m_count)
        return;
    m_count = rows;
    Q_EMIT countChanged();
}

} // namespace overmap_ui
