#pragma once

#include <om_ui/combo_box_object_list_model.h>
#include <om_ui/qcalculation.h>
#include <om_ui/qgeo_object.h>
#include <om_ui/qposition_object.h>
#include <om_ui/qtrack.h>

#include <QObject>

namespace overmap_ui {

// The four lists of the object manager. Each takes only objects of its own class, so
// that a view can rely on the properties it binds to.

/// Cars, cones and locators.
class QPositionObjectList : public ComboBoxObjectListModel<QPositionObject*>
{
    Q_OBJECT

public:
    using ComboBoxObjectListModel<QPositionObject*>::ComboBoxObjectListModel;
    bool isObjectCompatible(QObject* object) const override;
};

/// Track paths and track lines.
class QTrackList : public ComboBoxObjectListModel<QTrack*>
{
    Q_OBJECT

public:
    using ComboBoxObjectListModel<QTrack*>::ComboBoxObjectListModel;
    bool isObjectCompatible(QObject* object) const override;
};

/// Every object of the scene, in order of adding.
class QGeoObjectList : public ComboBoxObjectListModel<QGeoObject*>
{
    Q_OBJECT

public:
    using ComboBoxObjectListModel<QGeoObject*>::ComboBoxObjectListModel;
    bool isObjectCompatible(QObject* object) const override;
};

class QCalculationList : public ComboBoxObjectListModel<QCalculation*>
{
    Q_OBJECT

public:
    using ComboBoxObjectListModel<QCalculation*>::ComboBoxObjectListModel;
    bool isObjectCompatible(QObject* object) const override;
};

} // namespace overmap_ui
