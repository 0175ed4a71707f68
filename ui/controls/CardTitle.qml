// A card's title, with a symbol before it if iconName is set.
// Properties: text, iconName, iconColor, iconSize, size (pixels of the text), color.
import QtQuick
import Korvane.Controls

Item {
    id: title

    property string text: ""
    property string iconName: ""
    property color iconColor: Theme.accent
    property real iconSize: 16
    property real size: 16
    property color color: "white"

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Accessible.role: Accessible.Heading
    Accessible.name: text

    Row {
        id: row
        spacing: 8

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: title.iconName.length > 0
            name: title.iconName
            color: title.iconColor
            size: title.iconSize
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: title.text
            textFormat: Text.PlainText
            color: title.color
            font.pixelSize: title.size
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
    }
}
