// All hues from red to red, in degrees. Arrow keys move by two, with Shift by twenty.
import QtQuick
import Korvane.Controls
import Korvane.Style

RangeControl {
    id: strip

    required property ColorState choice

    implicitWidth: 216
    implicitHeight: 14
    from: 0
    to: 360
    nudge: 2
    page: 20
    // A hue is picked where the pointer is, up to the ends: the knob stands over them by its half.
    handle: 0
    value: choice.hue * 360
    onMoved: value => choice.pickHue(value / 360)

    Accessible.role: Accessible.Slider
    Accessible.name: "Hue"
    Accessible.onIncreaseAction: strip.stepBy(1)
    Accessible.onDecreaseAction: strip.stepBy(-1)

    // Taken hold of wherever the knob is seen.
    containmentMask: Item {
        x: -3
        y: -3
        width: strip.width + 6
        height: strip.height + 6
    }

    Rectangle {
        anchors.fill: parent
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

    PickKnob {
        objectName: "hueKnob"
        x: strip.position * strip.width - width / 2
        y: (strip.height - height) / 2
        color: strip.choice.hueColor
    }

    FocusRing {
        shown: strip.visualFocus
        cornerRadius: strip.height / 2
    }
}
