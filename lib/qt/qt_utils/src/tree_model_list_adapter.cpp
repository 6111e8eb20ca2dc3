#include <qt_utils/qt_checked_connect.h>
#include <qt_utils/tree_model_list_adapter.h>

#include <algorithm>

namespace qt_utils {

TreeModelListAdapter::TreeModelListAdapter(QAbstractItemModel* tree_model, QObject* parent)
    : QAbstractItemModel(parent)
{
    setTreeModel(tree_model);
}

void TreeModelListAdapter::setTreeModel(QAbstractItemModel* tree_model)
{
    if (!UNI_ASSERT(tree_model) || tree_model == m_tree)
        return;
    if (m_tree != nullptr)
        disconnect(m_tree, nullptr, this, nullptr);
    m_tree = tree_model;
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::rowsAboutToBeInserted, this,
                    &TreeModelListAdapter::baseRowsAboutToBeInserted);
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::rowsInserted, this,
                    &TreeModelListAdapter::baseRowsInserted);
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::rowsRemoved, this,
                    &TreeModelListAdapter::baseRowsRemoved);
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::dataChanged, this,
                    &TreeModelListAdapter::baseDataChanged);
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::modelReset, this, &TreeModelListAdapter::baseModelReset);
    // Moves and re-sorts change the order of rows: shown again with the same rows open.
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::layoutChanged, this,
                    &TreeModelListAdapter::baseLayoutChanged);
    CHECKED_CONNECT(tree_model, &QAbstractItemModel::rowsMoved, this,
                    &TreeModelListAdapter::baseLayoutChanged);
    CHECKED_CONNECT(tree_model, &QObject::destroyed, this, [this] {
        beginResetModel();
        m_rows.clear();
        endResetModel();
    });
    rebuild(false);
    Q_EMIT treeModelChanged();
}

QModelIndex TreeModelListAdapter::treeIndex(int row) const
{
    return row >= 0 && row < m_rows.size() ? QModelIndex(m_rows.at(row).index) : QModelIndex();
}

QHash<int, QByteArray> TreeModelListAdapter::roleNames() const
{
    QHash<int, QByteArray> names = m_tree != nullptr ? m_tree->roleNames() : QAbstractItemModel::roleNames();
    names.insert(DEPTH_ROLE, "depth");
    names.insert(EXPANDED_ROLE, "expanded");
    names.insert(HAS_CHILDREN_ROLE, "hasChildren");
    return names;
}

QModelIndex TreeModelListAdapter::index(int row, int column, const QModelIndex& parent) const
{
    if (parent.isValid() || column != 0 || row < 0 || row >= m_rows.size())
        return {};
    return createIndex(row, 0);
}

QModelIndex TreeModelListAdapter::parent(const QModelIndex& /*child*/) const
{
    return {};
}

int TreeModelListAdapter::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int TreeModelListAdapter::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 1;
}

QVariant TreeModelListAdapter::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || m_tree == nullptr)
        return {};
    const Row& row = m_rows.at(index.row());
    switch (role) {
    case DEPTH_ROLE:
        return row.depth;
    case EXPANDED_ROLE:
        return row.expanded;
    case HAS_CHILDREN_ROLE:
        return row.index.isValid() && m_tree->rowCount(row.index) > 0;
    default:
        // A row whose tree row is gone (between the tree's removal and ours) shows nothing.
        return row.index.isValid() ? m_tree->data(row.index, role) : QVariant();
    }
}

QVariant TreeModelListAdapter::dataByRole(int i, int role) const
{
    return data(index(i, 0), role);
}

bool TreeModelListAdapter::isExpanded(int row) const
{
    return row >= 0 && row < m_rows.size() && m_rows.at(row).expanded;
}

void TreeModelListAdapter::expand(int row)
{
    if (m_tree == nullptr || row < 0 || row >= m_rows.size() || m_rows.at(row).expanded)
        return;
    QVector<Row> children;
    collect(m_rows.at(row).index, m_rows.at(row).depth + 1, {}, children);
    m_rows[row].expanded = true;
    if (!children.isEmpty()) {
        beginInsertRows(QModelIndex(), row + 1, row + children.size());
        m_rows.insert(row + 1, children.size(), Row());
        std::copy(children.begin(), children.end(), m_rows.begin() + row + 1);
        endInsertRows();
    }
    rowChanged(row, {EXPANDED_ROLE});
}

void TreeModelListAdapter::collapse(int row)
{
    if (row < 0 || row >= m_rows.size() || !m_rows.at(row).expanded)
        return;
    const int end = subtreeEnd(row);
    if (end > row + 1) {
        beginRemoveRows(QModelIndex(), row + 1, end - 1);
        m_rows.remove(row + 1, end - row - 1);
        endRemoveRows();
    }
    m_rows[row].expanded = false;
    rowChanged(row, {EXPANDED_ROLE});
}

