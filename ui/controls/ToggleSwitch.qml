// A switch. Properties: checked (a binding on it stays bound), name (for assistive tools), enabled.
// Signals: toggled() after the person turned it; then `checked` is the new state.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.Switch {
    id: control

    property string name: ""

    implicitWidth: 36
    implicitHeight: 20
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    Accessible.role: Accessible.CheckBox
    Accessible.name: name.length > 0 ? name : text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: control.turn()
    Accessible.onToggleAction: control.turn()
    // Once a press, like Space, which turns it when it is let go.
    Keys.onReturnPressed: event => turnOnce(event)
    Keys.onEnterPressed: event => turnOnce(event)

    function turnOnce(event: KeyEvent) {
        if (!event.isAutoRepeat)
            turn();
    }
    function turn() {
        if (!enabled)
            return;
        toggle();
        toggled();
    }

    Spring {
        id: place
        to: control.position
        response: 0.25
        damping: 0.8
    }

    // On whole pixels of the screen: a plain rectangle between two of them frays where the software draws.
    indicator: ContinuousRectangle {
        width: 36
        height: 20
        radius: 10
        color: Theme.white(control.hovered ? 0.22 : 0.16)

        ContinuousRectangle {
            anchors.fill: parent
            radius: 10
            color: control.hovered ? Theme.brighter(Theme.accent) : Theme.accent
            opacity: Math.max(0, Math.min(1, place.value))
        }
        ContinuousRectangle {
            x: 2 + 16 * place.value
            y: 2
            width: 16
            height: 16
            radius: 8
            color: "white"
        }
    }

    FocusRing {
        shown: control.visualFocus
        cornerRadius: 10
    }
}
