// What the reel will be, and the buttons that make it.
import QtQuick
import QtQuick.Layouts
import Korvane.Controls

GlassCard {
    id: card

    required property string summary
    required property string durationText
    required property bool hasSelection

    implicitHeight: column.implicitHeight + 2 * verticalPadding

    ColumnLayout {
        id: column
        anchors.fill: parent
        spacing: 10

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 3

            RowLayout {
                Layout.fillWidth: true
                spacing: 8

                Text {
                    objectName: "exportSummary"
                    Layout.fillWidth: true
                    text: card.summary
                    color: Theme.white(0.85)
                    elide: Text.ElideRight
                    font.pixelSize: 13
                    font.weight: Font.Medium
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
                Text {
                    objectName: "exportDuration"
                    text: card.durationText
                    color: Theme.white(0.45)
                    font.pixelSize: 13
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }
            Text {
                Layout.fillWidth: true
                // One line high whichever it says.
                text: card.hasSelection ? "Not in this version yet: korvane-cli makes the reel." : "Select words to export"
                color: Theme.white(0.45)
                elide: Text.ElideRight
                font.pixelSize: 11
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            PrimaryPill {
                objectName: "preview"
                Layout.fillWidth: true
                text: "Preview"
                enabled: false
            }
            SuccessPill {
                objectName: "export"
                Layout.fillWidth: true
                text: "Export"
                iconName: "arrow.down.circle.fill"
                enabled: false
            }
        }
    }
}
