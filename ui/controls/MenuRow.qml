// One label of a MenuList.
import QtQuick
import Korvane.Controls

ChoiceRow {
    id: row

    required property string modelData
    readonly property MenuList menu: ListView.view as MenuList

    label: modelData
    font: menu ? menu.font : Qt.font({})
}
