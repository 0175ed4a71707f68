// The ring around a control that has the keyboard's focus. Place it inside the control:
//     FocusRing { shown: button.visualFocus; cornerRadius: 10 }
// Properties: shown (the control's visualFocus), cornerRadius (of the control), gap (between control and ring).
import QtQuick
import Korvane.Controls

ContinuousRectangle {
    id: ring

    property bool shown: false
    property real gap: 2
    property real cornerRadius: 10

    anchors.fill: parent
    anchors.margins: -gap - borderWidth
    radius: cornerRadius + gap + borderWidth
    borderWidth: 2
    borderColor: Theme.accent
    visible: shown
    z: 1
}
