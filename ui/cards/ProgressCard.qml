// How far the running operation is. Every piece has its own place, so nothing moves while the numbers change.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    required property color dotColor
    required property string statusText
    required property string etaText      // empty: none
    required property string percentText
    required property string phaseText    // empty: none
    required property real progress       // what assistive technology is told
    required property real barFill        // points of the bar that are filled

    readonly property real barTotal: bar.width

    implicitHeight: status.height + bar.anchors.topMargin + bar.height + 2 * verticalPadding

    TextMetrics {
        id: widest
        font: percent.font
        text: "100%"
    }

    Rectangle {
        id: dot
        width: 8
        height: 8
        radius: 4
        anchors.verticalCenter: status.verticalCenter
        color: card.dotColor

        Behavior on color {
            ColorAnimation {
                duration: 160
            }
        }
    }
    Text {
        id: status
        objectName: "statusText"
        anchors.left: dot.right
        anchors.leftMargin: 8
        anchors.right: details.left
        anchors.rightMargin: 12
        text: card.statusText
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Theme.white(0.85)
        font.pixelSize: 13
        font.weight: Font.Medium
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Row {
        id: details
        anchors.right: percent.left
        anchors.rightMargin: 6
        anchors.verticalCenter: status.verticalCenter
        spacing: 6

        Text {
            objectName: "phaseText"
            visible: text.length > 0
            text: card.phaseText
            color: Theme.white(0.45)
            font.pixelSize: 11
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Text {
            visible: eta.visible && card.phaseText.length > 0
            text: "·"
            color: Theme.white(0.25)
            font.pixelSize: 11
            Accessible.ignored: true
        }
        Text {
            id: eta
            objectName: "etaText"
            visible: text.length > 0
            text: card.etaText
            color: Theme.white(0.45)
            font.pixelSize: 11
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    Text {
        id: percent
        objectName: "percentText"
        anchors.right: parent.right
        anchors.baseline: status.baseline
        // As wide as it ever gets.
        width: Math.ceil(widest.advanceWidth) + 1
        horizontalAlignment: Text.AlignRight
        text: card.percentText
        color: Theme.white(0.7)
        font.pixelSize: 12
        font.weight: Font.DemiBold
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    ProgressBar {
        id: bar
        objectName: "progressBar"
        anchors.top: status.bottom
        anchors.topMargin: 10
        width: parent.width
        fillWidth: card.barFill
        fraction: card.progress
        name: "Progress"
    }
}
