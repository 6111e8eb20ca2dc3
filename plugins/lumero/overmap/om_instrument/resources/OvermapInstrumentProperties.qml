import QtQuick 2.12
import QtQuick.Layouts 1.12
import instruments.private 1.0
import Lumero.Themes 1.0
import Lumero.Widgets 1.0
import Overmap 1.0

// The properties page of the map instrument: street map, background image, camera, and
// which objects this instrument shows.
AbstractInstrumentProperties {
    id: page
    title: qsTr("Overmap")

    readonly property var manager: page.instrument ? page.instrument.geoModel.objectsManager : null
    readonly property var positionObjects: page.manager ? page.manager.positionObjects : null

    function iconOf(type) {
        switch (type) {
        case QGeoObject.CAR: return "../../overmap/icons/car.svg"
        case QGeoObject.CONE: return "../../overmap/icons/cone.svg"
        case QGeoObject.LOCATOR: return "../../overmap/icons/locator.svg"
        case QGeoObject.TRACK_PATH: return "../../overmap/icons/road.svg"
        case QGeoObject.TRACK_LINE: return "../../overmap/icons/straight_road.svg"
        }
        return ""
    }

    GroupHeader { width: parent.width; text: qsTr("Street map") }
    CheckBox {
        text: qsTr("Show map")
        checked: page.instrument ? page.instrument.showMap : false
        onCheckedChanged: if (page.instrument) page.instrument.showMap = checked
    }
    LabeledSlider {
        width: parent.width
        text: qsTr("Map opacity")
        value: page.instrument ? page.instrument.mapOpacity : 1
        onValueChanged: if (page.instrument) page.instrument.mapOpacity = value
    }
    CheckBox {
        text: qsTr("Show background image")
        checked: page.instrument ? page.instrument.showBackgroundImage : false
        onCheckedChanged: if (page.instrument) page.instrument.showBackgroundImage = checked
    }
    LabeledSlider {
        width: parent.width
        text: qsTr("Image opacity")
        value: page.instrument ? page.instrument.backgroundImageOpacity : 1
        onValueChanged: if (page.instrument) page.instrument.backgroundImageOpacity = value
    }

    GroupHeader { width: parent.width; text: qsTr("Camera position") }
    CheckBox {
        text: qsTr("Follow an Object")
        enabled: page.positionObjects !== null && page.positionObjects.count > 0
        checked: page.instrument ? page.instrument.followObjectPosition : false
        onCheckedChanged: if (page.instrument) page.instrument.followObjectPosition = checked
    }
    ComboBox {
        id: followCombo
        width: parent.width
        model: page.positionObjects
        textRole: "name"
        enabled: page.instrument !== null && page.instrument.positionObjectToFollow >= 0
        function boundIndex() {
            if (!page.instrument || page.instrument.positionObjectToFollow < 0 || !page.manager)
                return -1
            return page.positionObjects.indexOf(page.manager.getObjectById(page.instrument.positionObjectToFollow))
        }
        currentIndex: boundIndex()
        onActivated: {
            var object = page.positionObjects.get(index)
            if (object)
                page.instrument.positionObjectToFollow = object.objectId
            currentIndex = Qt.binding(boundIndex)
        }
    }

    GroupHeader { width: parent.width; text: qsTr("Object filter") }
    ListView {
        id: filterList
        width: parent.width
        height: Theme.buttonHeight * 15
        clip: true
        model: page.positionObjects
        delegate: Rectangle {
            id: row
            readonly property var object: model.object !== undefined ? model.object : modelData
            width: filterList.width
            height: Theme.buttonHeight
            color: index % 2 === 0 ? Theme.zebraColor : "transparent"

            function shown() {
                return !page.instrument.isObjectFiltered(row.object.objectId)
            }

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: Theme.tinySpacing
                anchors.rightMargin: Theme.tinySpacing
                spacing: Theme.tinySpacing
                Switch {
                    id: shownSwitch
                    objectName: "filterSwitch_" + row.object.objectId
                    Layout.preferredHeight: Theme.buttonHeight * 0.8
                    Layout.preferredWidth: Layout.preferredHeight * 1.5
                    checked: row.shown()
                    onCheckedChanged: page.instrument.setObjectFiltered(row.object.objectId, !checked)
                    Connections {
                        target: page.instrument
                        function onObjectFilterChanged() {
                            // Written only on a difference, so that another view's change does not loop.
                            if (shownSwitch.checked !== row.shown())
                                shownSwitch.checked = row.shown()
                        }
                    }
                }
                Image {
                    Layout.preferredWidth: Theme.buttonHeight * 0.7
                    Layout.preferredHeight: Theme.buttonHeight * 0.7
                    sourceSize: Qt.size(width, height)
                    source: page.iconOf(row.object.type)
                }
                Label {
                    Layout.fillWidth: true
                    elide: Text.ElideMiddle
                    text: row.object.name
                    color: row.object.validPosition !== undefined && !row.object.validPosition
                           ? Theme.errorColor : Theme.textColor
                }
                Rectangle {
                    Layout.preferredWidth: Theme.buttonHeight * 0.5
                    Layout.preferredHeight: Theme.buttonHeight * 0.5
                    radius: 3
                    color: row.object.color
                }
            }
        }
    }
}
