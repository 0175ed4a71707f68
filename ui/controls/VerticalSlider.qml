// A slider that stands upright, continuous from 0 at its bottom to 1 at its top.
// Properties: value (a binding on it stays bound; one that differs by no more than 1e-6 moves nothing), name,
// enabled. Signals: changed(real value), also while it is dragged.
import QtQuick
import Korvane.Controls

RangeControl {
    id: slider

    property string name: ""
    signal changed(value: real)

    implicitWidth: 20
    implicitHeight: 88
    orientation: Qt.Vertical
    from: 0
    to: 1
    nudge: 0.01
    page: 0.1
    handle: 14
    opacity: enabled ? 1 : 0.4
    onMoved: value => slider.changed(value)

    Accessible.role: Accessible.Slider
    Accessible.name: name
    Accessible.onIncreaseAction: if (enabled) slider.stepBy(1)
    Accessible.onDecreaseAction: if (enabled) slider.stepBy(-1)

    Rectangle {
        x: (slider.width - width) / 2
        width: 4
        height: slider.height
        radius: 2
        color: Theme.white(0.14)
    }
    Rectangle {
        x: (slider.width - width) / 2
        y: knob.y + knob.height / 2
        width: 4
        height: slider.height - y
        radius: 2
        color: Theme.accent
    }
    Rectangle {
        id: knob
        x: (slider.width - width) / 2
        y: (1 - slider.position) * (slider.height - height)
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
