pragma Singleton
import QtQuick 2.12

// Stand-in of the host's theme: the names the map view and its page use.
QtObject {
    readonly property color textColor: "#1f2328"
    readonly property color disabledInputColor: "#a0a7b0"
    readonly property color errorColor: "#c62828"
    readonly property color zebraColor: "#eef1f4"
    readonly property int tinySpacing: 4
    readonly property int buttonHeight: 30
}
