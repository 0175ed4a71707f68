// One label of a MenuList. Pointed at it takes the keys' place, so that there is only ever one bright row.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.ItemDelegate {
    id: row

    required property string modelData
    required property int index
    readonly property MenuList menu: ListView.view as MenuList
    readonly property bool current: ListView.isCurrentItem
    readonly property bool chosen: menu !== null && index === menu.chosen

    width: menu ? menu.width : 0
    height: menu ? menu.rowHeight : 0
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: modelData
    onHoveredChanged: if (hovered) menu.currentIndex = index
    onClicked: menu.picked(index)

    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.selected: current
    Accessible.onPressAction: menu.picked(index)

    background: Rectangle {
        radius: 5
        color: row.current ? Theme.accentLo : "transparent"
    }
    contentItem: Item {
        Icon {
            x: 7
            anchors.verticalCenter: parent.verticalCenter
            visible: row.chosen
            name: "checkmark"
            size: 10
        }
        Text {
            x: 24
            width: parent.width - x
            anchors.verticalCenter: parent.verticalCenter
            text: row.text
            font: row.menu ? row.menu.font : row.font
            color: row.current ? "white" : Theme.white(0.88)
            elide: Text.ElideRight
        }
    }
}
