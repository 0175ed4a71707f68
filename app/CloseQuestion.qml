// Asks before the window is closed while something runs, and goes by itself when that has finished meanwhile. Lies over
// the whole window.
// Properties: view, cornerRadius (of the window). Signals: stopChosen(), after which the window may close; closed().
import QtQuick
import QtQuick.Templates as T
import Korvane.App
import Korvane.Controls

Item {
    id: question

    required property ContentView view
    required property real cornerRadius
    readonly property bool needed: view.closeQuestionNeeded

    signal stopChosen
    signal closed

    /// Whether nothing needs to be asked; else asks.
    function mayClose(): bool {
        if (needed)
            popup.open();
        return !needed;
    }

    onNeededChanged: if (!needed) popup.close()

    Rectangle {
        anchors.fill: parent
        visible: popup.visible
        radius: question.cornerRadius
        color: Qt.rgba(0, 0, 0, 0.5)
    }

    T.Popup {
        id: popup
        x: Math.round((question.width - width) / 2)
        y: Math.round((question.height - height) / 2)
        width: 340
        height: body.height + 2 * padding
        padding: 20
        margins: Theme.gap
        modal: true
        dim: false
        focus: true
        closePolicy: T.Popup.CloseOnEscape
        // The answer that loses nothing lies under the Enter key.
        onClosed: question.closed()
        onOpened: keep.forceActiveFocus(Qt.TabFocusReason)

        background: Rectangle {
            radius: Theme.cardRadius
            color: Theme.popupFill
            border.width: 1
            border.color: Theme.white(0.14)
        }

        Item {
            id: body
            objectName: "closeQuestion"
            width: parent.width
            height: keep.y + keep.height
            Accessible.role: Accessible.Dialog
            Accessible.name: title.text
            Accessible.description: reason.text

            Text {
                id: title
                width: parent.width
                text: "Stop and close?"
                color: "white"
                font.pixelSize: 16
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Text {
                id: reason
                anchors.top: title.bottom
                anchors.topMargin: 6
                width: parent.width
                text: question.view.closeQuestionText
                color: Theme.white(0.7)
                font.pixelSize: 13
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            GhostPill {
                id: keep
                objectName: "keepWorking"
                anchors.top: reason.bottom
                anchors.topMargin: 18
                anchors.right: stop.left
                anchors.rightMargin: 8
                text: "Keep working"
                onClicked: popup.close()
            }
            StopPill {
                id: stop
                objectName: "stopAndClose"
                anchors.top: keep.top
                anchors.right: parent.right
                text: "Stop and close"
                onClicked: question.stopChosen()
            }
        }
    }
}
