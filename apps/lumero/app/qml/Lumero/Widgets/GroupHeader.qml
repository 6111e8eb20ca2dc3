import QtQuick 2.15
import QtQuick.Controls 2.15 as C
import Lumero.Themes 1.0

// A titled bar that opens a group of controls on a properties page.
Rectangle {
    id: root
    property alias text: label.text
    implicitWidth: label.implicitWidth + 2 * Theme.smallSpacing
    implicitHeight: label.implicitHeight + 2 * Theme.tinySpacing
    color: Theme.headerColor
    C.Label {
        id: label
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.smallSpacing
        font.bold: true
        font.pointSize: Theme.headerFontPointSize
        color: Theme.textColor
    }
}