void TreeModelListAdapter::baseRowsAboutToBeInserted(const QModelIndex& parent, int first, int last)
{
    m_pending = PendingInsert();
    if (!childrenShown(parent))
        return;
    const int parent_row = flatRow(parent);
    int at = parent_row + 1;
    if (first > 0) {
        // After the row before, and everything shown below it.
        const int sibling = flatRow(m_tree->index(first - 1, 0, parent));
        if (sibling >= 0)
            at = subtreeEnd(sibling);
    }
    m_pending.at = at;
    m_pending.depth = parent.isValid() ? m_rows.at(parent_row).depth + 1 : 0;
    beginInsertRows(QModelIndex(), at, at + last - first);
}

void TreeModelListAdapter::baseRowsInserted(const QModelIndex& parent, int first, int last)
{
    if (m_pending.at >= 0) {
        QVector<Row> rows;
        for (int r = first; r <= last; ++r)
            rows.append(Row{QPersistentModelIndex(m_tree->index(r, 0, parent)), m_pending.depth, false});
        m_rows.insert(m_pending.at, rows.size(), Row());
        std::copy(rows.begin(), rows.end(), m_rows.begin() + m_pending.at);
        m_pending = PendingInsert();
        endInsertRows();
    }
    if (parent.isValid())
        rowChanged(flatRow(parent), {HAS_CHILDREN_ROLE});
}

void TreeModelListAdapter::baseRowsRemoved(const QModelIndex& parent, int /*first*/, int /*last*/)
{
    // The tree has let go of the rows and of everything below them: their persistent
    // indexes are invalid now. Take out each run of such rows, from the end.
    int end = m_rows.size();
    while (end > 0) {
        if (m_rows.at(end - 1).index.isValid()) {
            --end;
            continue;
        }
        int begin = end - 1;
        while (begin > 0 && !m_rows.at(begin - 1).index.isValid())
            --begin;
        beginRemoveRows(QModelIndex(), begin, end - 1);
        m_rows.remove(begin, end - begin);
        endRemoveRows();
        end = begin;
    }
    if (parent.isValid())
        rowChanged(flatRow(parent), {HAS_CHILDREN_ROLE});
}

void TreeModelListAdapter::baseDataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                                           const QVector<int>& roles)
{
    if (!top_left.isValid() || !bottom_right.isValid() || top_left.column() > 0)
        return;
    int first = -1;
    int last = -1;
    for (int r = top_left.row(); r <= bottom_right.row(); ++r) {
        const int row = flatRow(top_left.sibling(r, 0));
        if (row < 0)
            continue;
        first = first < 0 ? row : std::min(first, row);
        last = std::max(last, row);
    }
    if (first >= 0)
        Q_EMIT dataChanged(index(first, 0), index(last, 0), roles);
}

void TreeModelListAdapter::baseModelReset()
{
    rebuild(false);
}

void TreeModelListAdapter::baseLayoutChanged()
{
    rebuild(true);
}

void TreeModelListAdapter::rebuild(bool keep_expanded)
{
    QVector<QPersistentModelIndex> expanded;
    if (keep_expanded) {
        for (const Row& row : qAsConst(m_rows))
            if (row.expanded && row.index.isValid())
                expanded.append(row.index);
    }
    beginResetModel();
    m_rows.clear();
    m_pending = PendingInsert();
    if (m_tree != nullptr)
        collect(QModelIndex(), 0, expanded, m_rows);
    endResetModel();
}

void TreeModelListAdapter::collect(const QModelIndex& parent, int depth,
                                   const QVector<QPersistentModelIndex>& expanded, QVector<Row>& out) const
{
    const int rows = m_tree->rowCount(parent);
    for (int r = 0; r < rows; ++r) {
        const QModelIndex child = m_tree->index(r, 0, parent);
        const bool open = expanded.contains(QPersistentModelIndex(child));
        out.append(Row{QPersistentModelIndex(child), depth, open});
        if (open)
            collect(child, depth + 1, expanded, out);
    }
}

int TreeModelListAdapter::flatRow(const QModelIndex& tree_index) const
{
    if (!tree_index.isValid())
        return -1;
    for (int row = 0; row < m_rows.size(); ++row)
        if (m_rows.at(row).index == tree_index)
            return row;
    return -1;
}

int TreeModelListAdapter::subtreeEnd(int row) const
{
    const int depth = m_rows.at(row).depth;
    int end = row + 1;
    while (end < m_rows.size() && m_rows.at(end).depth > depth)
        ++end;
    return end;
}

bool TreeModelListAdapter::childrenShown(const QModelIndex& tree_parent) const
{
    if (!tree_parent.isValid())
        return true;
    const int row = flatRow(tree_parent);
    return row >= 0 && m_rows.at(row).expanded;
}

void TreeModelListAdapter::rowChanged(int row, const QVector<int>& roles)
{
    if (row >= 0 && row < m_rows.size())
        Q_EMIT dataChanged(index(row, 0), index(row, 0), roles);
}

} // namespace qt_utils
