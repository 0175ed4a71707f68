// Where a colour is picked: a white ring around that colour, with a dark edge so that it is seen on white.
import QtQuick

Rectangle {
    id: knob

    implicitWidth: 18
    implicitHeight: 18
    radius: 9
    // Over a focus ring, which the knob reaches across at the edges.
    z: 2
    border.width: 1
    border.color: Qt.rgba(0, 0, 0, 0.35)

    required color

    Rectangle {
        anchors.fill: parent
        anchors.margins: 1
        radius: width / 2
        color: "transparent"
        border.width: 2
        border.color: "white"
    }
}
