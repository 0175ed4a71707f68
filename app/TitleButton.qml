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
    readonly property bool restores: button === "maximize" && frame.isMaximized
    readonly property string label: closes ? qsTr("Close") : button === "minimize" ? qsTr("Minimise")
                                                            : restores ? qsTr("Restore") : qsTr("Maximise")

    function act() {
        if (closes)
            frame.close();
        else if (button === "minimize")
            frame.minimize();
        else
            frame.toggleMaximized();
    }

    implicitWidth: 34
    implicitHeight: 36
    // A click on the window's own buttons leaves the keyboard where it is.
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    onClicked: act()

    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.onPressAction: act()

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
            name: control.closes ? "xmark" : control.button === "minimize" ? "minus" : control.restores ? "square.on.square" : "square"
            size: 12
            color: Theme.white(control.hovered || control.visualFocus ? 1 : control.frame.isActive ? 0.72 : 0.4)
        }
    }
}
