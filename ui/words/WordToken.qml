// One word of the transcript as a small button.
import QtQuick
import Korvane.Controls
import Korvane.Words

WordTokenItem {
    id: token

    implicitWidth: Math.ceil(label.implicitWidth) + 14
    implicitHeight: Math.ceil(label.implicitHeight) + 8

    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: selected
    Accessible.focusable: true
    Accessible.focused: current
    Accessible.onPressAction: press()
    Accessible.onToggleAction: press()

    ContinuousRectangle {
        anchors.fill: parent
        radius: 6
        color: token.fillColor
        borderWidth: 1
        borderColor: token.borderColor
    }
    Text {
        id: label
        objectName: "label"
        x: 7
        y: 4
        text: token.text
        textFormat: Text.PlainText
        font: token.font
        color: token.textColor
    }
}
