// A button that is only its text, such as "All" and "None".
// Properties: text, color, size (pixels), weight, name (for assistive tools; the text if empty), enabled. Signals: clicked().
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.AbstractButton {
    id: link

    property color color: Theme.accent
    property real size: 11
    property int weight: Font.Medium
    property string name: ""

    implicitWidth: Math.ceil(implicitContentWidth)
    implicitHeight: Math.ceil(implicitContentHeight)
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    font: Theme.font(size, weight)
    opacity: !enabled ? 0.4 : pressed ? 0.7 : 1

    Accessible.role: Accessible.Button
    Accessible.name: name.length > 0 ? name : text
    Accessible.onPressAction: if (enabled) link.clicked()
    Keys.onReturnPressed: link.clicked()
    Keys.onEnterPressed: link.clicked()

    contentItem: Text {
        text: link.text
        textFormat: Text.PlainText
        color: link.hovered && link.enabled ? Theme.brighter(link.color) : link.color
        font: link.font
        verticalAlignment: Text.AlignVCenter
    }

    FocusRing {
        shown: link.visualFocus
        cornerRadius: 3
    }
}
