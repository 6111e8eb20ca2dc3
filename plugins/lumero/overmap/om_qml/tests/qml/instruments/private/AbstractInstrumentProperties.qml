import QtQuick 2.12

// Stand-in of the host's properties page base.
Column {
    property var instrument: null
    property string title
}
