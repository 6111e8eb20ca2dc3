#pragma once

#include <qobject_list_model/qobjectlist_model.h>

#include <QModelIndex>
#include <QObject>
#include <QPointer>

/// Watches a QObjectListModel from outside and turns its row signals into one call
/// per object: insert() for each object that comes in, remove() for each that goes.
///
/// Enabling loads every object present (insert with a growing size, as if the list
/// were being built); disabling unloads them from the last row down (remove with a
/// shrinking size). A reset is seen as the removal of all rows followed by the
/// insertion of all rows. Moves are not reported.
class QObjectListModelAdapter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObjectListModel* listModel READ listModel NOTIFY listModelChanged)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(
        bool watchInsertions READ watchInsertions WRITE setWatchInsertions NOTIFY watchInsertionsChanged)
    Q_PROPERTY(bool watchRemovals READ watchRemovals WRITE setWatchRemovals NOTIFY watchRemovalsChanged)

public:
    /// Starts disabled, watching insertions and removals.
    explicit QObjectListModelAdapter(QObjectListModel* model = nullptr, QObject* parent = nullptr);
    ~QObjectListModelAdapter() override;

    QObjectListModel* listModel() const { return m_model; }
    /// Exchanges the watched model; while enabled, the old model's objects are unloaded
    /// and the new model's loaded.
    void setListModel(QObjectListModel* model);

    bool enabled() const { return m_enabled; }
    void setEnabled(bool enabled);

    bool watchInsertions() const { return m_watch_insertions; }
    void setWatchInsertions(bool watch);

    bool watchRemovals() const { return m_watch_removals; }
    void setWatchRemovals(bool watch);

Q_SIGNALS:
    void listModelChanged();
    void enabledChanged();
    void watchInsertionsChanged();
    void watchRemovalsChanged();

public Q_SLOTS:
    /// insert(i, object i, i + 1) for every row, upward.
    void loadAll();
    /// remove(i, object i, i + 1) for every row, from the last down.
    void removeAll();
    /// insert(i, object i, size) for each row of the range, upward.
    void listInsert(const QModelIndex& parent, int start, int end);
    /// remove(i, object i, size) for each row of the range, upward, before the rows go.
    void listRemove(const QModelIndex& parent, int start, int end);

protected:
    /// @param size the list's size at this moment as the adapter sees it
    virtual void insert(int index, QObject* obj, int size);
    /// @param size the list's size at this moment as the adapter sees it
    virtual void remove(int index, QObject* obj, int size);

private:
    void connectInsertions(bool on);
    void connectRemovals(bool on);

    QPointer<QObjectListModel> m_model;
    bool m_enabled = false;
    bool m_watch_insertions = true;
    bool m_watch_removals = true;
};
