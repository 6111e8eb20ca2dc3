#pragma once

#include <qobject_list_model/qobject_list_model_adapter.h>

#include <QHash>
#include <QString>

/// Keeps a QObjectListModel's rows filed by objectName, so that look-ups by name or
/// by object need no scan of the list.
///
/// A name maps to the row of the object last filed under it, and leaves the index with
/// any object that carried it, even when another one carries it too. Objects sharing a
/// name are found by a scan; a list that holds one object at two rows is answered by
/// scanning until the index is next dropped. Renamed objects are re-filed as they change;
/// rows, null ones included, are renumbered under insertions, removals and moves, and a
/// replaced row files the list again. On a reset the whole index is dropped at once.
/// The index is enabled on construction when it is given a model.
class QObjectListModelIndexByName : public QObjectListModelAdapter
{
    Q_OBJECT

public:
    explicit QObjectListModelIndexByName(QObjectListModel* model = nullptr, QObject* parent = nullptr);
    ~QObjectListModelIndexByName() override;

    bool contains(QObject* obj) const;
    /// The object's row; -1 when the object or its name is not filed.
    int indexOf(QObject* obj) const;
    /// The row of the object last filed under @p str; -1 when none is filed under it.
    int indexOfName(const QString& str) const;

public Q_SLOTS:
    void onNameChanged();
    void removeAllFromIndex();
    void onWatchRemovalsChanged();

protected:
    void insert(int index, QObject* obj, int size) override;
    void remove(int index, QObject* obj, int size) override;

private Q_SLOTS:
    void onEnabledChanged();
    void onRowsRemoved(const QModelIndex& parent, int first, int last);
    void onRowsMoved(const QModelIndex& parent, int start, int end, const QModelIndex& destination, int row);
    void onDataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right);

private:
    void shiftRows(int from, int by);

    QHash<QString, int> m_rows;
    QHash<QObject*, QString> m_names;
    /// The rows the index has heard of, null ones included.
    int m_known_rows = 0;
    /// False while a rename re-files an object: its row does not change then.
    bool m_structural = true;
    /// Set when an object is listed more than once; look-ups then scan the list.
    bool m_repeated = false;
};
