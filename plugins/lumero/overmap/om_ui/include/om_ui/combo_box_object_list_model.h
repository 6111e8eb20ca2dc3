#pragma once

#include <qobject_list_model/qobjectlist_model_t.h>

#include <QHash>
#include <QVariant>

#include <type_traits>

namespace overmap_ui {

/// An object list for combo boxes: both the "name" and the "modelData" role answer the
/// object's name property.
template <typename T>
class ComboBoxObjectListModel : public QObjectListModelT<std::remove_pointer_t<T>>
{
public:
    enum ComboRoles
    {
        NAME_ROLE = 258,
        MODEL_DATA_ROLE = 259
    };

    using QObjectListModelT<std::remove_pointer_t<T>>::QObjectListModelT;

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == NAME_ROLE || role == MODEL_DATA_ROLE) {
            QObject* object = this->at(index.row());
            return object != nullptr && index.isValid() ? object->property("name") : QVariant();
        }
        return QObjectListModelT<std::remove_pointer_t<T>>::data(index, role);
    }

    QHash<int, QByteArray> roleNames() const override
    {
        QHash<int, QByteArray> roles = QObjectListModelT<std::remove_pointer_t<T>>::roleNames();
        roles.insert(NAME_ROLE, "name");
        roles.insert(MODEL_DATA_ROLE, "modelData");
        return roles;
    }
};

} // namespace overmap_ui
