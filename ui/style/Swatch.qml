// A colour as it is, with an edge that is seen on any card.
import QtQuick
import Korvane.Controls

Rectangle {
    implicitWidth: 46
    implicitHeight: 22
    radius: 7

    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        color: "transparent"
        border.width: 1
        border.color: Theme.white(0.28)
    }
}
