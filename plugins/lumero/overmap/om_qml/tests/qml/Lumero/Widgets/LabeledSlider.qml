import QtQuick 2.12
import QtQuick.Controls 2.12 as C
// Stand-in of the host's slider with a label.
Column {
    property alias text: label.text
    property alias value: slider.value
    Text { id: label }
    C.Slider { id: slider }
}
