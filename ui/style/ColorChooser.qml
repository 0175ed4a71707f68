// Picks a colour; each change counts at once. Opens beside the well that it belongs to, inside the window.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

T.Popup {
    id: chooser

    required property ColorState choice
    required property string name
    /// Whether the keys open it, so that the focus shows in it too.
    property bool byKeys: false

    // What assistive tools are told of is the item that a popup makes around its content.
    Component.onCompleted: contentItem.parent.Accessible.name = name

    width: 240
    padding: 12
    margins: 8
    height: column.implicitHeight + 2 * padding
    modal: false
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    onOpened: field.forceActiveFocus(byKeys ? Qt.TabFocusReason : Qt.PopupFocusReason)

    background: Rectangle {
        radius: 10
        color: Theme.popupFill
        border.width: 1
        border.color: Theme.white(0.14)
    }

    Column {
        id: column
        width: chooser.availableWidth
        spacing: 12

        ColorField {
            id: field
            choice: chooser.choice
            width: column.width
        }
        HueStrip {
            choice: chooser.choice
            width: column.width
        }
        Row {
            spacing: 10

            Swatch {
                width: 46
                height: 28
                color: chooser.choice.color
            }
            HexField {
                choice: chooser.choice
                width: column.width - 56
            }
        }
    }
}
