import QtQuick 2.12
import Overmap 1.0

// The map item: the viewport (center, scaling and rotation in pixels per metre and degrees)
// with the painted scene over it, panned with the mouse and zoomed with the wheel around
// the pointer. A followed object stays in the middle; with headingUp its heading points up.
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
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        enabled: !root.printMode
        property point last

        onPressed: last = Qt.point(mouse.x, mouse.y)
        onPositionChanged: {
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
