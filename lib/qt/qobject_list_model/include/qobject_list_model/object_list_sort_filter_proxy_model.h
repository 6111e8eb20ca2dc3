#pragma once

#include <QObject>
#include <QSortFilterProxyModel>

/// A sort and filter proxy over a model whose role 257 holds the object of a row, with
/// the row count and an object accessor for the declarative views.
class ObjectListSortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY rowCountChanged)
    Q_PROPERTY(bool showChildren READ showChildren WRITE setShowChildren NOTIFY showChildrenChanged)

public:
    explicit ObjectListSortFilterProxyModel(QObject* parent = nullptr);

    /// The object of row @p index of this proxy, read from the source by role 257; null
    /// without a source model or when the row holds no object.
    Q_INVOKABLE QObject* at(int index) const;

    int count() const { return rowCount(); }
    /// Whether rows below the top level of a tree source pass; true at first.
    bool showChildren() const { return m_show_children; }
    void setShowChildren(bool show_children);

Q_SIGNALS:
    void rowCountChanged();
    void showChildrenChanged();

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;

private:
    bool m_show_children = true;
};
