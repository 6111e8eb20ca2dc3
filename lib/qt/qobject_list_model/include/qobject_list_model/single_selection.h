#pragma once

#include <qobject_list_model/qobjectlist_model.h>

#include <QModelIndex>
#include <QObject>
#include <QPointer>

namespace lum::qobject_list_model {

/// Keeps one active object of a list through insertions, moves and deletions.
///
/// When the active object moves, the index follows it; when it leaves the list, the
/// selection stays at its row or falls to the last row; an emptied list selects
/// nothing (-1 and null). Object changes are announced before index changes.
class SingleSelection : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObjectListModel* allObjects READ allObjects WRITE setAllObjects NOTIFY allObjectsChanged)
    Q_PROPERTY(int activeIndex READ activeIndex WRITE setActiveIndex NOTIFY activeIndexChanged)
    Q_PROPERTY(QObject* activeObject READ activeObject NOTIFY activeObjectChanged)

public:
    explicit SingleSelection(QObject* parent = nullptr);
    ~SingleSelection() override;

    QObjectListModel* allObjects() const { return m_all_objects; }
    /// A new model does not re-derive the active object: its next count change does.
    void setAllObjects(QObjectListModel* model);

    int activeIndex() const { return m_active_index; }
    /// An index out of range selects nothing.
    void setActiveIndex(int i);

    QObject* activeObject() const { return m_active_object; }

Q_SIGNALS:
    void allObjectsChanged(QObjectListModel* model);
    void activeIndexChanged(int index);
    void activeObjectChanged(QObject* object);

public Q_SLOTS:
    void onObjectDeleted(QObject* obj);
    void onCountChanged();
    void onRowsMoved(QModelIndex parent, int start, int end, QModelIndex destination, int row);

private:
    void resync();
    void selectNothing();
    void watchActive(bool on);

    QPointer<QObjectListModel> m_all_objects;
    int m_active_index = -1;
    /// Compared by address only: it may be an object that is being destroyed.
    QObject* m_active_object = nullptr;
};

} // namespace lum::qobject_list_model
