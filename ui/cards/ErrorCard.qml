// What went wrong, in words that can be selected and copied. Opens and closes smoothly; a long text scrolls.
import QtQuick
import Korvane.Controls

Item {
    id: frame

    required property string message
    required property bool shown

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
        height: Math.max(frame.textHeight, 18) + 2 * verticalPadding
        verticalPadding: 12

        Icon {
            id: sign
            name: "exclamationmark.triangle.fill"
            size: 16
            color: Theme.orange
            y: Math.round((lines.lineSpacing - height) / 2)
        }
        Flickable {
            anchors.left: sign.right
            anchors.leftMargin: 10
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.bottom: parent.bottom
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
                activeFocusOnTab: true
                text: frame.message
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                color: Theme.white(0.9)
                selectionColor: Theme.accentLo
                font.pixelSize: 13
                Accessible.role: Accessible.AlertMessage
                Accessible.name: frame.message
            }
        }
    }
}
