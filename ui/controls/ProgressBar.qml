// A bar that fills from the left. How far is given in points, as whoever knows the rule computes it.
// Properties: fillWidth (points, 0 to width), fraction (0 to 1, for assistive tools), name.
import QtQuick
import Korvane.Controls

Item {
    id: bar

    property real fillWidth: 0
    property real fraction: 0
    property string name: ""
    // As assistive tools read them.
    readonly property real value: fraction
    readonly property real minimumValue: 0
    readonly property real maximumValue: 1
    readonly property real stepSize: 0.01

    implicitWidth: 200
    implicitHeight: 7
    Accessible.role: Accessible.ProgressBar
    Accessible.name: name
    Accessible.readOnly: true

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.white(0.08)
    }
    ContinuousRectangle {
        // Whole pixels: a step that nobody sees draws nothing.
        width: Math.round(Math.max(0, Math.min(bar.width, bar.fillWidth)) * Screen.devicePixelRatio) / Screen.devicePixelRatio
        height: parent.height
        radius: height / 2
        gradientFrom: Theme.accentLo
        gradientTo: Theme.accent
    }
}
