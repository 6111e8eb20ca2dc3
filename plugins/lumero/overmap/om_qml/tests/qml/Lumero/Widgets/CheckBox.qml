import QtQuick 2.12
import QtQuick.Controls 2.12 as C
// Stand-in of the host's check box.
C.CheckBox {}
