#include <qobject_list_model/qobject_list_model_adapter.h>
#include <qobject_list_model/qobject_list_model_adapter_signal.h>

QObjectListModelAdapter::QObjectListModelAdapter(QObjectListModel* model, QObject* parent)
    : QObject(parent), m_model(model)
{}

QObjectListModelAdapter::~QObjectListModelAdapter() = default;

void QObjectListModelAdapter::setListModel(QObjectListModel* model)
{
    if (m_model == model)
        return;
    const bool was_enabled = m_enabled;
    if (was_enabled)
        setEnabled(false);
    m_model = model;
    if (was_enabled)
        setEnabled(true);
    Q_EMIT listModelChanged();
}

void QObjectListModelAdapter::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    if (m_model) {
        if (enabled) {
            loadAll();
            if (m_watch_insertions)
                connectInsertions(true);
            if (m_watch_removals)
                connectRemovals(true);
        } else {
            QObject::disconnect(m_model, nullptr, this, nullptr);
            removeAll();
        }
    }
    Q_EMIT enabledChanged();
}

void QObjectListModelAdapter::setWatchInsertions(bool watch)
{
    if (m_watch_insertions == watch)
        return;
    m_watch_insertions = watch;
    if (m_enabled && m_model)
        connectInsertions(watch);
    Q_EMIT watchInsertionsChanged();
}

void QObjectListModelAdapter::setWatchRemovals(bool watch)
{
    if (m_watch_removals == watch)
        return;
    m_watch_removals = watch;
    if (m_enabled && m_model)
        connectRemovals(watch);
    Q_EMIT watchRemovalsChanged();
}

void QObjectListModelAdapter::connectInsertions(bool on)
{
    if (on) {
        connect(m_model, &QAbstractItemModel::modelReset, this, &QObjectListModelAdapter::loadAll,
                Qt::UniqueConnection);
        connect(m_model, &QAbstractItemModel::rowsInserted, this, &QObjectListModelAdapter::listInsert,
                Qt::UniqueConnection);
    } else {
        disconnect(m_model, &QAbstractItemModel::modelReset, this, &QObjectListModelAdapter::loadAll);
        disconnect(m_model, &QAbstractItemModel::rowsInserted, this, &QObjectListModelAdapter::listInsert);
    }
}

void QObjectListModelAdapter::connectRemovals(bool on)
{
    // Connected by name, so that a subclass can re-route the reset by name as well.
    if (on) {
        connect(m_model, SIGNAL(modelAboutToBeReset()), this, SLOT(removeAll()), Qt::UniqueConnection);
        connect(m_model, SIGNAL(rowsAboutToBeRemoved(const QModelIndex&, int, int)), this,
                SLOT(listRemove(const QModelIndex&, int, int)), Qt::UniqueConnection);
    } else {
        disconnect(m_model, SIGNAL(modelAboutToBeReset()), this, SLOT(removeAll()));
        disconnect(m_model, SIGNAL(rowsAboutToBeRemoved(const QModelIndex&, int, int)), this,
                   SLOT(listRemove(const QModelIndex&, int, int)));
    }
}

void QObjectListModelAdapter::loadAll()
{
    if (!m_model)
        return;
    // A copy: an insert() that changes the list must not break the loop.
    const QList<QObject*> objects = m_model->list();
    for (int i = 0; i < objects.size(); ++i)
        insert(i, objects.at(i), i + 1);
}

void QObjectListModelAdapter::removeAll()
{
    if (!m_model)
        return;
    const QList<QObject*> objects = m_model->list();
    for (int i = objects.size() - 1; i >= 0; --i)
        remove(i, objects.at(i), i + 1);
}

void QObjectListModelAdapter::listInsert(const QModelIndex& parent, int start, int end)
{
    if (!m_model || parent.isValid())
        return;
    const QList<QObject*> objects = m_model->list();
    for (int i = start; i <= end && i < objects.size(); ++i)
        insert(i, objects.at(i), objects.size());
}

void QObjectListModelAdapter::listRemove(const QModelIndex& parent, int start, int end)
{
    if (!m_model || parent.isValid())
        return;
    const QList<QObject*> objects = m_model->list();
    for (int i = start; i <= end && i < objects.size(); ++i)
        remove(i, objects.at(i), objects.size());
}

void QObjectListModelAdapter::insert(int, QObject*, int) {}

void QObjectListModelAdapter::remove(int, QObject*, int) {}

void QObjectListModelAdapterSignal::insert(int index, QObject* obj, int)
{
    Q_EMIT insert(index, obj);
}

void QObjectListModelAdapterSignal::remove(int index, QObject* obj, int)
{
    Q_EMIT remove(index, obj);
}
