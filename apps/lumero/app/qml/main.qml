import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Lumero.Themes 1.0

// The host's window: the instrument's view with its properties page beside it, the time
// bar below, the File menu above.
ApplicationWindow {
    id: window
    objectName: "lumeroWindow"
    visible: true
    width: host.windowSize.width
    height: host.windowSize.height
    title: (host.setupFile !== "" ? host.setupFile + " - " : "") + "Lumero"
    color: Theme.windowColor

    // The area an instrument stands in: this host neither designs layouts nor prints.
    QtObject {
        id: instrumentArea
        objectName: "instrumentArea"
        property bool designMode: false
        property bool printMode: false
    }

    menuBar: MenuBar {
        Menu {
            title: qsTr("&File")
            Action {
                text: qsTr("Open &recordings...")
                onTriggered: host.chooseRecordings()
            }
            Action {
                text: qsTr("&Open setup...")
                shortcut: StandardKey.Open
                onTriggered: host.chooseSetup()
            }
            Action {
                text: qsTr("&Save setup")
                shortcut: StandardKey.Save
                enabled: host.setupFile !== ""
                onTriggered: host.saveSetup()
            }
            Action {
                text: qsTr("Save setup &as...")
                onTriggered: host.chooseSaveSetupAs()
            }
            MenuSeparator {}
            Action {
                text: qsTr("Map &tile folder...")
                onTriggered: host.chooseTileFolder()
            }
            MenuSeparator {}
            Action {
                text: qsTr("&Quit")
                shortcut: StandardKey.Quit
                onTriggered: Qt.quit()
            }
        }
        Menu {
            title: qsTr("&View")
            Action {
                text: qsTr("&Properties")
                checkable: true
                checked: actions.propertiesVisible
                onTriggered: actions.toggleInstrumentProperties()
            }
        }
    }

    // Hands the host's objects to a view; views that lack a property simply don't get it.
    function attachView(item) {
        if ("app" in item)
            item.app = app
        if ("instrumentArea" in item)
            item.instrumentArea = instrumentArea
        if ("displayedTime" in item)
            item.displayedTime = Qt.binding(function() { return host.timeBar.time })
        item.instrumentModel = host.instrument
    }

    function viewWanted() {
        return host.instrument !== null && host.viewUrl.toString() !== ""
    }

    function attachPage(item) {
        if ("instrument" in item)
            item.instrument = host.instrument
        if ("instrumentModel" in item)
            item.instrumentModel = host.instrument
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true

                Loader {
                    id: viewLoader
                    objectName: "instrumentViewLoader"
                    anchors.fill: parent
                    active: window.viewWanted()
                    source: host.viewUrl
                    onLoaded: window.attachView(item)
                }

                // The street map reads its tile folder when it is made: a new folder
                // makes the view anew.
                Connections {
                    target: host
                    function onViewGenerationChanged() {
                        viewLoader.active = false
                        viewLoader.active = Qt.binding(window.viewWanted)
                    }
                }

                Label {
                    anchors.centerIn: parent
                    visible: viewLoader.item === null
                    text: host.statusText
                    color: Theme.secondaryTextColor
                }
            }

            Rectangle {
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                visible: propertiesLoader.visible
                color: Theme.borderColor
            }

            Loader {
                id: propertiesLoader
                objectName: "instrumentPropertiesLoader"
                Layout.fillHeight: true
                Layout.preferredWidth: 320
                visible: actions.propertiesVisible && item !== null
                active: viewLoader.active && host.propertiesUrl.toString() !== ""
                source: host.propertiesUrl
                onLoaded: window.attachPage(item)
            }
        }

        ProgressBar {
            objectName: "loadingProgress"
            Layout.fillWidth: true
            visible: host.loading
            indeterminate: true
        }

        Label {
            objectName: "errorLabel"
            Layout.fillWidth: true
            visible: host.errorText !== ""
            text: host.errorText
            color: Theme.errorColor
            padding: Theme.tinySpacing
            elide: Text.ElideRight
        }

        TimeBar {
            Layout.fillWidth: true
            timeBar: host.timeBar
            enabled: !host.loading
        }
    }
}
