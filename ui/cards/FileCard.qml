// The loaded video, and what starts and stops the transcription. Stop comes up in the room between name and buttons,
// so that nothing moves away under the pointer.
import QtQuick
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

    // Who takes the keyboard when Stop goes: what came of it, or nothing, and Transcribe has it again.
    property Item successor: null

    // Transcribe and Stop take turns, and the keyboard goes with them: who started by key stops by key.
    property bool byKeys: false

    function handOver() {
        const reason = byKeys ? Qt.TabFocusReason : Qt.OtherFocusReason;
        if (stopVisible && transcribe.focus)
            stop.forceActiveFocus(reason);
        else if (!stopVisible && stop.focus && successor)
            successor.forceActiveFocus(reason);
        else if (!stopVisible && stop.focus)
            transcribe.forceActiveFocus(reason);
    }

    /// Gives the keyboard to what begins the work.
    function takeFocus(reason: int) {
        (transcribe.enabled ? transcribe : load).forceActiveFocus(reason);
    }

    onStopVisibleChanged: later.start()

    // When the other one can take it.
    Timer {
        id: later
        interval: 0
        onTriggered: card.handOver()
    }

    implicitHeight: transcribe.height + 2 * verticalPadding

    Icon {
        id: sign
        name: "film"
        size: 16
        color: card.hasVideo ? Theme.accent : Theme.white(0.3)
        anchors.verticalCenter: parent.verticalCenter
    }
    Text {
        id: nameText
        anchors.left: sign.right
        anchors.leftMargin: 8
        anchors.right: card.stopVisible ? stop.left : load.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
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
        id: stop
        objectName: "stopTranscription"
        anchors.right: load.left
        anchors.rightMargin: 8
        text: "Stop"
        visible: card.stopVisible
        onVisualFocusChanged: if (activeFocus)
            card.byKeys = visualFocus
        onClicked: card.stopRequested()
    }
    GhostPill {
        id: load
        objectName: "loadVideo"
        anchors.right: transcribe.left
        anchors.rightMargin: 8
        text: "Load Video"
        enabled: card.loadEnabled
        onClicked: card.loadRequested()
    }
    PrimaryPill {
        id: transcribe
        objectName: "transcribe"
        anchors.right: parent.right
        text: "Transcribe"
        enabled: card.transcribeEnabled
        onClicked: {
            card.byKeys = visualFocus;
            card.transcribeRequested();
        }
    }
}
