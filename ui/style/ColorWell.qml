// Shows a colour and opens the chooser for it.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

T.AbstractButton {
    id: well

    required property string name
    required property color color
    signal picked(color color)

    implicitWidth: 46
    implicitHeight: 22
    focusPolicy: Qt.StrongFocus
    checkable: false

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: choice.hexText
    Accessible.onPressAction: clicked()

    readonly property alias opened: chooser.visible
    readonly property ColorState choice: ColorState {
        color: well.color
        onPicked: color => well.picked(color)
    }

    function toggleChooser() {
        if (chooser.opened)
            chooser.close()
        else {
            chooser.byKeys = visualFocus
            chooser.open()
        }
    }
    onClicked: toggleChooser()
    onVisibleChanged: {
        if (!visible)
            chooser.close()
    }
    Keys.onReturnPressed: toggleChooser()
    Keys.onEnterPressed: toggleChooser()

    background: Swatch {
        color: well.color
        scale: well.pressed ? 0.96 : 1
    }

    FocusRing {
        shown: well.visualFocus
        cornerRadius: 7
    }

    ColorChooser {
        id: chooser
        choice: well.choice
        name: well.name
        y: well.height + 8
        x: (well.width - width) / 2
        onClosed: {
            if (well.visible)
                well.forceActiveFocus(chooser.byKeys ? Qt.TabFocusReason : Qt.PopupFocusReason)
        }
    }
}
