// A thin scroll bar that shows itself while it is of use: ScrollBar.vertical: ThinScrollBar {}
// (import QtQuick.Templates as T and write T.ScrollBar.vertical).
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.ScrollBar {
    id: bar

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.08
    visible: size < 1

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.white(bar.pressed ? 0.42 : bar.hovered ? 0.34 : 0.2)
        opacity: bar.active || bar.hovered ? 1 : 0.6
        Behavior on opacity {
            NumberAnimation {
                duration: 150
            }
        }
    }
}
