import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Lumero.Themes 1.0

// Slider over the recordings' span, play and pause, steps by one sample, the speed and
// the current time.
ToolBar {
    id: root
    property var timeBar

    background: Rectangle { color: Theme.panelColor }

    RowLayout {
        anchors.fill: parent
        spacing: Theme.tinySpacing

        ToolButton {
            objectName: "stepBackward"
            text: "|\u25C0"
            ToolTip.text: qsTr("One sample back")
            ToolTip.visible: hovered
            onClicked: root.timeBar.stepBackward()
        }
        ToolButton {
            objectName: "playPause"
            text: root.timeBar.playing ? "||" : "\u25B6"
            ToolTip.text: root.timeBar.playing ? qsTr("Pause") : qsTr("Play")
            ToolTip.visible: hovered
            onClicked: root.timeBar.togglePlaying()
        }
        ToolButton {
            objectName: "stepForward"
            text: "\u25B6|"
            ToolTip.text: qsTr("One sample on")
            ToolTip.visible: hovered
            onClicked: root.timeBar.stepForward()
        }
        Slider {
            objectName: "timeSlider"
            Layout.fillWidth: true
            from: root.timeBar.start
            to: root.timeBar.end
            value: root.timeBar.time
            onMoved: root.timeBar.time = value
        }
        Label {
            objectName: "timeText"
            text: root.timeBar.timeText
            color: Theme.textColor
            font.family: "monospace"
            Layout.minimumWidth: implicitWidth
        }
        ComboBox {
            objectName: "speed"
            model: root.timeBar.speedTexts
            currentIndex: root.timeBar.speedIndex
            onActivated: root.timeBar.speedIndex = index
            implicitWidth: 90
        }
    }
}
