// A horizontal slider, filled with the accent up to its value.
// Properties: from, to, stepSize, value (a binding on it stays bound), page, name, valueText (both for assistive
// tools), enabled. Signals: moved(real value), also while it is dragged.
import QtQuick
import Korvane.Controls

RangeControl {
    id: slider

    property string name: ""
    property string valueText: ""

    implicitWidth: 88
    implicitHeight: 20
    handle: 14
    opacity: enabled ? 1 : 0.4

    Accessible.role: Accessible.Slider
    Accessible.name: name
    Accessible.description: valueText
    Accessible.onIncreaseAction: if (enabled) slider.stepBy(1)
    Accessible.onDecreaseAction: if (enabled) slider.stepBy(-1)

    Rectangle {
        y: (slider.height - height) / 2
        width: slider.width
        height: 4
        radius: 2
        color: Theme.white(0.14)
    }
    Rectangle {
        y: (slider.height - height) / 2
        width: knob.x + knob.width / 2
        height: 4
        radius: 2
        color: Theme.accent
    }
    Rectangle {
        id: knob
        x: slider.position * (slider.width - width)
        y: (slider.height - height) / 2
        width: slider.handle
        height: slider.handle
        radius: width / 2
        color: slider.hovered || slider.pressed ? "white" : "#eaf0fa"
        border.width: 1
        border.color: Qt.rgba(0, 0, 0, 0.18)
    }
    FocusRing {
        anchors.fill: knob
        shown: slider.visualFocus
        cornerRadius: 7
    }
}
