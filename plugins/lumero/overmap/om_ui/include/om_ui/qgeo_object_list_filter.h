#pragma once

#include <om_ui/qgeo_object.h>

#include <QObject>
#include <QPointer>
#include <QSortFilterProxyModel>

namespace overmap_ui {

/// A list of scene objects without one of them, for the choosers of a view: the
/// filtered object is left out, and with filterdeDendent also the objects placed
/// relative to it (an object cannot hang on itself, nor on one that hangs on it).
/// The source is a list of objects with the object role 257.
class QGeoObjectListFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(overmap_ui::QGeoObject* filteredObject READ filteredObject WRITE setFilteredObject NOTIFY
                   filteredObjectChanged)
    Q_PROPERTY(
        bool filterdeDendent READ filterDependent WRITE setFilterDependent NOTIFY filterDependentChanged)

public:
    explicit QGeoObjectListFilter(QObject* parent = nullptr);
    ~QGeoObjectListFilter() override;

    int count() const { return rowCount(); }
    QGeoObject* filteredObject() const { return m_filtered_object; }
    void setFilteredObject(QGeoObject* object);
    bool filterDependent() const { return m_filter_dependent; }
    void setFilterDependent(bool filter);

    /// The row of @p object; -1 when it is not shown.
    Q_INVOKABLE int indexOf(QObject* object) const;
    /// The object of row @p idx; null without a source or outside the rows.
    Q_INVOKABLE QObject* get(int idx) const;

Q_SIGNALS:
    void countChanged();
    void filteredObjectChanged();
    void filterDependentChanged();

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;

private:
    void updateCount();

    QPointer<QGeoObject> m_filtered_object;
    bool m_filter_dependent = false;
    int m_count = 0;
};

} // namespace overmap_ui
