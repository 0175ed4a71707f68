// Saturation to the right, brightness upwards, in one hue. Arrow keys move by one per cent, with Shift by ten.
import QtQuick
import Korvane.Controls
import Korvane.Style

// An item of no kind of its own: a control from the templates would be told as a filler, whatever its role.
KeyFocusItem {
    id: field

    required property ColorState choice

    implicitWidth: 216
    implicitHeight: 136

    Accessible.role: Accessible.ColorChooser
    Accessible.name: "Saturation and brightness"
    Accessible.description: choice.description

    function move(saturation: real, brightness: real) {
        setVisualFocus(true)
        choice.pickInField(choice.saturation + saturation, choice.brightness + brightness)
    }
    function stepOf(event: KeyEvent): real {
        return event.modifiers & Qt.ShiftModifier ? 0.1 : 0.01
    }

    Keys.onLeftPressed: event => move(-stepOf(event), 0)
    Keys.onRightPressed: event => move(stepOf(event), 0)
    Keys.onUpPressed: event => move(0, stepOf(event))
    Keys.onDownPressed: event => move(0, -stepOf(event))

    Item {
        anchors.fill: parent
        Rectangle {
            anchors.fill: parent
            radius: 8
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: "white" }
                GradientStop { position: 1; color: field.choice.hueColor }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 8
            gradient: Gradient {
                GradientStop { position: 0; color: "transparent" }
                GradientStop { position: 1; color: "black" }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 8
            color: "transparent"
            border.width: 1
            border.color: Theme.white(0.14)
        }
    }

    MouseArea {
        anchors.fill: parent
        preventStealing: true
        function pick(mouse: MouseEvent) {
            field.choice.pickInField(mouse.x / width, 1 - mouse.y / height)
        }
        onPressed: mouse => {
            field.forceActiveFocus(Qt.MouseFocusReason)
            field.setVisualFocus(false)
            pick(mouse)
        }
        onPositionChanged: mouse => pick(mouse)
    }

    PickKnob {
        x: field.choice.saturation * field.width - width / 2
        y: (1 - field.choice.brightness) * field.height - height / 2
        color: field.choice.color
    }

    FocusRing {
        shown: field.visualFocus
        cornerRadius: 8
    }
}
