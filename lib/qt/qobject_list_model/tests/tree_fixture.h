#pragma once

// A small tree of named objects for the tests of the tree model and its helpers.

#include <qobject_list_model/qobject_tree_model.h>

#include <channel_config/channel_id.h>
#include <uni_testing/model_tester.h>

#include <QObject>
#include <QString>

#include <map>
#include <memory>
#include <string>

namespace tree_test {

/// An object that tells its configuration changes, as a channel does.
class Configurable : public QObject
{
    Q_OBJECT
public:
    explicit Configurable(const char* name) { setObjectName(QString::fromUtf8(name)); }
    void change() { Q_EMIT configItemChanged(channel_config::ChannelID(1, 2), QStringLiteral("Unit")); }

Q_SIGNALS:
    void configItemChanged(channel_config::ChannelID channel_id, QString key);
};

/// Objects by name, and a tree over them:
///   a (a1, a2 (a21)), b
class Tree
{
public:
    Tree()
    {
        for (const char* name : {"a", "a1", "a2", "a21", "b"})
            objects[name] = std::make_unique<Configurable>(name);
    }

    QObjectTreeItem* item(const char* name) { return new QObjectTreeItem(objects.at(name).get()); }

    /// A root holding the tree above.
    QObjectTreeItem* build()
    {
        auto* root = new QObjectTreeItem;
        QObjectTreeItem* a = item("a");
        QObjectTreeItem* a2 = item("a2");
        a2->appendChild(item("a21"));
        a->appendChild(item("a1"));
        a->appendChild(a2);
        root->appendChild(a);
        root->appendChild(item("b"));
        return root;
    }

    std::map<std::string, std::unique_ptr<Configurable>> objects;
};

/// The names of the objects in a list of object variants, joined by blanks; "null" for a null one.
inline std::string names(const QVariantList& objects)
{
    std::string text;
    for (const QVariant& v : objects) {
        auto* object = v.value<QObject*>();
        text +=
            (text.empty() ? "" : " ") + (object ? object->objectName().toStdString() : std::string("null"));
    }
    return text;
}

} // namespace tree_test
