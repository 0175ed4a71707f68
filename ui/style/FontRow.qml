// One family of the font menu, written in its own letters where they can.
import QtQuick
import Korvane.Controls

Item {
    id: row

    required property int index
    required property string family
    required property string sampleFamily
    readonly property FontList list: ListView.view as FontList
    readonly property bool isCurrent: ListView.isCurrentItem
    readonly property bool isChosen: list !== null && list.chosen === family

    width: list === null ? 0 : list.width - 10
    height: list === null ? 0 : list.rowHeight

    Accessible.role: Accessible.ListItem
    Accessible.name: family
    Accessible.selected: isChosen
    Accessible.onPressAction: list.picked(index)

    Rectangle {
        anchors.fill: parent
        radius: 7
        visible: row.isCurrent
        color: Theme.faded(Theme.accent, 0.9)
    }
    Icon {
        x: 8
        anchors.verticalCenter: parent.verticalCenter
        size: 11
        visible: row.isChosen
        name: "checkmark"
        color: row.isCurrent ? "white" : Theme.accent
    }
    Text {
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        anchors.leftMargin: 26
        anchors.rightMargin: 8
        text: row.family
        color: Theme.white(row.isCurrent ? 1 : 0.88)
        font.family: row.sampleFamily
        font.pixelSize: 15
        elide: Text.ElideRight
        textFormat: Text.PlainText
        // Letters of a thousand fonts are drawn as they come, rather than each kept as a distance field.
        renderType: Text.NativeRendering
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        // Only a pointer that moves: the list scrolls under a resting one while the keys are used.
        onPositionChanged: row.list.currentIndex = row.index
        onClicked: row.list.picked(row.index)
    }
}
