import QtQuick 2.15
import QtQuick.Controls 2.15 as C
import Lumero.Themes 1.0

C.Label {
    color: enabled ? Theme.textColor : Theme.disabledInputColor
    font.pointSize: Theme.fontPointSize
}
