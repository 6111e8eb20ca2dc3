import QtQuick 2.15

// The base of every instrument view: the host sets the model, the application, the area
// the instrument stands in and the time it displays.
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
