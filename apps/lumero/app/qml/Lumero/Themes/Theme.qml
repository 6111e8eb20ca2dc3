pragma Singleton
import QtQuick 2.15

// The host's light theme: colours, spacings and sizes that instruments and the host's
// widgets share.
QtObject {
    readonly property color windowColor: "#f4f5f7"
    readonly property color panelColor: "#ffffff"
    readonly property color textColor: "#1f2328"
    readonly property color secondaryTextColor: "#59636e"
    readonly property color disabledInputColor: "#a0a7b0"
    readonly property color errorColor: "#c62828"
    readonly property color accentColor: "#1f6feb"
    readonly property color borderColor: "#d0d7de"
    readonly property color zebraColor: "#eef1f4"
    readonly property color headerColor: "#e6e9ee"

    readonly property int tinySpacing: 4
    readonly property int smallSpacing: 8
    readonly property int spacing: 12
    readonly property int buttonHeight: 30
    readonly property int fontPointSize: 10
    readonly property int headerFontPointSize: 11
}
