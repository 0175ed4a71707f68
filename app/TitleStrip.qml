// The strip at the top of the window: no fill of its own, the title buttons on the side where the desktop has
// them. Dragging moves the window, a double click makes it fill the screen and back.
import QtQuick
import Korvane.App

Item {
    id: strip

    required property WindowFrame frame

    implicitHeight: 36

    DragArea {
        anchors.fill: parent
        frame: strip.frame
        onDoubleClicked: strip.frame.toggleMaximized()
    }

    Row {
        // Where the window fills the screen, the outermost button reaches into the screen's corner.
        readonly property real margin: strip.frame.canResize ? 4 : 0

        anchors.left: strip.frame.buttonsOnLeft ? parent.left : undefined
        anchors.right: strip.frame.buttonsOnLeft ? undefined : parent.right
        anchors.leftMargin: margin
        anchors.rightMargin: margin
        height: parent.height

        TitleButton {
            height: strip.height
            button: strip.frame.buttons[0]
            frame: strip.frame
        }
        TitleButton {
            height: strip.height
            button: strip.frame.buttons[1]
            frame: strip.frame
        }
        TitleButton {
            height: strip.height
            button: strip.frame.buttons[2]
            frame: strip.frame
        }
    }
}
