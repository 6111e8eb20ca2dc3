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
    if (m_repeated && listModel() != nullptr)
        return listModel()->list().contains(obj);
    return m_names.contains(obj);
}

int QObjectListModelIndexByName::indexOf(QObject* obj) const
{
    if (m_repeated && listModel() != nullptr)
        return listModel()->list().indexOf(obj);
    const auto name = m_names.constFind(obj);
    if (name == m_names.constEnd())
        return -1;
    if ((m_repeated || m_name_uses.value(*name) > 1) && listModel() != nullptr)
        return listModel()->list().indexOf(obj);
    return m_rows.value(*name, -1);
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
    if (obj == nullptr)
        return;
    // Rows at and after the new one move down, unless the object only changes its name
    // or comes in at the end.
    if (m_structural && index < m_names.size())
        shiftRows(index, 1);
    // An object listed twice is filed once: from then on the hashes cannot tell its
    // rows apart, and look-ups scan the list until the index is dropped.
    if (m_names.contains(obj)) {
        m_repeated = true;
        return;
    }
    const QString name = obj->objectName();
    m_names.insert(obj, name);
    ++m_name_uses[name];
    const auto row = m_rows.find(name);
    if (row == m_rows.end())
        m_rows.insert(name, index);
    else if (*row > index)
        *row = index;
    connect(obj, &QObject::objectNameChanged, this, &QObjectListModelIndexByName::onNameChanged,
            Qt::UniqueConnection);
}

void QObjectListModelIndexByName::remove(int index, QObject* obj, int)
{
    const auto filed = m_names.find(obj);
    if (filed == m_names.end())
        return;
    const QString name = *filed;
    m_names.erase(filed);
    disconnect(obj, &QObject::objectNameChanged, this, &QObjectListModelIndexByName::onNameChanged);
    if (--m_name_uses[name] == 0) {
        m_name_uses.remove(name);
        m_rows.remove(name);
    } else if (m_rows.value(name) == index) {
        // The first holder leaves: the name passes to the next object filed under it.
        const int next = firstFiledRow(name, index + 1);
        if (next >= 0)
            m_rows.insert(name, next);
        else
            m_rows.remove(name);
    }
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
    m_name_uses.clear();
    m_repeated = false;
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
    if (!enabled())
        m_repeated = false;
    QObjectListModel* model = listModel();
    if (model == nullptr || !enabled())
        return;
    onWatchRemovalsChanged();
    connect(model, &QAbstractItemModel::rowsRemoved, this, &QObjectListModelIndexByName::onRowsRemoved,
            Qt::UniqueConnection);
    connect(model, &QAbstractItemModel::rowsMoved, this, &QObjectListModelIndexByName::onRowsMoved,
            Qt::UniqueConnection);
}

void QObjectListModelIndexByName::onRowsRemoved(const QModelIndex& parent, int first, int last)
{
    if (parent.isValid())
        return;
    // The removed objects are already out of the index: rows past them move up.
    if (last + 1 < m_names.size() + (last - first + 1))
        shiftRows(last + 1, -(last - first + 1));
}

void QObjectListModelIndexByName::onRowsMoved(const QModelIndex& parent, int start, int end,
                                              const QModelIndex& destination, int row)
{
    if (parent.isValid() || destination.isValid())
        return;
    refileRows(std::min(start, row), std::max(end, row - 1));
}

void QObjectListModelIndexByName::shiftRows(int from, int by)
{
    for (auto it = m_rows.begin(); it != m_rows.end(); ++it) {
        if (*it >= from)
            *it += by;
    }
}

int QObjectListModelIndexByName::firstFiledRow(const QString& name, int from) const
{
    if (listModel() == nullptr)
        return -1;
    const QList<QObject*> objects = listModel()->list();
    for (int i = std::max(from, 0); i < objects.size(); ++i) {
        const auto filed = m_names.constFind(objects.at(i));
        if (filed != m_names.constEnd() && *filed == name)
            return i;
    }
    return -1;
}

void QObjectListModelIndexByName::refileRows(int first, int last)
{
    if (listModel() == nullptr)
        return;
    const QList<QObject*> objects = listModel()->list();
    last = std::min(last, objects.size() - 1);
    // Names first held inside the range are given again to their first holder there;
    // a name held before the range keeps its row.
    for (int i = first; i <= last; ++i) {
        const auto filed = m_names.constFind(objects.at(i));
        if (filed == m_names.constEnd())
            continue;
        const int held = m_rows.value(*filed, -1);
        if (held >= first && held <= last)
            m_rows.remove(*filed);
    }
    for (int i = first; i <= last; ++i) {
        const auto filed = m_names.constFind(objects.at(i));
        if (filed == m_names.constEnd())
            continue;
        const auto row = m_rows.find(*filed);
        if (row == m_rows.end())
            m_rows.insert(*filed, i);
        else if (*row > i)
            *row = i;
    }
}
