import QtQuick 2.15
import Lumero.Widgets 1.0

// The base of an instrument's properties page: the host sets the instrument it edits.
PropertiesPage {
    property var instrument: null
}
