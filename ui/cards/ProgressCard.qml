// How far the running operation is. Every piece has its own place, so nothing moves while the numbers change.
import QtQuick
import QtQuick.Layouts
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

    implicitHeight: column.implicitHeight + 2 * verticalPadding

    FontMetrics {
        id: digits
        font: percent.font
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            Rectangle {
                implicitWidth: 8
                implicitHeight: 8
                radius: 4
                color: card.dotColor
                Layout.alignment: Qt.AlignVCenter

                Behavior on color {
                    ColorAnimation {
                        duration: 160
                    }
                }
            }
            Text {
                objectName: "statusText"
                Layout.fillWidth: true
                text: card.statusText
                elide: Text.ElideRight
                color: Theme.white(0.85)
                font.pixelSize: 13
                font.weight: Font.Medium
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Text {
                objectName: "phaseText"
                text: card.phaseText
                visible: text.length > 0
                color: Theme.white(0.45)
                font.pixelSize: 11
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Text {
                objectName: "etaText"
                text: "· " + card.etaText
                visible: card.etaText.length > 0
                color: Theme.white(0.45)
                font.pixelSize: 11
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Text {
                id: percent
                objectName: "percentText"
                // As wide as it ever gets.
                Layout.preferredWidth: Math.ceil(digits.advanceWidth("100%")) + 1
                horizontalAlignment: Text.AlignRight
                text: card.percentText
                color: Theme.white(0.7)
                font.pixelSize: 12
                font.weight: Font.DemiBold
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        ProgressBar {
            id: bar
            objectName: "progressBar"
            Layout.fillWidth: true
            fillWidth: card.barFill
            fraction: card.progress
            name: "Progress"
        }
    }
}
