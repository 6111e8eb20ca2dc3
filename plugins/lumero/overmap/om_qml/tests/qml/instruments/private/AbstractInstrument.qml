import QtQuick 2.12

// Stand-in of the host's instrument base, with what the map view reads of it.
Item {
    property var instrumentModel: null
    property real displayedTime: 0
    property QtObject instrumentArea: QtObject {
        property bool designMode: false
        property bool printMode: false
    }
    property var app: null
    property bool isMaximizable: false
    property bool showIcon: false
}
