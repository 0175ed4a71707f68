// Ground that moves the window. It lies below everything that reacts to the pointer, and the frame leaves out what is
// switched off, so that a control is never mistaken for it.
import QtQuick
import Korvane.App

MouseArea {
    id: area

    required property WindowFrame frame

    acceptedButtons: Qt.LeftButton
    onPressed: event => area.frame.pressGround(area.mapToGlobal(event.x, event.y))
    onPositionChanged: event => area.frame.movePointer(area.mapToGlobal(event.x, event.y))
    onReleased: area.frame.release()
    onCanceled: area.frame.release()
}
