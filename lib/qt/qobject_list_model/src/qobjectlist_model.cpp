#include <qobject_list_model/qobjectlist_model.h>

#include <qobject_list_model/qobject_list_model_index_by_name.h>

#include <QMetaType>
#include <QQmlEngine>
#include <QThread>

#include <algorithm>

#include <uni_base/uni_assert.h>

QObjectListModel::QObjectListModel(QObject* parent) : QAbstractListModel(parent) {}

// Releases the list only: tracked objects stay connected (the connection dies with
// this object) and no list signal goes out.
QObjectListModel::~QObjectListModel() = default;

int QObjectListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_list.size();
}

QVariant QObjectListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() != 0 || index.row() < 0 || index.row() >= m_list.size())
        return {};
    QObject* object = m_list.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        // A dying object may already be gone (it died in another thread and the
        // news came queued): its name can't be read.
        return object != nullptr && object != m_dying ? QVariant(object->objectName()) : QVariant();
    case OBJECT_ROLE:
        return QVariant::fromValue(object);
    default:
        return {};
    }
}

QHash<int, QByteArray> QObjectListModel::roleNames() const
{
    return {{OBJECT_ROLE, QByteArrayLiteral("object")}};
}

bool QObjectListModel::isObjectCompatible(QObject* object) const
{
    return object != nullptr;
}

void QObjectListModel::setTracking(bool v)
{
    // The flag only: objects already in the list keep the state they were added with.
    if (m_tracking == v)
        return;
    m_tracking = v;
    Q_EMIT trackingChanged();
}

QVariant QObjectListModel::dataByRole(int i, int role) const
{
    return data(index(i, 0), role);
}

void QObjectListModel::append(QObject* object)
{
    if (object == nullptr)
        return;
    const bool compatible = UNI_ASSERT(isObjectCompatible(object));
    if (!checkThread() || !compatible)
        return;
    insertOne(m_list.size(), object);
}

void QObjectListModel::append(QList<QObject*> objects)
{
    if (objects.isEmpty() || !checkThread())
        return;
    // Nulls were reported by listAppend already; the list takes none of them, and no
    // object of a class it cannot hold.
    QList<QObject*> accepted;
    accepted.reserve(objects.size());
    for (QObject* object : qAsConst(objects)) {
        if (object != nullptr && UNI_ASSERT(isObjectCompatible(object)))
            accepted.append(object);
    }
    if (!accepted.isEmpty())
        appendMany(accepted);
}

void QObjectListModel::move(int from, int to)
{
    if (!checkThread())
        return;
    const int n = m_list.size();
    if (from < 0 || from >= n || to < 0 || to >= n)
        return;
    if (!beginMoveRows(QModelIndex(), from, from, QModelIndex(), to > from ? to + 1 : to))
        return;
    m_list.move(from, to);
    endMoveRows();
}

void QObjectListModel::clearList(bool deleteObjects)
{
    if (!checkThread())
        return;
    const QList<QObject*> old = m_list;
    if (old.isEmpty())
        return;
    onObjectsAboutToBeRemoved(0, old.size() - 1);
    beginResetModel();
    if (m_tracking) {
        for (QObject* object : old)
            trackObject(object, false);
    }
    m_list.clear();
    endResetModel();
    Q_EMIT countChanged();
    if (deleteObjects) {
        for (QObject* object : old)
            delete object;
    }
}

void QObjectListModel::clearList()
{
    clearList(false);
}

void QObjectListModel::removeItem(QObject* obj)
{
    if (obj == nullptr || !checkThread())
        return;
    const int row = indexOf(obj);
    if (row >= 0)
        removeRange(row, 1);
}

void QObjectListModel::removeItems(QList<QObject*> objects)
{
    if (objects.isEmpty() || !checkThread())
        return;
    for (QObject* object : qAsConst(objects))
        removeItem(object);
}

bool QObjectListModel::contains(QObject* object) const
{
    if (object == nullptr)
        return false;
    checkThread();
    if (const QObjectListModelIndexByName* index = activeNameIndex())
        return index->contains(object);
    return m_list.contains(object);
}

int QObjectListModel::indexOf(QObject* object, int from) const
{
    if (object == nullptr)
        return -1;
    checkThread();
    if (from == 0) {
        if (const QObjectListModelIndexByName* index = activeNameIndex())
            return index->indexOf(object);
    }
    const int n = m_list.size();
    if (from < 0)
        from = std::max(n + from, 0);
    if (from >= n)
        return -1;
    return m_list.indexOf(object, from);
}

int QObjectListModel::indexOf(QObject* object) const
{
    return indexOf(object, 0);
}

int QObjectListModel::indexOfName(QString str) const
{
    checkThread();
    if (const QObjectListModelIndexByName* index = activeNameIndex())
        return index->indexOfName(str);
    for (int row = 0; row < m_list.size(); ++row) {
        const QObject* object = m_list.at(row);
        if (object != nullptr && object->objectName() == str)
            return row;
    }
    return -1;
}

