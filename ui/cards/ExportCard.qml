// What the reel will be, and the buttons that make it. Stop comes up in the room left of the others, so that nothing
// moves away under the pointer.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    required property string summary
    required property string durationText
    required property bool hasSelection
    required property bool previewEnabled
    required property bool exportEnabled
    required property bool stopVisible
    required property bool folderVisible  // a finished file can be shown
    property bool previewOutdated: false  // the export would not be what is chosen now

    signal previewRequested
    signal exportRequested
    signal stopRequested
    signal folderRequested

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
    // One line that is always kept free, for a hint or for what can be done with the file.
    Item {
        id: below
        anchors.top: what.bottom
        anchors.topMargin: 3
        width: parent.width
        height: hint.implicitHeight

        Text {
            id: hint
            objectName: "exportHint"
            visible: !card.hasSelection || card.previewOutdated
            text: card.hasSelection ? "Preview again to export your changes" : "Select words to export"
            color: Theme.white(0.45)
            font.pixelSize: 11
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        LinkButton {
            objectName: "showInFolder"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: card.folderVisible
            text: "Show in folder"
            name: "Show the exported reel in its folder"
            onClicked: card.folderRequested()
        }
    }
    StopPill {
        objectName: "stop"
        anchors.top: below.bottom
        anchors.topMargin: 10
        visible: card.stopVisible
        text: "Stop"
        onClicked: card.stopRequested()
    }
    PrimaryPill {
        id: preview
        objectName: "preview"
        anchors.top: below.bottom
        anchors.topMargin: 10
        anchors.right: exporting.left
        anchors.rightMargin: 8
        text: "Preview"
        enabled: card.previewEnabled
        onClicked: card.previewRequested()
    }
    SuccessPill {
        id: exporting
        objectName: "export"
        anchors.top: preview.top
        anchors.right: parent.right
        text: "Export"
        iconName: "arrow.down.circle.fill"
        enabled: card.exportEnabled
        onClicked: card.exportRequested()
    }
}
