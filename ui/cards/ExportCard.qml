// What the reel will be, and the buttons that make it.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    required property string summary
    required property string durationText
    required property bool hasSelection

    implicitHeight: preview.y + preview.height + 2 * verticalPadding

    Text {
        id: what
        objectName: "exportSummary"
        anchors.left: parent.left
        anchors.right: duration.left
        anchors.rightMargin: 8
        text: card.summary
        color: Theme.white(0.85)
        elide: Text.ElideRight
        font.pixelSize: 13
        font.weight: Font.Medium
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Text {
        id: duration
        objectName: "exportDuration"
        anchors.right: parent.right
        anchors.baseline: what.baseline
        text: card.durationText
        color: Theme.white(0.45)
        font.pixelSize: 13
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Text {
        id: hint
        anchors.top: what.bottom
        anchors.topMargin: 3
        width: parent.width
        // One line high whichever it says.
        text: card.hasSelection ? "Not in this version yet: korvane-cli makes the reel." : "Select words to export"
        color: Theme.white(0.45)
        elide: Text.ElideRight
        font.pixelSize: 11
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    PrimaryPill {
        id: preview
        objectName: "preview"
        anchors.top: hint.bottom
        anchors.topMargin: 10
        width: Math.floor((parent.width - 8) / 2)
        text: "Preview"
        enabled: false
    }
    SuccessPill {
        objectName: "export"
        anchors.top: preview.top
        anchors.right: parent.right
        width: parent.width - preview.width - 8
        text: "Export"
        iconName: "arrow.down.circle.fill"
        enabled: false
    }
}
