#pragma once

#include <qobject_list_model/qobjectlist_model_t.h>

#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QObject>

#include <map>
#include <string>
#include <vector>

namespace list_model_test {

/// An element of the lists under test.
class Item : public QObject
{
    Q_OBJECT
public:
    explicit Item(const QString& name, QObject* parent = nullptr) : QObject(parent) { setObjectName(name); }
};

/// Another class, to be refused by a list of Items.
class Stranger : public QObject
{
    Q_OBJECT
};

/// The pointer a signal argument carries, without touching the object (it may be gone).
inline QObject* pointerIn(const QVariant& v)
{
    return *static_cast<QObject* const*>(v.constData());
}

inline std::string nameOf(QObject* object)
{
    return object != nullptr ? object->objectName().toStdString() : std::string("null");
}

/// A list of Items that writes into one log every model signal, every list signal,
/// every hook call and every track call, in the order they happen.
class RecordingModel : public QObjectListModelT<Item>
{
    Q_OBJECT
public:
    explicit RecordingModel(QObject* parent = nullptr) : QObjectListModelT<Item>(parent)
    {
        uni_testing::attachModelTester(this);
        auto rows = [this](const char* what) {
            return [this, what](const QModelIndex&, int first, int last) {
                log(std::string(what) + " " + std::to_string(first) + " " + std::to_string(last));
            };
        };
        connect(this, &QAbstractItemModel::rowsAboutToBeInserted, this, rows("beginInsert"));
        connect(this, &QAbstractItemModel::rowsInserted, this, rows("endInsert"));
        connect(this, &QAbstractItemModel::rowsAboutToBeRemoved, this, rows("beginRemove"));
        connect(this, &QAbstractItemModel::rowsRemoved, this, rows("endRemove"));
        connect(this, &QAbstractItemModel::rowsMoved, this,
                [this](const QModelIndex&, int first, int, const QModelIndex&, int row) {
                    log("moved " + std::to_string(first) + " " + std::to_string(row));
                });
        connect(this, &QAbstractItemModel::modelAboutToBeReset, this, [this] { log("beginReset"); });
        connect(this, &QAbstractItemModel::modelReset, this, [this] { log("endReset"); });
        connect(this, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex& a, const QModelIndex& b, const QVector<int>& roles) {
                    log("dataChanged " + std::to_string(a.row()) + " " + std::to_string(b.row()) +
                        (roles.isEmpty() ? "" : " roles"));
                });
        connect(this, &QObjectListModel::countChanged, this,
                [this] { log("count " + std::to_string(size())); });
        // Names are kept from the time an object came in: a removal signal may carry a
        // pointer to an object that is already gone.
        connect(this, &QObjectListModel::objectAdded, this, [this](QObject* o) {
            m_names[o] = nameOf(o);
            log("added " + m_names[o]);
        });
        connect(this, &QObjectListModel::objectAboutToBeRemoved, this,
                [this](QObject* o) { log("aboutToRemove " + knownName(o)); });
        connect(this, &QObjectListModel::objectRemoved, this,
                [this](QObject* o) { log("removed " + knownName(o)); });
        connect(this, &QObjectListModel::resortListRequest, this, [this] { log("resort"); });
        connect(this, &QObjectListModel::trackingChanged, this, [this] { log("tracking"); });
    }

    using QObjectListModelT<Item>::notifyReset;

    std::vector<std::string> takeLog()
    {
        std::vector<std::string> result;
        result.swap(m_log);
        return result;
    }

protected:
    void onObjectsInserted(int first, int last) override
    {
        log("hookInserted " + std::to_string(first) + " " + std::to_string(last) + " size " +
            std::to_string(size()));
    }
    void onObjectsAboutToBeRemoved(int first, int last) override
    {
        log("hookAboutToRemove " + std::to_string(first) + " " + std::to_string(last) + " size " +
            std::to_string(size()));
    }
    void trackObject(QObject* object, bool track) override
    {
        log(track ? "track " + nameOf(object) : "untrack " + knownName(object));
        QObjectListModelT<Item>::trackObject(object, track);
    }

private:
    std::string knownName(QObject* o) const
    {
        const auto it = m_names.find(o);
        return it != m_names.end() ? it->second : std::string("?");
    }
    void log(std::string entry) { m_log.push_back(std::move(entry)); }
    std::vector<std::string> m_log;
    std::map<QObject*, std::string> m_names;
};

/// Five items and a recording list of them.
class ListModelFixture : public ::testing::Test
{
protected:
    ListModelFixture() : a("a"), b("b"), c("c"), d("d"), e("e") {}

    /// a, b, c in the list, with an empty log.
    void fill()
    {
        model.append(QList<QObject*>{&a, &b, &c});
        model.takeLog();
    }

    Item a, b, c, d, e;
    RecordingModel model;
};

} // namespace list_model_test
