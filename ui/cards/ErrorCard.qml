// What went wrong, in words that can be selected and copied, and the way out where there is one. Opens and closes
// smoothly; a long text scrolls.
import QtQuick
import Korvane.Controls

Item {
    id: frame

    required property string message
    required property bool shown
    property bool modelWouldHelp: false

    signal modelRequested(byKeys: bool)

    // What is read while the card closes is still there.
    property string lastMessage: ""
    property bool lastWouldHelp: false
    onMessageChanged: if (message.length > 0) {
        lastMessage = message;
        lastWouldHelp = modelWouldHelp;
    }
    onModelWouldHelpChanged: if (shown || modelWouldHelp)
        lastWouldHelp = modelWouldHelp
    Component.onCompleted: {
        lastMessage = message;
        lastWouldHelp = modelWouldHelp;
    }

    readonly property real textHeight: Math.min(edit.implicitHeight, 5 * lines.lineSpacing)

    implicitHeight: shown ? card.height : 0
    opacity: shown ? 1 : 0
    visible: height > 0.5
    clip: height < card.height

    Behavior on implicitHeight {
        NumberAnimation {
            duration: 180
            easing.type: Easing.OutCubic
        }
    }
    Behavior on opacity {
        NumberAnimation {
            duration: 160
        }
    }

    FontMetrics {
        id: lines
        font: edit.font
    }

    GlassCard {
        id: card
        width: frame.width
        height: Math.max(frame.textHeight, way.visible ? way.height : 18) + 2 * verticalPadding
        verticalPadding: 12

        Icon {
            id: sign
            name: "exclamationmark.triangle.fill"
            size: 16
            color: Theme.orange
            y: view.y + Math.round((lines.lineSpacing - height) / 2)
        }
        Flickable {
            id: view
            anchors.left: sign.right
            anchors.leftMargin: 10
            anchors.right: way.visible ? way.left : parent.right
            anchors.rightMargin: way.visible ? 14 : 0
            y: Math.round((parent.height - height) / 2)
            height: frame.textHeight
            contentHeight: edit.implicitHeight
            contentWidth: width
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            interactive: contentHeight > height + 1

            TextEdit {
                id: edit
                objectName: "errorText"
                width: parent.width
                readOnly: true
                selectByMouse: true
                selectByKeyboard: true
                activeFocusOnTab: frame.shown
                // A text does not know what brought it the keys: a pointer that is pressed on it, or else they themselves.
                property bool byPointer: false
                readonly property bool visualFocus: activeFocus && !byPointer
                onActiveFocusChanged: if (!activeFocus)
                    byPointer = false
                onCursorRectangleChanged: {
                    const line = cursorRectangle;
                    view.contentY = Math.max(line.y + line.height - view.height, Math.min(view.contentY, line.y));
                }
                text: frame.lastMessage
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                color: Theme.white(0.9)
                selectionColor: Theme.accentLo
                font.pixelSize: 13
                Accessible.role: Accessible.AlertMessage
                Accessible.name: frame.lastMessage

                PointHandler {
                    onActiveChanged: if (active)
                        edit.byPointer = true
                }
            }
        }
        FocusRing {
            anchors.fill: view
            shown: edit.visualFocus
            cornerRadius: 4
        }
        PrimaryPill {
            id: way
            objectName: "installModel"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: frame.lastWouldHelp
            enabled: frame.modelWouldHelp
            text: "Install a model…"
            onClicked: frame.modelRequested(way.visualFocus)
        }
    }
}
