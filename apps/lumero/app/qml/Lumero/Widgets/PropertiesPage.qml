import QtQuick 2.15
import QtQuick.Controls 2.15 as C
import Lumero.Themes 1.0

// The frame of an instrument's properties page: a title and a scrolling column. Pages
// put their controls into it as children.
C.Page {
    id: root
    default property alias content: column.data
    // Fixed, as the page fills the room the host gives it: the content would otherwise size the page by itself.
    implicitWidth: 320
    implicitHeight: 480
    background: Rectangle { color: Theme.panelColor }
    header: C.Label {
        text: root.title
        padding: Theme.smallSpacing
        font.bold: true
        font.pointSize: Theme.headerFontPointSize
        color: Theme.textColor
    }
    C.ScrollView {
        anchors.fill: parent
        clip: true
        contentWidth: availableWidth
        Column {
            id: column
            width: parent.width
            spacing: Theme.tinySpacing
        }
    }
}