int QObjectListModel::size() const
{
    return m_list.size();
}

QObject* QObjectListModel::get(int i) const
{
    if (i < 0 || i >= m_list.size())
        return nullptr;
    QObject* object = m_list.at(i);
    keepForNative(object);
    return object;
}

QObject* QObjectListModel::getByName(QString str) const
{
    const int row = indexOfName(str);
    return row >= 0 ? get(row) : nullptr;
}

void QObjectListModel::listAppend(QList<QObject*> objects)
{
    for (QObject* obj : qAsConst(objects)) {
        keepForNative(obj);
        UNI_ASSERT(obj);
    }
    append(objects);
}

void QObjectListModel::listAppend(QObject* obj)
{
    if (obj == nullptr)
        return;
    keepForNative(obj);
    append(obj);
}

void QObjectListModel::listInsert(int at, QObject* obj)
{
    if (obj == nullptr || at < 0 || at > m_list.size() || !checkThread())
        return;
    keepForNative(obj);
    insertOne(at, obj);
}

void QObjectListModel::listReplace(int i, QObject* object)
{
    // The same bound test as listInsert: i == count passes it, and replace ignores it.
    if (object == nullptr || i < 0 || i > m_list.size() || !checkThread())
        return;
    keepForNative(object);
    replace(i, object);
}

void QObjectListModel::listRemove(int at, int count)
{
    if (!checkThread())
        return;
    removeRange(at, count);
}

void QObjectListModel::listRemove(int at)
{
    listRemove(at, 1);
}

bool QObjectListModel::deleteItem(QObject* obj)
{
    if (obj == nullptr || !checkThread() || !m_list.contains(obj))
        return false;
    removeItem(obj);
    obj->deleteLater();
    return true;
}

void QObjectListModel::listSetFromObjectListModel(QObjectListModel* model)
{
    if (model == nullptr || !model->checkThread())
        return;
    setList(model->m_list);
}

void QObjectListModel::listAppendFromObjectListModel(QObjectListModel* model)
{
    if (model == nullptr || !model->checkThread())
        return;
    append(model->m_list);
}

void QObjectListModel::listSetFromItemModel(QAbstractItemModel* model, int role, int column)
{
    if (model == nullptr || !checkThread() || model->columnCount(QModelIndex()) <= column || column < 0)
        return;
    QList<QObject*> objects;
    const int rows = model->rowCount(QModelIndex());
    objects.reserve(rows);
    for (int row = 0; row < rows; ++row) {
        const QVariant value = model->data(model->index(row, column), role);
        QObject* object = nullptr;
        const int type = value.userType();
        if (type == QMetaType::QObjectStar || (QMetaType::typeFlags(type) & QMetaType::PointerToQObject))
            object = *static_cast<QObject* const*>(value.constData());
        else if (value.canConvert<QObject*>())
            object = value.value<QObject*>();
        // Nulls are kept, so that rows keep their places.
        objects.append(qobject_cast<QObject*>(object));
    }
    setList(objects);
}

bool QObjectListModel::runningInObjectThread() const
{
    return QThread::currentThread() == thread();
}

void QObjectListModel::setList(QList<QObject*> objects)
{
    if (!checkThread())
        return;
    const QList<QObject*> old = m_list;
    const int old_count = old.size();
    onObjectsAboutToBeRemoved(0, old_count - 1);
    beginResetModel();
    for (QObject* object : old) {
        if (m_tracking)
            trackObject(object, false);
        Q_EMIT objectAboutToBeRemoved(object);
    }
    m_list = objects;
    if (m_tracking) {
        for (QObject* object : qAsConst(objects))
            trackObject(object, true);
    }
    const int new_count = objects.size();
    onObjectsInserted(0, new_count - 1);
    endResetModel();
    if (new_count > 0)
        Q_EMIT dataChanged(index(0), index(new_count - 1), {});
    if (new_count != old_count)
        Q_EMIT countChanged();
    for (QObject* object : qAsConst(objects))
        Q_EMIT objectAdded(object);
}

void QObjectListModel::insert(int at, QObject* obj)
{
    if (obj == nullptr || !checkThread())
        return;
    if (!UNI_ASSERT_MSG(at >= 0 && at <= m_list.size(), "row %d of %d", at, m_list.size()))
        return;
    insertOne(at, obj);
}

QObject* QObjectListModel::takeAt(int i)
{
    if (!checkThread() || i < 0 || i >= m_list.size())
        return nullptr;
    return takeRow(i);
}

void QObjectListModel::trackObject(QObject* object, bool track)
{
    if (object == nullptr)
        return;
    // One connection per object, however often it is in the list (a unique connect
    // refuses the second one by design, so it is not checked); it goes when the
    // object's last tracked row does.
    if (track) {
        connect(object, &QObject::destroyed, this, &QObjectListModel::onObjectDestroyed,
                Qt::UniqueConnection);
        ++m_tracked_rows[object];
        return;
    }
    const auto it = m_tracked_rows.find(object);
    if (it != m_tracked_rows.end()) {
        if (--it.value() > 0)
            return;
        m_tracked_rows.erase(it);
    }
    disconnect(object, &QObject::destroyed, this, &QObjectListModel::onObjectDestroyed);
}

