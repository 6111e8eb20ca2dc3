import QtQuick 2.12
import Overmap 1.0

// The map item: the viewport (center, scaling and rotation in pixels per metre and degrees)
// with the painted scene over it, panned with the mouse and zoomed with the wheel around
// the pointer. A followed object stays in the middle; with headingUp its heading points up.
// When selectable, a click takes the object under the pointer as selectedObject; when
// objectsMovable, a drag that starts on an object standing still moves it (and so the setup).
Viewport {
    id: root

    property real mapHeading: 0
    property bool headingUp: false
    property bool selectable: true
    property bool objectsMovable: true
    property color backgroundColor: "white"
    property bool showCoordinateSystem: true
    property var objectsModel: null
    property bool printMode: false
    property real compassShift: 0
    property bool backgroundImageVisible: true
    property real backgroundImageOpacity: 1.0
    property real scaleBottomMargin: 0
    property var positionObjectToFollow: null
    property var selectedObject: null
    property real displayTime: 0
    property var referencePlane: null
    readonly property alias scene: scene

    signal doubleClicked()

    function toCoordinate(point) {
        return root.projectScreenToGPS(point)
    }

    function follow() {
        var followed = root.positionObjectToFollow
        if (followed && followed.validPosition)
            root.center = followed.position
    }

    rotation: headingUp && positionObjectToFollow ? positionObjectToFollow.heading : mapHeading
    clip: true

    onPositionObjectToFollowChanged: follow()

    Connections {
        target: root.positionObjectToFollow
        ignoreUnknownSignals: true
        function onPositionChanged() { root.follow() }
    }

    OvermapScene {
        id: scene
        anchors.fill: parent
        viewport: root
        objectsModel: root.objectsModel
        displayTime: root.displayTime
        referencePlane: root.referencePlane
        backgroundColor: root.backgroundColor
        showCoordinateSystem: root.showCoordinateSystem
        printMode: root.printMode
        compassShift: root.compassShift
        scaleBottomMargin: root.scaleBottomMargin
        backgroundImageVisible: root.backgroundImageVisible
        backgroundImageOpacity: root.backgroundImageOpacity
        selectedObject: root.selectable ? root.selectedObject : null
    }

    onSelectableChanged: if (!selectable) selectedObject = null

    MouseArea {
        id: mouse
        anchors.fill: parent
        enabled: !root.printMode
        property point last
        property var moving: null
        property point grabOffset

        onPressed: {
            last = Qt.point(mouse.x, mouse.y)
            moving = null
            if (root.objectsMovable) {
                var taken = scene.positionObjectAt(last)
                if (taken && scene.isMovable(taken)) {
                    moving = taken
                    var at = root.projectGPSToScreen(taken.position)
                    grabOffset = Qt.point(at.x - mouse.x, at.y - mouse.y)
                }
            }
        }
        onReleased: moving = null
        onClicked: if (root.selectable) root.selectedObject = scene.positionObjectAt(Qt.point(mouse.x, mouse.y))
        onPositionChanged: {
            if (moving) {
                moving.position = root.toCoordinate(Qt.point(mouse.x + grabOffset.x, mouse.y + grabOffset.y))
                return
            }
            // The point under the pointer stays under it: the centre moves against the drag.
            var middle = Qt.point(root.width / 2 - (mouse.x - last.x), root.height / 2 - (mouse.y - last.y))
            root.center = root.toCoordinate(middle)
            last = Qt.point(mouse.x, mouse.y)
        }
        onDoubleClicked: root.doubleClicked()
        onWheel: {
            var pointer = Qt.point(wheel.x, wheel.y)
            var under = root.toCoordinate(pointer)
            root.scaling = root.scaling * Math.pow(1.0015, wheel.angleDelta.y)
            var moved = root.projectGPSToScreen(under)
            root.center = root.toCoordinate(Qt.point(root.width / 2 + moved.x - pointer.x,
                                                     root.height / 2 + moved.y - pointer.y))
        }
    }
}
