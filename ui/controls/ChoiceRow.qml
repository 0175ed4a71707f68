// One row of a ChoiceList: a mark if it is the chosen one, and its label. Pointed at it takes the keys' place, so that
// there is only ever one bright row.
// Properties: label, font, renderType (of the label); chosen, current (the keys are here).
import QtQuick
import Korvane.Controls

Item {
    id: row

    required property int index
    property alias label: words.text
    property alias font: words.font
    property alias renderType: words.renderType
    readonly property ChoiceList list: ListView.view as ChoiceList
    readonly property bool chosen: list ? index === list.chosen : false
    readonly property bool current: ListView.isCurrentItem

    width: list ? list.width : 0
    height: list ? list.rowHeight : 0

    Accessible.role: Accessible.ListItem
    Accessible.name: label
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.selectable: true
    Accessible.selected: current
    Accessible.onPressAction: list.picked(index)

    Rectangle {
        anchors.fill: parent
        radius: 5
        visible: row.current
        color: Theme.accentLo
    }
    Icon {
        x: 7
        anchors.verticalCenter: parent.verticalCenter
        visible: row.chosen
        name: "checkmark"
        size: 10
        color: row.current ? "white" : Theme.accent
    }
    Text {
        id: words
        x: 24
        width: parent.width - x - 8
        anchors.verticalCenter: parent.verticalCenter
        textFormat: Text.PlainText
        color: row.current ? "white" : Theme.white(0.88)
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        function tell() {
            row.list.pointAt(row.index, mapToItem(null, mouseX, mouseY));
        }
        onEntered: tell()
        onPositionChanged: tell()
        onClicked: row.list.picked(row.index)
    }
}
