import QtQuick 2.15
import QtQuick.Controls 2.15 as C
import QtQuick.Layouts 1.15
import Lumero.Themes 1.0

// A slider with its label above it; value and range are the slider's.
ColumnLayout {
    id: root
    property alias text: label.text
    property alias value: slider.value
    property alias from: slider.from
    property alias to: slider.to
    property alias stepSize: slider.stepSize
    readonly property alias pressed: slider.pressed
    signal moved()
    spacing: 0
    C.Label {
        id: label
        color: root.enabled ? Theme.textColor : Theme.disabledInputColor
        font.pointSize: Theme.fontPointSize
    }
    C.Slider {
        id: slider
        Layout.fillWidth: true
        onMoved: root.moved()
    }
}
