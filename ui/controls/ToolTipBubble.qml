// A short text beside what the pointer rests on: ToolTipBubble { text: path; visible: area.hovered && shortened }
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.ToolTip {
    id: tip

    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height + 6 : 0
    implicitWidth: Math.min(360, Math.ceil(contentItem.implicitWidth)) + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    margins: 6
    leftPadding: 9
    rightPadding: 9
    topPadding: 5
    bottomPadding: 6
    delay: 500
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: Text {
        text: tip.text
        textFormat: Text.PlainText
        color: Theme.white(0.85)
        font.pixelSize: 11
        wrapMode: Text.WrapAnywhere
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.popupFill
        border.width: 1
        border.color: Theme.white(0.12)
    }
}
