#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

class QObjectListModelIndexByName;

/// A list model over plain QObject pointers, for native code and QML alike.
///
/// The model owns nothing unless asked (clearList(true), deleteItem). All changes
/// happen in the thread of the model object: that is asserted, not locked, and a
/// change asked for from another thread is refused. With tracking on, an object that
/// dies leaves the list on its own.
///
/// Order of notifications: an insertion runs the onObjectsInserted hook inside the
/// begin/end pair, then emits countChanged and objectAdded; a removal runs the
/// onObjectsAboutToBeRemoved hook before beginRemoveRows and emits
/// objectAboutToBeRemoved / objectRemoved around taking out each object, then one
/// countChanged. takeAt and the removal of a dead object emit objectAboutToBeRemoved
/// first and objectRemoved after the view has been told, before countChanged.
class QObjectListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ size NOTIFY countChanged)
    Q_PROPERTY(int length READ size NOTIFY countChanged)
    Q_PROPERTY(bool trackObjects READ tracking WRITE setTracking NOTIFY trackingChanged)

public:
    enum Roles
    {
        OBJECT_ROLE = Qt::UserRole + 1
    };

    explicit QObjectListModel(QObject* parent = nullptr);
    ~QObjectListModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    bool tracking() const { return m_tracking; }
    /// The list as it stands (a shared copy).
    QList<QObject*> list() const { return m_list; }

    /// Whether @p object may be in this list; the base takes any non-null object.
    virtual bool isObjectCompatible(QObject* object) const;

    Q_INVOKABLE void setTracking(bool v);
    Q_INVOKABLE QVariant dataByRole(int i, int role) const;
    Q_INVOKABLE void append(QObject* object);
    Q_INVOKABLE void append(QList<QObject*> objects);
    Q_INVOKABLE void move(int from, int to);
    Q_INVOKABLE virtual void clearList(bool deleteObjects);
    Q_INVOKABLE void clearList();
    Q_INVOKABLE void removeItem(QObject* obj);
    Q_INVOKABLE void removeItems(QList<QObject*> objects);
    Q_INVOKABLE bool contains(QObject* object) const;
    Q_INVOKABLE int indexOf(QObject* object, int from) const;
    Q_INVOKABLE int indexOf(QObject* object) const;
    Q_INVOKABLE int indexOfName(QString str) const;
    Q_INVOKABLE int size() const;
    Q_INVOKABLE QObject* get(int i) const;
    Q_INVOKABLE QObject* getByName(QString str) const;
    Q_INVOKABLE virtual void listAppend(QList<QObject*> objects);
    Q_INVOKABLE virtual void listAppend(QObject* obj);
    Q_INVOKABLE void listInsert(int at, QObject* obj);
    Q_INVOKABLE void listReplace(int i, QObject* object);
    Q_INVOKABLE void listRemove(int at, int count);
    Q_INVOKABLE void listRemove(int at);
    Q_INVOKABLE bool deleteItem(QObject* obj);
    Q_INVOKABLE void listSetFromObjectListModel(QObjectListModel* model);
    Q_INVOKABLE void listAppendFromObjectListModel(QObjectListModel* model);
    Q_INVOKABLE void listSetFromItemModel(QAbstractItemModel* model, int role = OBJECT_ROLE, int column = 0);
    Q_INVOKABLE bool runningInObjectThread() const;

    /// Lets @p index answer contains, indexOf (from the first row), indexOfName and the
    /// search of removeItem without a scan, while it is enabled on this model. Not owned;
    /// null goes back to scanning.
    void setNameIndex(QObjectListModelIndexByName* index);
    QObjectListModelIndexByName* nameIndex() const;

    /// Exchanges the whole list in one model reset.
    void setList(QList<QObject*> objects);
    /// Inserts at @p at (0..count) without touching QML ownership.
    void insert(int at, QObject* obj);
    /// Removes row @p i and returns its object; null when there is no such row.
    QObject* takeAt(int i);

Q_SIGNALS:
    void countChanged();
    void objectAdded(QObject* obj);
    void objectAboutToBeRemoved(QObject* obj);
    void objectRemoved(QObject* obj);
    /// For subclasses that keep their list sorted; nothing here emits it.
    void resortListRequest();
    void trackingChanged();

protected:
    /// Connects (true) or disconnects (false) the object's destroyed signal; null is ignored.
    virtual void trackObject(QObject* object, bool track);
    /// Called inside the insertion, after the objects are in the list.
    virtual void onObjectsInserted(int first, int last);
    /// Called before the removal starts, while the objects are still in the list.
    virtual void onObjectsAboutToBeRemoved(int first, int last);

    /// Puts @p obj at row @p i in place of the object there, as a data change.
    void replace(int i, QObject* obj);
    /// Begins and ends a model reset, for subclasses that reorder the list in place.
    void notifyReset();

protected Q_SLOTS:
    void onObjectDestroyed(QObject* obj);

private:
    bool checkThread() const;
    void insertOne(int at, QObject* obj);
    void appendMany(const QList<QObject*>& objects);
    void removeRange(int at, int count);
    QObject* takeRow(int i);
    static void keepForNative(QObject* obj);
    /// The name index when it watches this model, else null.
    const QObjectListModelIndexByName* activeNameIndex() const;

    QList<QObject*> m_list;
    bool m_tracking = false;
    /// The object whose removal after its death is under way; never dereferenced.
    QObject* m_dying = nullptr;
    /// Tracked objects and how many of their rows were tracked.
    QHash<QObject*, int> m_tracked_rows;
    QPointer<QObjectListModelIndexByName> m_name_index;
};
