// The loaded video, and what starts and stops the transcription. Stop comes up in the room between name and buttons,
// so that nothing moves away under the pointer.
import QtQuick
import QtQuick.Layouts
import Korvane.Controls

GlassCard {
    id: card

    required property string fileName
    required property bool hasVideo
    required property bool loadEnabled
    required property bool transcribeEnabled
    required property bool stopVisible

    signal loadRequested
    signal transcribeRequested
    signal stopRequested

    implicitHeight: row.implicitHeight + 2 * verticalPadding

    RowLayout {
        id: row
        anchors.fill: parent
        spacing: 8

        Icon {
            name: "film"
            size: 16
            color: card.hasVideo ? Theme.accent : Theme.white(0.3)
            Layout.alignment: Qt.AlignVCenter
        }
        Text {
            id: nameText
            Layout.fillWidth: true
            Layout.minimumWidth: 60
            text: card.fileName
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            maximumLineCount: 1
            color: card.hasVideo ? Theme.white(0.9) : Theme.white(0.4)
            font.pixelSize: 13
            Accessible.role: Accessible.StaticText
            Accessible.name: text

            HoverHandler {
                id: nameHover
            }
            ToolTipBubble {
                text: card.fileName
                visible: nameHover.hovered && nameText.truncated
            }
        }
        StopPill {
            objectName: "stopTranscription"
            text: "Stop"
            visible: card.stopVisible
            onClicked: card.stopRequested()
        }
        GhostPill {
            objectName: "loadVideo"
            text: "Load Video"
            enabled: card.loadEnabled
            onClicked: card.loadRequested()
        }
        PrimaryPill {
            objectName: "transcribe"
            text: "Transcribe"
            enabled: card.transcribeEnabled
            onClicked: card.transcribeRequested()
        }
    }
}
