// A line to type words into that narrow a list.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.TextField {
    id: search

    required property string name

    implicitHeight: 30
    leftPadding: 28
    rightPadding: 9
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.font(12)
    color: "white"
    selectionColor: Theme.accent
    selectedTextColor: "white"
    placeholderTextColor: Theme.white(0.4)
    selectByMouse: true
    maximumLength: 80
    renderType: Text.NativeRendering

    Accessible.role: Accessible.EditableText
    Accessible.name: name

    background: Rectangle {
        radius: 8
        color: Theme.white(0.08)
        border.width: 1
        border.color: search.activeFocus ? Theme.faded(Theme.accent, 0.8) : Theme.white(0.1)

        Icon {
            x: 9
            anchors.verticalCenter: parent.verticalCenter
            size: 12
            name: "magnifyingglass"
            color: Theme.white(0.5)
        }
        Text {
            anchors.fill: parent
            anchors.leftMargin: search.leftPadding
            verticalAlignment: Text.AlignVCenter
            visible: search.text === "" && search.preeditText === ""
            text: search.name
            textFormat: Text.PlainText
            font: search.font
            color: search.placeholderTextColor
        }
    }
}
