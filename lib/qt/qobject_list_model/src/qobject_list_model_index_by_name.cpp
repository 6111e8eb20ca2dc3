#include <qobject_list_model/qobject_list_model_index_by_name.h>

#include <algorithm>

QObjectListModelIndexByName::QObjectListModelIndexByName(QObjectListModel* model, QObject* parent)
    : QObjectListModelAdapter(model, parent)
{
    connect(this, &QObjectListModelAdapter::watchRemovalsChanged, this,
            &QObjectListModelIndexByName::onWatchRemovalsChanged);
    connect(this, &QObjectListModelAdapter::enabledChanged, this,
            &QObjectListModelIndexByName::onEnabledChanged);
    connect(this, &QObjectListModelAdapter::listModelChanged, this,
            &QObjectListModelIndexByName::onEnabledChanged);
    if (model != nullptr)
        setEnabled(true);
}

QObjectListModelIndexByName::~QObjectListModelIndexByName() = default;

bool QObjectListModelIndexByName::contains(QObject* obj) const
{
    if (obj == nullptr)
        return false;
    if (!m_names.contains(obj))
        return m_repeated && listModel() != nullptr && listModel()->list().contains(obj);
    return listModel() == nullptr || indexOf(obj) >= 0;
}

int QObjectListModelIndexByName::indexOf(QObject* obj) const
{
    const QObjectListModel* model = listModel();
    if (m_repeated && model != nullptr)
        return model->list().indexOf(obj);
    const auto name = m_names.constFind(obj);
    if (name == m_names.constEnd())
        return -1;
    const int row = m_rows.value(*name, -1);
    if (model == nullptr)
        return row;
    // A name shared by several objects leads to the row of the one filed last: the
    // others are found by a scan, never answered with another object's row.
    const QList<QObject*>& objects = model->list();
    if (row >= 0 && row < objects.size() && objects.at(row) == obj)
        return row;
    return objects.indexOf(obj);
}

int QObjectListModelIndexByName::indexOfName(const QString& str) const
{
    if (m_repeated && listModel() != nullptr) {
        const QList<QObject*> objects = listModel()->list();
        for (int row = 0; row < objects.size(); ++row) {
            if (objects.at(row) != nullptr && objects.at(row)->objectName() == str)
                return row;
        }
        return -1;
    }
    return m_rows.value(str, -1);
}

void QObjectListModelIndexByName::insert(int index, QObject* obj, int)
{
    // Every row counts, null ones too: rows at and after the new one move down, unless the
    // object only changes its name or comes in behind all rows the index knows.
    if (m_structural) {
        if (index < m_known_rows)
            shiftRows(index, 1);
        ++m_known_rows;
    }
    if (obj == nullptr)
        return;
    // An object listed twice is filed once: from then on the hashes cannot tell its
    // rows apart, and look-ups scan the list until the index is dropped.
    if (m_names.contains(obj)) {
        m_repeated = true;
        return;
    }
    const QString name = obj->objectName();
    m_names.insert(obj, name);
    m_rows.insert(name, index);
    connect(obj, &QObject::objectNameChanged, this, &QObjectListModelIndexByName::onNameChanged,
            Qt::UniqueConnection);
}

void QObjectListModelIndexByName::remove(int, QObject* obj, int)
{
    const auto filed = m_names.find(obj);
    if (filed == m_names.end())
        return;
    // The name goes with the object, even where another object carries it too.
    m_rows.remove(*filed);
    m_names.erase(filed);
    disconnect(obj, &QObject::objectNameChanged, this, &QObjectListModelIndexByName::onNameChanged);
    // Rows after a removed one are renumbered once the model has taken them out.
}

void QObjectListModelIndexByName::onNameChanged()
{
    QObject* object = sender();
    if (object == nullptr || !m_names.contains(object))
        return;
    const int row = indexOf(object);
    if (row < 0)
        return;
    // The object keeps its row: only its name is re-filed.
    remove(row, object, row + 1);
    m_structural = false;
    insert(row, object, row + 1);
    m_structural = true;
}

void QObjectListModelIndexByName::removeAllFromIndex()
{
    const QList<QObject*> objects = m_names.keys();
    m_rows.clear();
    m_names.clear();
    m_repeated = false;
    m_known_rows = 0;
    for (QObject* object : objects)
        disconnect(object, &QObject::objectNameChanged, this, &QObjectListModelIndexByName::onNameChanged);
}

void QObjectListModelIndexByName::onWatchRemovalsChanged()
{
    QObjectListModel* model = listModel();
    if (model == nullptr)
        return;
    if (!watchRemovals()) {
        disconnect(model, SIGNAL(modelAboutToBeReset()), this, SLOT(removeAllFromIndex()));
    } else if (enabled()) {
        disconnect(model, SIGNAL(modelAboutToBeReset()), this, SLOT(removeAll()));
        connect(model, &QAbstractItemModel::modelAboutToBeReset, this,
                &QObjectListModelIndexByName::removeAllFromIndex, Qt::UniqueConnection);
    }
}

void QObjectListModelIndexByName::onEnabledChanged()
{
    if (!enabled()) {
        m_repeated = false;
        m_known_rows = 0;
    }
    QObjectListModel* model = listModel();
    if (model == nullptr || !enabled())
        return;
    onWatchRemovalsChanged();
    connect(model, &QAbstractItemModel::rowsRemoved, this, &QObjectListModelIndexByName::onRowsRemoved,
            Qt::UniqueConnection);
    connect(model, &QAbstractItemModel::rowsMoved, this, &QObjectListModelIndexByName::onRowsMoved,
            Qt::UniqueConnection);
    connect(model, &QAbstractItemModel::dataChanged, this, &QObjectListModelIndexByName::onDataChanged,
            Qt::UniqueConnection);
}

void QObjectListModelIndexByName::onRowsRemoved(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    // The removed objects are already out of the index: rows past them move up.
    const int removed = last - first + 1;
    if (last + 1 < m_known_rows)
        shiftRows(last + 1, -removed);
    m_known_rows = std::max(m_known_rows - removed, 0);
}

void QObjectListModelIndexByName::onRowsMoved(const QModelIndex& parent, int start, int end,
                                              const QModelIndex& destination, int row)
{
    if (parent.isValid() || destination.isValid())
        return;
    // Every filed row follows its object: the block moves to the destination, the rows
    // it passes over close up behind it.
    const int moved = end - start + 1;
    for (auto it = m_rows.begin(); it != m_rows.end(); ++it) {
        const int r = *it;
        if (r >= start && r <= end)
            *it = r + (row > end ? row - end - 1 : row - start);
        else if (row > end && r > end && r < row)
            *it = r - moved;
        else if (row < start && r >= row && r < start)
            *it = r + moved;
    }
}

void QObjectListModelIndexByName::onDataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right)
{
    QObjectListModel* model = listModel();
    if (model == nullptr || top_left.parent().isValid() || !watchInsertions())
        return;
    // A replaced row is told by dataChanged alone: an object there that the index does
    // not know means the rows changed hands, and the index is filed again from the list.
    const QList<QObject*> objects = model->list();
    const int last = std::min(bottom_right.row(), objects.size() - 1);
    for (int i = std::max(top_left.row(), 0); i <= last; ++i) {
        if (objects.at(i) != nullptr && !m_names.contains(objects.at(i))) {
            removeAllFromIndex();
            loadAll();
            return;
        }
    }
}

void QObjectListModelIndexByName::shiftRows(int from, int by)
{
    for (auto it = m_rows.begin(); it != m_rows.end(); ++it) {
        if (*it >= from)
            *it += by;
    }
}
