#include <qobject_list_model/object_list_sort_filter_proxy_model.h>
#include <qobject_list_model/object_model_utils.h>
#include <qobject_list_model/qobject_tree_model.h>

#include <QJSEngine>
#include <QMetaType>
#include <QQmlEngine>

#include <functional>

namespace {

QVariantList objectsBelow(const QAbstractItemModel* model, const QModelIndex& index, bool recurse)
{
    QVariantList objects;
    if (model == nullptr)
        return objects;
    const int rows = model->rowCount(index);
    for (int row = 0; row < rows; ++row) {
        const QModelIndex child = model->index(row, 0, index);
        objects.append(QVariant::fromValue(ObjectModelUtils::objectOf(model, child)));
        if (recurse)
            objects.append(objectsBelow(model, child, true));
    }
    return objects;
}

bool containsBelow(const QAbstractItemModel* model, QObject* object, const QModelIndex& parent)
{
    const int rows = model->rowCount(parent);
    for (int row = 0; row < rows; ++row) {
        const QModelIndex child = model->index(row, 0, parent);
        if (ObjectModelUtils::objectOf(model, child) == object || containsBelow(model, object, child))
            return true;
    }
    return false;
}

/// Works out the state of @p index from its leaves and stores it for each row that has
/// children; answers the state of @p index. A row without leaves below counts as unchecked.
Qt::CheckState updateStates(QAbstractItemModel* model, const QModelIndex& index,
                            const std::function<Qt::CheckState(QObject*)>& leaf_state,
                            QObjectTreeModelSelectionCache* cache)
{
    QObject* object = ObjectModelUtils::objectOf(model, index);
    const int rows = model->rowCount(index);
    if (rows == 0)
        return leaf_state(object);
    int checked = 0;
    int unchecked = 0;
    for (int row = 0; row < rows; ++row) {
        const Qt::CheckState state = updateStates(model, model->index(row, 0, index), leaf_state, cache);
        checked += state == Qt::Checked ? 1 : 0;
        unchecked += state == Qt::Unchecked ? 1 : 0;
    }
    const Qt::CheckState state = checked == rows     ? Qt::Checked
                                 : unchecked == rows ? Qt::Unchecked
                                                     : Qt::PartiallyChecked;
    if (index.isValid() && object != nullptr)
        cache->setSelectionState(object, state);
    return state;
}

} // namespace

QObject* ObjectModelUtils::toObject(const QVariant& value)
{
    if (!value.isValid())
        return nullptr;
    const int type = value.userType();
    if (type == QMetaType::QObjectStar || (QMetaType::typeFlags(type) & QMetaType::PointerToQObject))
        return *static_cast<QObject* const*>(value.constData());
    if (!value.canConvert<QObject*>())
        return nullptr;
    return value.value<QObject*>();
}

QObject* ObjectModelUtils::objectOf(const QAbstractItemModel* model, const QModelIndex& index)
{
    if (model == nullptr || !index.isValid())
        return nullptr;
    return toObject(model->data(index, OBJECT_ROLE));
}

QVariantList ObjectModelUtils::descendantsOf(const QAbstractItemModel* model, const QModelIndex& index)
{
    return objectsBelow(model, index, true);
}

QVariantList ObjectModelUtils::getAncestorsFromModel(QAbstractItemModel* model, QModelIndex parent) const
{
    QVariantList ancestors;
    if (model == nullptr)
        return ancestors;
    for (QModelIndex index = parent; index.isValid(); index = model->parent(index))
        ancestors.prepend(QVariant::fromValue(objectOf(model, index)));
    return ancestors;
}

QObject* ObjectModelUtils::getObjectFromModel(QAbstractItemModel* model, int row, QModelIndex parent) const
{
    if (model == nullptr || row < 0 || row >= model->rowCount(parent))
        return nullptr;
    return objectOf(model, model->index(row, 0, parent));
}

int ObjectModelUtils::getIndexOfObject(QAbstractItemModel* model, QObject* object, QModelIndex parent) const
{
    if (model == nullptr || object == nullptr)
        return -1;
    const int rows = model->rowCount(parent);
    for (int row = 0; row < rows; ++row) {
        if (objectOf(model, model->index(row, 0, parent)) == object)
            return row;
    }
    return -1;
}

bool ObjectModelUtils::modelContainsObject(QAbstractItemModel* model, QObject* object,
                                           QModelIndex parent) const
{
    return model != nullptr && object != nullptr && containsBelow(model, object, parent);
}

QVariantList ObjectModelUtils::getChildrenFromModel(QAbstractItemModel* model, QModelIndex index) const
{
    return objectsBelow(model, index, true);
}

QModelIndex ObjectModelUtils::getRootIndex() const
{
    return QModelIndex();
}

QVariantList ObjectModelUtils::getDirectChildrenFromModel(QAbstractItemModel* model, QModelIndex index) const
{
    return objectsBelow(model, index, false);
}

void ObjectModelUtils::updateAncestorStates(QAbstractItemModel* model, QJSValue selectCriterion,
                                            QObjectTreeModelSelectionCache* cache) const
{
    if (model == nullptr || cache == nullptr)
        return;
    QJSEngine* engine = qjsEngine(cache);
    if (engine == nullptr)
        engine = qjsEngine(model);
    std::function<Qt::CheckState(QObject*)> leaf_state = [cache](QObject* object) {
        return cache->getSelectionState(object);
    };
    if (selectCriterion.isCallable() && engine != nullptr) {
        leaf_state = [&selectCriterion, engine](QObject* object) {
            // The engine must not take the object for its collector.
            if (object != nullptr)
                QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
            const QJSValue answer = selectCriterion.call({engine->newQObject(object)});
            return answer.toBool() ? Qt::Checked : Qt::Unchecked;
        };
    }
    updateStates(model, QModelIndex(), leaf_state, cache);
}

// --- ObjectListSortFilterProxyModel ---

ObjectListSortFilterProxyModel::ObjectListSortFilterProxyModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    // Told without asking the count: asking would build the proxy's mapping, and a filter
    // set up afterwards would then take rows out of it one range at a time.
    connect(this, &QAbstractItemModel::rowsInserted, this, &ObjectListSortFilterProxyModel::rowCountChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &ObjectListSortFilterProxyModel::rowCountChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &ObjectListSortFilterProxyModel::rowCountChanged);
}

QObject* ObjectListSortFilterProxyModel::at(int index) const
{
    if (sourceModel() == nullptr)
        return nullptr;
    const QModelIndex source = mapToSource(this->index(index, 0));
    return ObjectModelUtils::objectOf(sourceModel(), source);
}

void ObjectListSortFilterProxyModel::setShowChildren(bool show_children)
{
    if (m_show_children == show_children)
        return;
    m_show_children = show_children;
    invalidateFilter();
    Q_EMIT showChildrenChanged();
}

bool ObjectListSortFilterProxyModel::filterAcceptsRow(int, const QModelIndex& source_parent) const
{
    return m_show_children || !source_parent.isValid();
}
