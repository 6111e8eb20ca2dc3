#include <om_qml/register_qml_module.h>

#include <om_qml/qscene_item.h>

#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qcalculation.h>
#include <om_ui/qgeo_object.h>
#include <om_ui/qposition_object.h>
#include <om_ui/qtrack.h>
#include <om_ui/viewport.h>

#include <QtQml>

// Outside any namespace, as the resource's initialiser is declared there.
static void initOmQmlResources()
{
    Q_INIT_RESOURCE(om_qml);
}

namespace overmap_qml {

void registerQmlModule()
{
    static bool registered = false;
    if (registered)
        return;
    registered = true;
    initOmQmlResources();
    const char* uri = "Overmap";
    const QString made_by_the_scene = QStringLiteral("made by the scene model");
    qmlRegisterType<overmap_ui::OvermapModel>(uri, 1, 0, "OvermapModel");
    qmlRegisterType<overmap_ui::Viewport>(uri, 1, 0, "Viewport");
    qmlRegisterType<QSceneItem>(uri, 1, 0, "OvermapScene");
    // For their enumerations: the objects themselves come from the scene.
    qmlRegisterUncreatableType<overmap_ui::QGeoObject>(uri, 1, 0, "QGeoObject", made_by_the_scene);
    qmlRegisterUncreatableType<overmap_ui::QPositionObject>(uri, 1, 0, "QPositionObject", made_by_the_scene);
    qmlRegisterUncreatableType<overmap_ui::QTrack>(uri, 1, 0, "QTrack", made_by_the_scene);
    qmlRegisterUncreatableType<overmap_ui::QCalculation>(uri, 1, 0, "QCalculation", made_by_the_scene);
    qmlRegisterUncreatableType<overmap_ui::PositionObjectsFilteredModel>(
        uri, 1, 0, "PositionObjectsFilteredModel", made_by_the_scene);
}

} // namespace overmap_qml
