#pragma once

#include <QSortFilterProxyModel>

#include <set>

namespace overmap_ui {

/// The position objects of one instrument without those it hides, by object id. Its
/// source is the object manager's position object list.
class PositionObjectsFilteredModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    std::set<int> getFilteredIds() const { return m_filtered_ids; }
    Q_INVOKABLE bool isFiltered(int id) const { return m_filtered_ids.count(id) != 0; }
    /// Always re-filters, also when the id's state stays.
    Q_INVOKABLE void setFiltered(int id, bool filtered);
    Q_INVOKABLE void clearFilter();

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;

private:
    std::set<int> m_filtered_ids;
};

} // namespace overmap_ui
