#include <qobject_list_model/object_model_utils.h>
#include <qobject_list_model/qobject_tree_model.h>

#include <uni_base/uni_assert.h>

#include <QByteArray>
#include <QMetaObject>
#include <QQmlEngine>

#include <utility>

// --- QObjectTreeItem ---

QObjectTreeItem::QObjectTreeItem(QObject* object)
{
    wrap(object);
}

QObjectTreeItem::QObjectTreeItem(std::shared_ptr<QObject> object) : m_keeper(std::move(object))
{
    if (m_keeper)
        QQmlEngine::setObjectOwnership(m_keeper.get(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    wrap(m_keeper.get());
}

QObjectTreeItem::QObjectTreeItem(const QObjectTreeItem& template_item)
    : QObject(), m_keeper(template_item.m_keeper)
{
    wrap(template_item.m_object);
    for (QObject* child : template_item.m_children) {
        const auto* item = qobject_cast<const QObjectTreeItem*>(child);
        if (UNI_ASSERT(item))
            appendChild(new QObjectTreeItem(*item));
    }
}

QObjectTreeItem::~QObjectTreeItem()
{
    const QList<QObject*> children = std::exchange(m_children, {});
    qDeleteAll(children);
}

void QObjectTreeItem::wrap(QObject* object)
{
    m_object = object;
    if (object == nullptr)
        return;
    UNI_ASSERT(
        QObject::connect(m_object, &QObject::destroyed, this, &QObjectTreeItem::handleDestroyedObject));
    // Any class may be wrapped: only objects with that signal tell their changes. Asking
    // first spares the warning that a connection to a missing signal writes.
    static const QByteArray change_signal =
        QMetaObject::normalizedSignature("configItemChanged(channel_config::ChannelID, QString)");
    if (m_object->metaObject()->indexOfSignal(change_signal.constData()) < 0)
        return;
    m_change_signal_connected = static_cast<bool>(QObject::connect(
        m_object, "2configItemChanged(channel_config::ChannelID, QString)", this, "1sendDataChanged()"));
}

void QObjectTreeItem::appendChild(QObjectTreeItem* child)
{
    if (!UNI_ASSERT(child))
        return;
    child->m_parent = this;
    m_children.append(child);
}

bool QObjectTreeItem::insertChild(int row, QObjectTreeItem* child)
{
    if (row < 0 || row > m_children.size() || !UNI_ASSERT(child))
        return false;
    child->m_parent = this;
    m_children.insert(row, child);
    return true;
}

QObjectTreeItem* QObjectTreeItem::child(int row) const
{
    if (row < 0 || row >= m_children.size())
        return nullptr;
    return static_cast<QObjectTreeItem*>(m_children.at(row));
}

int QObjectTreeItem::childCount() const
{
    return m_children.size();
}

int QObjectTreeItem::row() const
{
    if (m_parent == nullptr)
        return 0;
    return m_parent->m_children.indexOf(const_cast<QObjectTreeItem*>(this));
}

void QObjectTreeItem::handleDestroyedObject()
{
    m_object = nullptr;
}

void QObjectTreeItem::sendDataChanged()
{
    Q_EMIT dataChanged(m_object);
}

// --- QObjectTreeModel ---

QObjectTreeModel::QObjectTreeModel(QObject* parent) : QAbstractItemModel(parent), m_root(new QObjectTreeItem)
{
    m_timer.setInterval(COLLECTION_INTERVAL_MS);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QObjectTreeModel::sendDataChangedForCollectedObjects);
}

QObjectTreeModel::~QObjectTreeModel()
{
    delete m_root;
}

void QObjectTreeModel::setRoot(QObjectTreeItem* root)
{
    sendDataChangedForCollectedObjects();
    beginResetModel();
    if (root == nullptr)
        root = new QObjectTreeItem;
    connectTree(root);
    QObjectTreeItem* old = std::exchange(m_root, root);
    endResetModel();
    delete old;
}

void QObjectTreeModel::connectTree(QObjectTreeItem* item)
{
    connect(item, &QObjectTreeItem::dataChanged, this, &QObjectTreeModel::sendDataChangedForObject,
            Qt::UniqueConnection);
    for (int row = 0; row < item->childCount(); ++row)
        connectTree(item->child(row));
}

QObjectTreeItem* QObjectTreeModel::itemOf(const QModelIndex& index) const
{
    if (!index.isValid() || index.internalPointer() == nullptr)
        return m_root;
    return static_cast<QObjectTreeItem*>(index.internalPointer());
}

QModelIndex QObjectTreeModel::indexOf(QObjectTreeItem* item) const
{
    if (item == nullptr || item == m_root)
        return QModelIndex();
    const int row = item->row();
    return row < 0 ? QModelIndex() : createIndex(row, 0, item);
}

QModelIndex QObjectTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    return createIndex(row, column, itemOf(parent)->child(row));
}

QModelIndex QObjectTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalPointer() == nullptr)
        return QModelIndex();
    return indexOf(itemOf(child)->parentItem());
}

int QObjectTreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return itemOf(parent)->childCount();
}

int QObjectTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant QObjectTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    QObjectTreeItem* item = itemOf(index);
    switch (role) {
    case ObjectRole:
        return QVariant::fromValue(item->object());
    case AncestorsRole: {
        QVariantList ancestors;
        for (QModelIndex up = parent(index); up.isValid(); up = parent(up))
            ancestors.prepend(data(up, ObjectRole));
        return ancestors;
    }
    case TreeItemRole:
        return QVariant::fromValue(item);
    case DescendentsRole:
        return ObjectModelUtils::descendantsOf(this, index);
    default:
        return QVariant();
    }
}

QVariant QObjectTreeModel::headerData(int, Qt::Orientation, int) const
{
    return QVariant();
}

QHash<int, QByteArray> QObjectTreeModel::roleNames() const
{
    return {{ObjectRole, "object"},
            {AncestorsRole, "ancestors"},
            {TreeItemRole, "treeItem"},
            {DescendentsRole, "descendents"}};
}

void QObjectTreeModel::sendDataChangedForObject(QObject*)
{
    auto* item = qobject_cast<QObjectTreeItem*>(sender());
    const QModelIndex index = indexOf(item);
    if (index.isValid())
        sendDataChangedForIndex(index);
}

void QObjectTreeModel::sendDataChangedForIndex(QModelIndex index)
{
    m_pending.insert(index);
    // A running timer is left alone: a steady stream of changes still goes out every period.
    if (!m_timer.isActive())
        m_timer.start();
}

void QObjectTreeModel::sendDataChangedForCollectedObjects()
{
    m_timer.stop();
    // Ancestors too: a view may show a rolled-up state of a parent.
    std::set<QModelIndex> changed;
    for (const QModelIndex& pending : m_pending) {
        for (QModelIndex index = pending; index.isValid(); index = parent(index)) {
            if (!changed.insert(index).second)
                break;
        }
    }
    m_pending.clear();
    for (const QModelIndex& index : changed)
        Q_EMIT dataChanged(index, index, {});
}

// --- QObjectTreeModelSelectionCache ---

Qt::CheckState QObjectTreeModelSelectionCache::getSelectionState(QObject* object) const
{
    return m_states.value(object, Qt::Unchecked);
}

void QObjectTreeModelSelectionCache::setSelectionState(QObject* object, Qt::CheckState state)
{
    m_states.insert(object, state);
}

void QObjectTreeModelSelectionCache::removeSelectionState(QObject* object)
{
    m_states.remove(object);
}

void QObjectTreeModelSelectionCache::clearAll()
{
    m_states.clear();
}
