import QtQuick 2.15

// Stand-in for the properties page until the view and its host modules are built.
Item {
    property var instrumentModel: null
}
