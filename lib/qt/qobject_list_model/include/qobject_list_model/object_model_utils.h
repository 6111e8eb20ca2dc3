#pragma once

#include <QAbstractItemModel>
#include <QJSValue>
#include <QModelIndex>
#include <QObject>
#include <QVariant>
#include <QVariantList>

class QObjectTreeModelSelectionCache;

/// Helpers for the declarative views over any item model whose role 257 holds a QObject*.
/// A null model gives empty answers.
class ObjectModelUtils : public QObject
{
    Q_OBJECT

public:
    /// The role that holds the object of a row.
    static constexpr int OBJECT_ROLE = Qt::UserRole + 1;

    using QObject::QObject;

    /// The objects of @p parent and of each index above it, the topmost first.
    Q_INVOKABLE QVariantList getAncestorsFromModel(QAbstractItemModel* model, QModelIndex parent) const;
    /// The object at @p row below @p parent; null out of range.
    Q_INVOKABLE QObject* getObjectFromModel(QAbstractItemModel* model, int row,
                                            QModelIndex parent = QModelIndex()) const;
    /// The row of @p object among the direct children of @p parent; -1 when not there.
    Q_INVOKABLE int getIndexOfObject(QAbstractItemModel* model, QObject* object,
                                     QModelIndex parent = QModelIndex()) const;
    /// Whether @p object stands anywhere below @p parent.
    Q_INVOKABLE bool modelContainsObject(QAbstractItemModel* model, QObject* object,
                                         QModelIndex parent = QModelIndex()) const;
    /// The objects of every index below @p index, depth first, each before its children.
    Q_INVOKABLE QVariantList getChildrenFromModel(QAbstractItemModel* model, QModelIndex index) const;
    Q_INVOKABLE QModelIndex getRootIndex() const;
    /// The objects of the direct children of @p index.
    Q_INVOKABLE QVariantList getDirectChildrenFromModel(QAbstractItemModel* model, QModelIndex index) const;
    /// Gives every row with children the check state of the rows below it in @p cache:
    /// checked when all its leaves are, unchecked when none is, else partially checked.
    /// A leaf is checked when @p selectCriterion, a function given the leaf's object,
    /// answers true; when it is not a function, or no engine can hand it the object, the
    /// leaf's state is the one in the cache.
    Q_INVOKABLE void updateAncestorStates(QAbstractItemModel* model, QJSValue selectCriterion,
                                          QObjectTreeModelSelectionCache* cache) const;

    /// The object of @p index (role 257) as a QObject*; null when it holds none.
    static QObject* objectOf(const QAbstractItemModel* model, const QModelIndex& index);
    /// As getChildrenFromModel, for native callers.
    static QVariantList descendantsOf(const QAbstractItemModel* model, const QModelIndex& index);
    /// A variant as a QObject*: read directly when its type is a QObject pointer, else
    /// converted; null when that fails.
    static QObject* toObject(const QVariant& value);
};
