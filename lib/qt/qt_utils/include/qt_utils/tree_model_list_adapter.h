#pragma once

#include <QAbstractItemModel>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QVector>

namespace qt_utils {

/// Shows a tree model as a flat list, for views that can only show lists. A row's
/// children follow it, one level deeper, while it is expanded; rows start collapsed.
/// Column 0 of the tree is shown; every role of the tree passes through, and three
/// roles of the adapter tell the view how to draw the row.
class TreeModelListAdapter : public QAbstractItemModel
{
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel* treeModel READ treeModel WRITE setTreeModel NOTIFY treeModelChanged)

public:
    enum Roles
    {
        DEPTH_ROLE = Qt::UserRole + 0x4000, ///< int, 0 for top-level rows
        EXPANDED_ROLE,                      ///< bool
        HAS_CHILDREN_ROLE                   ///< bool, whether the tree row has children
    };

    /// @p tree_model must not be null.
    explicit TreeModelListAdapter(QAbstractItemModel* tree_model, QObject* parent = nullptr);

    QAbstractItemModel* treeModel() const { return m_tree; }
    /// Follows another tree; all rows start collapsed. Null is refused (asserted).
    void setTreeModel(QAbstractItemModel* tree_model);

    /// The tree index shown at @p row; invalid out of range.
    QModelIndex treeIndex(int row) const;

    Q_INVOKABLE QHash<int, QByteArray> roleNames() const override;
    Q_INVOKABLE QModelIndex index(int row, int column,
                                  const QModelIndex& parent = QModelIndex()) const override;
    Q_INVOKABLE QModelIndex parent(const QModelIndex& child) const override;
    Q_INVOKABLE int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    Q_INVOKABLE int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    Q_INVOKABLE QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Q_INVOKABLE QVariant dataByRole(int i, int role) const;

    Q_INVOKABLE bool isExpanded(int row) const;
    /// Shows the children of @p row below it; nothing when out of range or expanded.
    Q_INVOKABLE void expand(int row);
    /// Hides everything below @p row; nested rows forget that they were expanded.
    Q_INVOKABLE void collapse(int row);

Q_SIGNALS:
    void treeModelChanged();

private Q_SLOTS:
    void baseRowsAboutToBeInserted(const QModelIndex& parent, int first, int last);
    void baseRowsInserted(const QModelIndex& parent, int first, int last);
    void baseRowsRemoved(const QModelIndex& parent, int first, int last);
    void baseDataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                         const QVector<int>& roles);
    void baseModelReset();
    void baseLayoutChanged();

private:
    struct Row
    {
        QPersistentModelIndex index;
        int depth = 0;
        bool expanded = false;
    };

    /// Where an announced insertion goes, between the tree's two signals.
    struct PendingInsert
    {
        int at = -1;
        int depth = 0;
    };

    void rebuild(bool keep_expanded);
    void collect(const QModelIndex& parent, int depth, const QVector<QPersistentModelIndex>& expanded,
                 QVector<Row>& out) const;
    /// The flat row of a tree index; -1 when not shown. The root is shown and expanded.
    int flatRow(const QModelIndex& tree_index) const;
    /// The first row after @p row that is not below it.
    int subtreeEnd(int row) const;
    bool childrenShown(const QModelIndex& tree_parent) const;
    void rowChanged(int row, const QVector<int>& roles);

    QPointer<QAbstractItemModel> m_tree;
    QVector<Row> m_rows;
    PendingInsert m_pending;
};

} // namespace qt_utils
