#include <om_ui/object_lists.h>

namespace overmap_ui {

bool QPositionObjectList::isObjectCompatible(QObject* object) const
{
    return qobject_cast<QPositionObject*>(object) != nullptr;
}

bool QTrackList::isObjectCompatible(QObject* object) const
{
    return qobject_cast<QTrack*>(object) != nullptr;
}

bool QGeoObjectList::isObjectCompatible(QObject* object) const
{
    return qobject_cast<QGeoObject*>(object) != nullptr;
}

bool QCalculationList::isObjectCompatible(QObject* object) const
{
    return qobject_cast<QCalculation*>(object) != nullptr;
}

} // namespace overmap_ui
