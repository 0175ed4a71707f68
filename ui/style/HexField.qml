// A colour as people write it to each other. What is no colour is marked and not taken. Six digits are taken as they are
// typed; three, which may be half of six, by Return or Tab.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

T.TextField {
    id: entry

    required property ColorState choice
    property bool wrong: false

    implicitWidth: 92
    implicitHeight: 28
    leftPadding: 9
    rightPadding: 9
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.font(12)
    color: "white"
    selectionColor: Theme.accent
    selectedTextColor: "white"
    selectByMouse: true
    maximumLength: 16
    renderType: Text.NativeRendering

    Accessible.name: "Hex color"
    Accessible.description: wrong ? "Not a color" : ""

    function showState() {
        text = choice.hexText
        wrong = false
    }
    function take(): bool {
        wrong = !choice.pickHex(text)
        return !wrong
    }

    function leave(event: KeyEvent) {
        take()
        event.accepted = false
    }

    Component.onCompleted: showState()
    onTextEdited: wrong = !choice.typeHex(text)
    onAccepted: {
        if (take())
            showState()
        selectAll()
    }
    onActiveFocusChanged: {
        if (activeFocus)
            return selectAll()
        showState()
    }
    Keys.onTabPressed: event => leave(event)
    Keys.onBacktabPressed: event => leave(event)
    Connections {
        target: entry.choice
        function onColorChanged() {
            if (!entry.activeFocus)
                entry.showState()
        }
    }

    background: Rectangle {
        radius: 7
        color: entry.wrong ? Theme.faded(Theme.stopHi, 0.16) : Theme.white(0.08)
        border.width: 1
        border.color: entry.wrong ? Theme.stopHi : entry.activeFocus ? Theme.accent : Theme.white(0.12)
    }
}
