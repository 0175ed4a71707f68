// One choice of several: a dot that is filled when it is chosen. Who shows several of them sees to it that one is.
// Properties: checked (a binding on it stays bound), name (for assistive tools), enabled. Signals: clicked().
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.RadioButton {
    id: control

    property string name: ""

    implicitWidth: 18
    implicitHeight: 18
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    Accessible.role: Accessible.RadioButton
    Accessible.name: name.length > 0 ? name : text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: control.choose()
    Accessible.onToggleAction: control.choose()
    Keys.onReturnPressed: control.choose()
    Keys.onEnterPressed: control.choose()

    function choose() {
        if (enabled)
            clicked();
    }

    indicator: ContinuousRectangle {
        width: 18
        height: 18
        radius: 9
        color: control.checked ? Theme.accent : Theme.white(control.hovered ? 0.12 : 0.06)
        borderWidth: 1
        borderColor: control.checked ? Theme.accent : Theme.white(control.hovered ? 0.5 : 0.35)

        ContinuousRectangle {
            x: 6
            y: 6
            width: 6
            height: 6
            radius: 3
            visible: control.checked
            color: "white"
        }
    }

    FocusRing {
        shown: control.visualFocus
        cornerRadius: 9
    }
}
