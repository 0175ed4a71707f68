// All hues from red to red. Arrow keys move by two degrees, with Shift by twenty.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

T.Control {
    id: strip

    required property ColorState choice
    // As assistive tools read it, in degrees.
    readonly property real value: choice.hue * 360
    readonly property real minimumValue: 0
    readonly property real maximumValue: 360
    readonly property real stepSize: 2

    implicitWidth: 216
    implicitHeight: 14
    focusPolicy: Qt.StrongFocus

    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("Hue")
    Accessible.onIncreaseAction: move(stepSize)
    Accessible.onDecreaseAction: move(-stepSize)

    function move(degrees: real) {
        choice.pickHue(choice.hue + degrees / 360)
    }
    function stepOf(event: KeyEvent): real {
        return event.modifiers & Qt.ShiftModifier ? 10 * stepSize : stepSize
    }

    Keys.onLeftPressed: event => move(-stepOf(event))
    Keys.onRightPressed: event => move(stepOf(event))
    Keys.onDownPressed: event => move(-stepOf(event))
    Keys.onUpPressed: event => move(stepOf(event))

    background: Rectangle {
        radius: height / 2
        border.width: 1
        border.color: Theme.white(0.14)
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0 / 6; color: "#ff0000" }
            GradientStop { position: 1 / 6; color: "#ffff00" }
            GradientStop { position: 2 / 6; color: "#00ff00" }
            GradientStop { position: 3 / 6; color: "#00ffff" }
            GradientStop { position: 4 / 6; color: "#0000ff" }
            GradientStop { position: 5 / 6; color: "#ff00ff" }
            GradientStop { position: 6 / 6; color: "#ff0000" }
        }
    }

    MouseArea {
        anchors.fill: parent
        anchors.margins: -3
        preventStealing: true
        function pick(mouse: MouseEvent) {
            strip.choice.pickHue((mouse.x - 3) / strip.width)
        }
        onPressed: mouse => {
            strip.forceActiveFocus(Qt.MouseFocusReason)
            pick(mouse)
        }
        onPositionChanged: mouse => pick(mouse)
    }

    PickKnob {
        x: strip.choice.hue * (strip.width - strip.height) + strip.height / 2 - width / 2
        y: (strip.height - height) / 2
        color: strip.choice.hueColor
    }

    FocusRing {
        shown: strip.visualFocus
        cornerRadius: strip.height / 2
    }
}
