#include <qobject_list_model/single_selection.h>

#include <algorithm>

namespace lum::qobject_list_model {

SingleSelection::SingleSelection(QObject* parent) : QObject(parent) {}

SingleSelection::~SingleSelection() = default;

void SingleSelection::setAllObjects(QObjectListModel* model)
{
    if (m_all_objects == model)
        return;
    if (model == nullptr) {
        if (m_active_object != nullptr) {
            watchActive(false);
            m_active_object = nullptr;
            Q_EMIT activeObjectChanged(nullptr);
        }
        if (m_active_index >= 0) {
            m_active_index = -1;
            Q_EMIT activeIndexChanged(-1);
        }
    }
    if (m_all_objects != nullptr)
        disconnect(m_all_objects, nullptr, this, nullptr);
    m_all_objects = model;
    if (model != nullptr) {
        connect(model, &QObjectListModel::countChanged, this, &SingleSelection::onCountChanged);
        connect(model, &QAbstractItemModel::rowsMoved, this, &SingleSelection::onRowsMoved);
    }
    Q_EMIT allObjectsChanged(model);
}

void SingleSelection::setActiveIndex(int i)
{
    if (m_all_objects == nullptr)
        return;
    QObject* obj = m_all_objects->get(i);
    if (obj == m_active_object)
        return;
    if (i < 0 || i >= m_all_objects->size()) {
        i = -1;
        obj = nullptr;
    }
    watchActive(false);
    m_active_index = i;
    m_active_object = obj;
    watchActive(true);
    Q_EMIT activeObjectChanged(obj);
    Q_EMIT activeIndexChanged(i);
}

void SingleSelection::onCountChanged()
{
    resync();
}

void SingleSelection::onRowsMoved(QModelIndex, int, int, QModelIndex, int)
{
    resync();
}

void SingleSelection::resync()
{
    if (m_all_objects == nullptr)
        return;
    const QList<QObject*> objects = m_all_objects->list();
    for (int r = 0; r < objects.size(); ++r) {
        if (objects.at(r) == m_active_object && r != m_active_index) {
            m_active_index = r;
            Q_EMIT activeIndexChanged(r);
            return;
        }
    }
    if (objects.isEmpty())
        selectNothing();
    else
        setActiveIndex(m_active_index < objects.size() ? m_active_index : objects.size() - 1);
}

void SingleSelection::onObjectDeleted(QObject* obj)
{
    if (m_all_objects == nullptr || !m_all_objects->contains(obj))
        return;
    if (m_all_objects->size() <= 1)
        selectNothing();
    else
        setActiveIndex(std::min(m_active_index, m_all_objects->size() - 1));
}

void SingleSelection::selectNothing()
{
    watchActive(false);
    m_active_index = -1;
    m_active_object = nullptr;
    Q_EMIT activeObjectChanged(nullptr);
    Q_EMIT activeIndexChanged(-1);
}

void SingleSelection::watchActive(bool on)
{
    if (m_active_object == nullptr)
        return;
    if (on)
        connect(m_active_object, &QObject::destroyed, this, &SingleSelection::onObjectDeleted,
                Qt::UniqueConnection);
    else
        disconnect(m_active_object, &QObject::destroyed, this, &SingleSelection::onObjectDeleted);
}

} // namespace lum::qobject_list_model
