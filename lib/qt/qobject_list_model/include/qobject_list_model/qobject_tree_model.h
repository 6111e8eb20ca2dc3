#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QModelIndex>
#include <QObject>
#include <QTimer>
#include <QVariant>

#include <memory>
#include <set>

/// One node of a QObjectTreeModel: wraps one object (which it does not own) and owns
/// its child items. When the wrapped object dies the item stays, wrapping null, until
/// the owner of the tree rebuilds it.
class QObjectTreeItem : public QObject
{
    Q_OBJECT

public:
    /// Wraps @p object (may be null, as for a root).
    explicit QObjectTreeItem(QObject* object = nullptr);
    /// Wraps the object of @p object and keeps it alive as long as this item lives;
    /// the declarative engine is told to leave both to native code.
    explicit QObjectTreeItem(std::shared_ptr<QObject> object);
    /// A deep copy of @p template_item: the same object and keeper, copies of all children.
    explicit QObjectTreeItem(const QObjectTreeItem& template_item);
    QObjectTreeItem& operator=(const QObjectTreeItem&) = delete;
    ~QObjectTreeItem() override;

    /// Takes @p child at the end; a null child is refused (asserted).
    void appendChild(QObjectTreeItem* child);
    /// Takes @p child before row @p row (0..count); false, and nothing taken, otherwise.
    bool insertChild(int row, QObjectTreeItem* child);
    /// Null out of range.
    QObjectTreeItem* child(int row) const;
    int childCount() const;
    /// The index among the parent's children; 0 for a root, -1 if the parent lost it.
    int row() const;
    QObjectTreeItem* parentItem() const { return m_parent; }
    QObject* object() const { return m_object; }
    /// Whether the wrapped object's configItemChanged reaches dataChanged.
    bool changeSignalConnected() const { return m_change_signal_connected; }

Q_SIGNALS:
    void dataChanged(QObject* object);

private Q_SLOTS:
    void handleDestroyedObject();
    void sendDataChanged();

private:
    void wrap(QObject* object);

    QList<QObject*> m_children;
    QObjectTreeItem* m_parent = nullptr;
    QObject* m_object = nullptr;
    std::shared_ptr<QObject> m_keeper;
    bool m_change_signal_connected = false;
};

/// A tree of QObjects for the declarative views. Change notifications of the wrapped
/// objects are collected for 50 ms and then sent as one dataChanged per changed row and
/// per ancestor, so that a burst of configuration changes does not flood the views.
///
/// The tree is exchanged as a whole with setRoot; items added to a tree already shown
/// are not announced to the views.
class QObjectTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Roles
    {
        ObjectRole = Qt::UserRole + 1,
        AncestorsRole,
        TreeItemRole,
        DescendentsRole
    };

    /// How long changes are collected before the views hear of them.
    static constexpr int COLLECTION_INTERVAL_MS = 50;

    explicit QObjectTreeModel(QObject* parent = nullptr);
    ~QObjectTreeModel() override;

    /// Takes @p root (null gives an empty tree) and deletes the old one, after the
    /// changes still collected have gone out.
    void setRoot(QObjectTreeItem* root);
    QObjectTreeItem* root() const { return m_root; }
    /// Sends the collected changes now.
    void flush() { sendDataChangedForCollectedObjects(); }

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private Q_SLOTS:
    void sendDataChangedForObject(QObject* object);
    void sendDataChangedForIndex(QModelIndex index);
    void sendDataChangedForCollectedObjects();

private:
    /// The item an index stands for; the root for an invalid index or a null pointer.
    QObjectTreeItem* itemOf(const QModelIndex& index) const;
    QModelIndex indexOf(QObjectTreeItem* item) const;
    void connectTree(QObjectTreeItem* item);

    QObjectTreeItem* m_root;
    QTimer m_timer;
    std::set<QModelIndex> m_pending;
};

/// Check states remembered by object, for views that tick objects of a tree.
class QObjectTreeModelSelectionCache : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Qt::Unchecked for an object never set.
    Q_INVOKABLE Qt::CheckState getSelectionState(QObject* object) const;
    Q_INVOKABLE void setSelectionState(QObject* object, Qt::CheckState state);
    Q_INVOKABLE void removeSelectionState(QObject* object);
    Q_INVOKABLE void clearAll();

private:
    QHash<QObject*, Qt::CheckState> m_states;
};
