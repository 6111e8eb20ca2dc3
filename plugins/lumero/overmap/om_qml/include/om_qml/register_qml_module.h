#pragma once

namespace overmap_qml {

/// Registers the "Overmap" 1.0 QML module: the scene model, the enumerations of the scene
/// objects, the viewport and the scene item, and the resources under qrc:///overmap/ (the map
/// item "Map/OvermapMap.qml" and the object icons). Call it once before loading a view that
/// imports the module; further calls do nothing.
void registerQmlModule();

} // namespace overmap_qml
