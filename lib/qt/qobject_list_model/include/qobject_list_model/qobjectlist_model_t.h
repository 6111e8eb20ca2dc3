#pragma once

#include <qobject_list_model/qobjectlist_model.h>

/// A QObjectListModel whose objects are all of class T (or derived): append asserts
/// it. The typed accessors save the casts at the users.
template <typename T>
class QObjectListModelT : public QObjectListModel
{
public:
    using QObjectListModel::QObjectListModel;

    bool isObjectCompatible(QObject* object) const override { return dynamic_cast<T*>(object) != nullptr; }

    /// The object at row @p i as a T; null out of range. Unlike get(), QML ownership is left alone.
    T* at(int i) const { return i >= 0 && i < size() ? dynamic_cast<T*>(list().at(i)) : nullptr; }

    /// The list as Ts, in order; objects of another class (which only setList lets in) are skipped.
    QList<T*> typedList() const
    {
        QList<T*> result;
        const QList<QObject*> objects = list();
        result.reserve(objects.size());
        for (QObject* object : objects) {
            if (T* typed = dynamic_cast<T*>(object))
                result.append(typed);
        }
        return result;
    }
};
