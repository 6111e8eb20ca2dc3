import QtQuick 2.12
// Stand-in of the host's group header.
Text {}
