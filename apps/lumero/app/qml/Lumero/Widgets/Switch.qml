import QtQuick 2.15
import QtQuick.Controls 2.15 as C

C.Switch {
}
