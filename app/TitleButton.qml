// One of the window's own buttons: a thin sign on a round plate that shows under the pointer.
import QtQuick
import QtQuick.Templates as T
import Korvane.App
import Korvane.Controls

T.Button {
    id: control

    required property WindowFrame frame
    /// "close", "minimize" or "maximize"
    required property string button

    readonly property bool closes: button === "close"
    readonly property string label: frame.buttonLabel(button, frame.isMaximized)

    implicitWidth: 34
    implicitHeight: 36
    // A click on the window's own buttons leaves the keyboard where it is.
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    onClicked: frame.pressButton(button)

    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Rectangle {
            anchors.centerIn: parent
            width: 24
            height: 24
            radius: 12
            color: control.closes && control.hovered ? Theme.faded(Theme.stopHi, control.pressed ? 0.75 : 0.95)
                                                     : Theme.white(control.pressed ? 0.22 : control.hovered ? 0.13 : 0)
            border.width: control.visualFocus ? 2 : 0
            border.color: Theme.accent
        }
        Icon {
            anchors.centerIn: parent
            name: control.frame.buttonIcon(control.button, control.frame.isMaximized)
            size: 12
            color: Theme.white(control.hovered || control.visualFocus ? 1 : control.frame.isActive ? 0.72 : 0.4)
        }
    }
}
