import QtQuick 2.12
import QtLocation 5.6
import QtPositioning 5.6
import instruments.private 1.0
import Lumero.Themes 1.0
import Lumero.Widgets 1.0
import Overmap 1.0

// The map instrument: the street map below, the scene's own map item above it, kept on
// the same centre, heading and scale. The instrument's model keeps how this view looks at
// the scene; a second model of the same setup resolves the followed object.
AbstractInstrument {
    id: root
    objectName: "OvermapInstrument"
    isMaximizable: true
    showIcon: !root.instrumentModel || root.instrumentModel.source === null
              || root.instrumentModel.source === undefined

    readonly property string extensionId: "EB69CED9-93DA-4E49-A377-2161F674DC1D"
    readonly property var mapItem: mapLoader.item

    OvermapModel {
        id: overmapModel
        channelList: root.app ? root.app.channels : null
        imageStore: root.app ? root.app.getImageStore() : null
        extension: root.app ? root.app.getExtensionModule(root.extensionId) : null
        appState: root.app ? root.app.state : null
        displayTime: root.displayedTime
        onConfigurationUpdated: root.bindFollowedObject()
    }

    onInstrumentModelChanged: {
        if (root.instrumentModel && root.app) {
            var geo = root.instrumentModel.geoModel
            geo.channelList = root.app.channels
            geo.imageStore = root.app.getImageStore()
            geo.extension = root.app.getExtensionModule(root.extensionId)
            geo.appState = root.app.state
        }
        loadMap()
    }
    onDisplayedTimeChanged: {
        if (root.instrumentModel)
            root.instrumentModel.geoModel.displayTime = root.displayedTime
    }

    function loadMap() {
        if (!root.instrumentModel)
            return
        var beside = Qt.resolvedUrl("../../overmap/Map/OvermapMap.qml")
        var url = QmlFilesystem.fileExists(beside) ? beside : "qrc:///overmap/Map/OvermapMap.qml"
        if (mapLoader.source.toString() === url.toString())
            return
        mapLoader.settled = false
        mapLoader.source = url
    }

    function bindFollowedObject() {
        if (!mapLoader.item)
            return
        mapLoader.item.positionObjectToFollow = Qt.binding(function() {
            var model = root.instrumentModel
            return model && model.followObjectPosition
                    ? overmapModel.objectsManager.getObjectById(model.positionObjectToFollow) : null
        })
    }

    // The street map zooms in steps of its own: its zoom level is brought to the item's
    // exact scale, and what remains goes into a graphic scale.
    function updateScale() {
        var item = mapLoader.item
        var map = streetMapLoader.item
        if (!item || !map)
            return
        var heading = item.mapHeading
        item.mapHeading = 0
        var topLeft = item.toCoordinate(Qt.point(0, 0))
        var bottomRight = item.toCoordinate(Qt.point(item.width - 1, item.height - 1))
        var target = topLeft.distanceTo(bottomRight)
        map.visibleRegion = QtPositioning.rectangle(topLeft, bottomRight)
        var current = map.toCoordinate(Qt.point(0, 0)).distanceTo(
                    map.toCoordinate(Qt.point(item.width - 1, item.height - 1)))
        var count = 1
        while (Math.abs(current / target) - 1 > 1e-4 && count < 10) {
            var diff = 0.001 / count
            map.zoomLevel = map.zoomLevel * (current > target ? 1 + diff : 1 - diff)
            count += 1
            current = map.toCoordinate(Qt.point(0, 0)).distanceTo(
                        map.toCoordinate(Qt.point(item.width - 1, item.height - 1)))
        }
        item.mapHeading = heading
        map.scale = current / target
    }

    Item {
        id: interior
        anchors.fill: parent
        enabled: !root.instrumentArea.designMode

        Loader {
            id: streetMapLoader
            anchors.fill: parent
            active: root.instrumentModel !== null && root.instrumentModel.showMap
            onLoaded: root.updateScale()
            sourceComponent: Map {
                id: streetMap
                opacity: root.instrumentModel ? root.instrumentModel.mapOpacity : 1.0
                gesture.enabled: false
                color: "transparent"
                copyrightsVisible: false
                center: mapLoader.center
                bearing: mapLoader.rotation
                plugin: Plugin {
                    name: "osm"
                    PluginParameter {
                        name: "osm.mapping.providersrepository.address"
                        value: Qt.resolvedUrl("qrc:///qml/osm")
                    }
                    // No server listens there: it only makes the type that shows no map.
                    PluginParameter { name: "osm.mapping.custom.host"; value: "http://localhost/" }
                    PluginParameter {
                        name: "osm.mapping.offline.directory"
                        value: typeof mapTileFolder !== "undefined" ? mapTileFolder : ""
                    }
                }
                // Setting no type at all would crash the map: a type is set only when found.
                function chooseMapType() {
                    var showing = root.instrumentModel && root.instrumentModel.showMap
                    var wanted = showing ? MapType.StreetMap : MapType.CustomMap
                    for (var i = 0; i < supportedMapTypes.length; ++i) {
                        if (supportedMapTypes[i].style === wanted) {
                            activeMapType = supportedMapTypes[i]
                            return
                        }
                    }
                }
                onSupportedMapTypesChanged: chooseMapType()
                Component.onCompleted: chooseMapType()
                Connections {
                    target: root.instrumentModel
                    ignoreUnknownSignals: true
                    function onShowMapChanged() { streetMap.chooseMapType() }
                }
            }
        }

        Grid {
            id: offlineNotice
            anchors.centerIn: parent
            columns: 2
            columnSpacing: interior.width * 0.1
            rowSpacing: interior.height * 0.1
            visible: streetMapLoader.active && root.instrumentModel !== null
                     && !root.instrumentModel.geoModel.isOnline
            Repeater {
                model: 4
                Text {
                    width: interior.width * 0.35
                    height: interior.height * 0.35
                    rotation: -30
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    color: Theme.disabledInputColor
                    font.pointSize: 1000
                    fontSizeMode: Text.Fit
                    text: qsTr("No map in offline mode")
                }
            }
        }

        Loader {
            id: mapLoader
            anchors.fill: parent
            property var center: item ? item.center : QtPositioning.coordinate(0, 0)
            property real scaling: item ? item.scaling : 1
            property real rotation: item ? item.rotation : 1
            // False until the new item has taken the model's camera: the item's defaults must
            // not be written back into the model while it is being made.
            property bool settled: false

            Component.onCompleted: root.loadMap()

            onCenterChanged: {
                if (streetMapLoader.item)
                    streetMapLoader.item.center = center
                root.updateScale()
                var model = root.instrumentModel
                if (settled && model && item && !(center.latitude === model.center.latitude
                                       && center.longitude === model.center.longitude)) {
                    model.center = center
                    item.center = Qt.binding(function() { return root.instrumentModel.center })
                }
            }
            onScalingChanged: {
                root.updateScale()
                var model = root.instrumentModel
                if (settled && model && item && scaling !== model.zoomFactor) {
                    model.zoomFactor = scaling
                    item.scaling = Qt.binding(function() { return root.instrumentModel.zoomFactor })
                }
            }
            onRotationChanged: {
                if (streetMapLoader.item)
                    streetMapLoader.item.bearing = rotation
                var model = root.instrumentModel
                if (settled && model && item && rotation !== model.mapHeading) {
                    model.mapHeading = rotation
                    item.mapHeading = Qt.binding(function() { return root.instrumentModel.mapHeading })
                }
            }

            onLoaded: {
                var model = root.instrumentModel
                item.center = model.center
                item.scaling = model.zoomFactor
                item.mapHeading = model.mapHeading
                item.selectable = false
                item.objectsMovable = false
                item.backgroundColor = "transparent"
                item.showCoordinateSystem = false
                item.objectsModel = model.objectsFilterModel
                item.printMode = root.instrumentArea.printMode
                item.compassShift = root.instrumentArea.printMode ? 0 : 30
                item.referencePlane = Qt.binding(function() { return root.instrumentModel.geoModel.referencePlane })
                item.displayTime = Qt.binding(function() { return root.displayedTime })
                item.backgroundImageVisible = Qt.binding(function() { return root.instrumentModel.showBackgroundImage })
                item.backgroundImageOpacity = Qt.binding(function() { return root.instrumentModel.backgroundImageOpacity })
                item.scaling = Qt.binding(function() { return root.instrumentModel.zoomFactor })
                item.scaleBottomMargin = Qt.binding(function() {
                    return Theme.tinySpacing + (root.instrumentModel.showMap ? 25 : 0)
                })
                root.bindFollowedObject()
                settled = true
                if (streetMapLoader.item)
                    root.updateScale()
            }

            Connections {
                target: mapLoader.item
                ignoreUnknownSignals: true
                function onDoubleClicked() { actions.toggleInstrumentProperties() }
            }
        }
    }

    Connections {
        target: root.instrumentModel
        ignoreUnknownSignals: true
        function onCenterChanged(center) { if (mapLoader.item) mapLoader.item.center = center }
        function onZoomFactorChanged(zoom_factor) { if (mapLoader.item) mapLoader.item.scaling = zoom_factor }
        function onMapHeadingChanged(map_heading) { if (mapLoader.item) mapLoader.item.mapHeading = map_heading }
    }

    Connections {
        target: root.instrumentArea
        ignoreUnknownSignals: true
        function onPrintModeChanged() {
            if (!mapLoader.item)
                return
            mapLoader.item.printMode = root.instrumentArea.printMode
            mapLoader.item.compassShift = root.instrumentArea.printMode ? 0 : 30
        }
    }
}
