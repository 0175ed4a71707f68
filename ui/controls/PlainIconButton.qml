// A button that is only a symbol, such as the cross that closes something. Its reach is wider than what is seen.
// Properties: iconName, iconSize, iconColor, name (for assistive tools), enabled. Signals: clicked().
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.AbstractButton {
    id: button

    property string iconName: ""
    property real iconSize: 16
    property color iconColor: Theme.white(0.28)
    property string name: ""

    padding: 4
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: !enabled ? 0.4 : pressed ? 0.7 : 1

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.onPressAction: if (enabled) button.clicked()
    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    contentItem: Item {
        implicitWidth: symbol.width
        implicitHeight: symbol.height

        Icon {
            id: symbol
            anchors.centerIn: parent
            name: button.iconName
            size: button.iconSize
            color: button.hovered && button.enabled ? Theme.brighter(button.iconColor) : button.iconColor
        }
    }

    FocusRing {
        shown: button.visualFocus
        cornerRadius: button.height / 2
        gap: 0
    }
}