void QObjectListModel::onObjectsInserted(int /*first*/, int /*last*/) {}

void QObjectListModel::onObjectsAboutToBeRemoved(int /*first*/, int /*last*/) {}

void QObjectListModel::replace(int i, QObject* obj)
{
    if (obj == nullptr || !checkThread() || i < 0 || i >= m_list.size())
        return;
    QObject* old = m_list.at(i);
    Q_EMIT objectAboutToBeRemoved(old);
    if (m_tracking)
        trackObject(old, false);
    m_list[i] = obj;
    Q_EMIT objectRemoved(old);
    if (m_tracking)
        trackObject(obj, true);
    Q_EMIT dataChanged(index(i), index(i), {});
    Q_EMIT objectAdded(obj);
}

void QObjectListModel::notifyReset()
{
    if (!checkThread())
        return;
    beginResetModel();
    endResetModel();
    Q_EMIT countChanged();
}

void QObjectListModel::onObjectDestroyed(QObject* obj)
{
    if (obj == nullptr || !checkThread())
        return;
    // The object is dying: remove it without trying to disconnect from it. An object
    // that is in the list more than once leaves it at every tracked place; the search
    // stops there, so a death costs no more than finding the first row.
    const int rows = std::max(m_tracked_rows.take(obj), 1);
    const bool tracking = m_tracking;
    m_tracking = false;
    m_dying = obj;
    int row = indexOf(obj);
    for (int removed = 0; row >= 0 && removed < rows; ++removed) {
        takeRow(row);
        if (removed + 1 < rows)
            row = m_list.indexOf(obj, row);
    }
    m_dying = nullptr;
    m_tracking = tracking;
}

bool QObjectListModel::checkThread() const
{
    return UNI_ASSERT(runningInObjectThread());
}

void QObjectListModel::insertOne(int at, QObject* obj)
{
    beginInsertRows(QModelIndex(), at, at);
    m_list.insert(at, obj);
    if (m_tracking)
        trackObject(obj, true);
    onObjectsInserted(at, at);
    endInsertRows();
    Q_EMIT countChanged();
    Q_EMIT objectAdded(obj);
}

void QObjectListModel::appendMany(const QList<QObject*>& objects)
{
    const int first = m_list.size();
    const int last = first + objects.size() - 1;
    beginInsertRows(QModelIndex(), first, last);
    m_list.append(objects);
    if (m_tracking) {
        for (QObject* object : objects)
            trackObject(object, true);
    }
    onObjectsInserted(first, last);
    endInsertRows();
    Q_EMIT countChanged();
    for (QObject* object : objects)
        Q_EMIT objectAdded(object);
}

void QObjectListModel::removeRange(int at, int count)
{
    if (at < 0 || at >= m_list.size() || count <= 0)
        return;
    count = std::min(count, m_list.size() - at);
    const int last = at + count - 1;
    onObjectsAboutToBeRemoved(at, last);
    beginRemoveRows(QModelIndex(), at, last);
    for (int k = 0; k < count; ++k) {
        QObject* object = m_list.at(at);
        if (m_tracking)
            trackObject(object, false);
        Q_EMIT objectAboutToBeRemoved(object);
        m_list.removeAt(at);
        Q_EMIT objectRemoved(object);
    }
    endRemoveRows();
    Q_EMIT countChanged();
}

QObject* QObjectListModel::takeRow(int i)
{
    QObject* object = m_list.at(i);
    Q_EMIT objectAboutToBeRemoved(object);
    onObjectsAboutToBeRemoved(i, i);
    beginRemoveRows(QModelIndex(), i, i);
    m_list.removeAt(i);
    if (m_tracking)
        trackObject(object, false);
    endRemoveRows();
    Q_EMIT objectRemoved(object);
    Q_EMIT countChanged();
    return object;
}

void QObjectListModel::keepForNative(QObject* obj)
{
    if (obj != nullptr)
        QQmlEngine::setObjectOwnership(obj, QQmlEngine::CppOwnership);
}

void QObjectListModel::setNameIndex(QObjectListModelIndexByName* index)
{
    m_name_index = index;
}

QObjectListModelIndexByName* QObjectListModel::nameIndex() const
{
    return m_name_index;
}

const QObjectListModelIndexByName* QObjectListModel::activeNameIndex() const
{
    const QObjectListModelIndexByName* index = m_name_index.data();
    // Only an index that hears every change of this list can stand in for a scan.
    const bool complete = index != nullptr && index->enabled() && index->listModel() == this &&
                          index->watchInsertions() && index->watchRemovals();
    return complete ? index : nullptr;
}
