// The four edges and four corners that the pointer takes hold of to resize the window.
import QtQuick
import Korvane.App

Item {
    id: root

    required property WindowFrame frame
    readonly property real thickness: 5
    readonly property real corner: 12

    visible: frame.canResize

    component Edge: MouseArea {
        id: edge

        required property int edges
        required property WindowFrame frame

        acceptedButtons: Qt.LeftButton
        onPressed: event => edge.frame.pressEdge(edge.edges, edge.mapToGlobal(event.x, event.y))
        onPositionChanged: event => edge.frame.movePointer(edge.mapToGlobal(event.x, event.y))
        onReleased: edge.frame.release()
        onCanceled: edge.frame.release()
    }

    Edge {
        frame: root.frame
        edges: Qt.LeftEdge
        cursorShape: Qt.SizeHorCursor
        width: root.thickness
        height: parent.height
    }
    Edge {
        frame: root.frame
        edges: Qt.RightEdge
        cursorShape: Qt.SizeHorCursor
        anchors.right: parent.right
        width: root.thickness
        height: parent.height
    }
    Edge {
        frame: root.frame
        edges: Qt.TopEdge
        cursorShape: Qt.SizeVerCursor
        width: parent.width
        height: root.thickness
    }
    Edge {
        frame: root.frame
        edges: Qt.BottomEdge
        cursorShape: Qt.SizeVerCursor
        anchors.bottom: parent.bottom
        width: parent.width
        height: root.thickness
    }
    Edge {
        frame: root.frame
        edges: Qt.TopEdge | Qt.LeftEdge
        cursorShape: Qt.SizeFDiagCursor
        width: root.corner
        height: root.corner
    }
    Edge {
        frame: root.frame
        edges: Qt.TopEdge | Qt.RightEdge
        cursorShape: Qt.SizeBDiagCursor
        anchors.right: parent.right
        width: root.corner
        height: root.corner
    }
    Edge {
        frame: root.frame
        edges: Qt.BottomEdge | Qt.LeftEdge
        cursorShape: Qt.SizeBDiagCursor
        anchors.bottom: parent.bottom
        width: root.corner
        height: root.corner
    }
    Edge {
        frame: root.frame
        edges: Qt.BottomEdge | Qt.RightEdge
        cursorShape: Qt.SizeFDiagCursor
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        width: root.corner
        height: root.corner
    }
}
