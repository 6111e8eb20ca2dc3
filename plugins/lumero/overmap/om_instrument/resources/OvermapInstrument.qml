import QtQuick 2.15

// Stand-in for the map view until the view and its host modules are built: it shows the
// scene's name and how many objects it holds, so a loaded instrument is visible.
Item {
    id: root
    property var instrumentModel: null

    Text {
        anchors.centerIn: parent
        text: root.instrumentModel && root.instrumentModel.geoModel
              ? "Overmap: " + root.instrumentModel.geoModel.objectsManager.allObjects.count + " objects"
              : "Overmap"
    }
}
