#pragma once

#include <QList>

namespace overmap_ui {

class QGeoObject;
class QChannelFetcher;

/// What a display object needs of the manager that is its parent: the other objects of
/// the scene (name checks, reference look-ups) and the channel fetcher. The object
/// manager implements it; a display object without such a parent works on its own.
class IfObjectManager
{
public:
    virtual ~IfObjectManager() = default;
    /// Every display object of the scene, in order of adding.
    virtual QList<QGeoObject*> allGeoObjects() const = 0;
    /// The fetcher given to new objects; may be null.
    virtual QChannelFetcher* channelFetcher() const = 0;
};

} // namespace overmap_ui
