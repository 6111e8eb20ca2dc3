import QtQuick 2.15
import QtQuick.Controls 2.15 as C
import Lumero.Themes 1.0

C.ComboBox {
    font.pointSize: Theme.fontPointSize
}
