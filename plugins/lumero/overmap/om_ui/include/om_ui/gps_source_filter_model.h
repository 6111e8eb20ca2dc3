#pragma once

#include <QSortFilterProxyModel>

namespace overmap_ui {

/// The channels a view offers as GPS sources (latitude, longitude, heading, quality):
/// the scalar channels of a channel list, in the list's order.
class GPSSourceFilterModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit GPSSourceFilterModel(QObject* parent = nullptr);
    ~GPSSourceFilterModel() override;

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;
};

} // namespace overmap_ui
