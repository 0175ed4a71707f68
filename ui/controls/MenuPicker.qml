// A pop-up menu that shows the chosen one of some labels and offers the others.
// Properties: model (list of strings), currentIndex (a binding on it stays bound: picking only tells), name (for
// assistive tools), size (pixels of the text), fits (as wide as the widest label if no width is set), enabled.
// Signals: picked(int index). Keys: Space, Enter, arrows open it; letters go to the label that begins so; in the list
// arrows, Home, End, Page keys, letters, Enter picks, Escape leaves.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.AbstractButton {
    id: picker

    property var model: []
    property int currentIndex: -1
    property string name: ""
    property real size: 12
    readonly property alias opened: menu.visible
    signal picked(index: int)

    function openMenu() {
        if (!enabled || list.count === 0)
            return;
        list.currentIndex = Math.max(0, currentIndex);
        menu.open();
    }

    function pick(index: int) {
        menu.close();
        if (index >= 0 && index !== currentIndex)
            picked(index);
    }

    implicitWidth: menuChoices.widest + leftPadding + rightPadding + 18
    implicitHeight: Theme.controlHeight
    leftPadding: 9
    rightPadding: 7
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4
    font.family: Theme.fontFamily
    font.pixelSize: size
    text: menuChoices.labels.length > 0 ? menuChoices.at(currentIndex) : ""
    onClicked: openMenu()

    Accessible.role: Accessible.ComboBox
    Accessible.name: name
    Accessible.description: text
    Accessible.onPressAction: picker.openMenu()

    Keys.onPressed: event => {
        switch (event.key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Up:
        case Qt.Key_Down:
            picker.openMenu();
            event.accepted = true;
            return;
        case Qt.Key_Space:
            return;
        }
        const found = menuChoices.typed(event.text, picker.currentIndex);
        if (found >= 0) {
            event.accepted = true;
            picker.pick(found);
        }
    }

    MenuChoices {
        id: menuChoices
        labels: picker.model
        font: picker.font
    }

    background: ContinuousRectangle {
        radius: Theme.controlRadius
        color: Theme.white(picker.pressed ? 0.15 : picker.hovered || picker.opened ? 0.12 : 0.08)
        borderColor: Theme.white(0.08)
        borderWidth: 1
    }

    contentItem: Item {
        Text {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.rightMargin: 17
            anchors.verticalCenter: parent.verticalCenter
            text: picker.text
            font: picker.font
            color: Theme.white(0.92)
            elide: Text.ElideRight
        }
        Icon {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            name: "chevron.up.chevron.down"
            size: 11
            color: Theme.white(0.55)
        }
    }

    FocusRing {
        shown: picker.visualFocus
        cornerRadius: Theme.controlRadius
    }

    T.Popup {
        id: menu

        x: 0
        y: picker.height + 4
        width: Math.max(picker.width, menuChoices.widest + 2 * padding + 46)
        height: Math.min(list.implicitHeight + 2 * padding, 360)
        padding: 5
        margins: 8
        modal: false
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: list.positionViewAtIndex(list.currentIndex, ListView.Center)

        background: Rectangle {
            radius: 9
            color: Theme.popupFill
            border.width: 1
            border.color: Theme.white(0.14)
        }

        MenuList {
            id: list

            anchors.fill: parent
            model: picker.model
            choices: menuChoices
            chosen: picker.currentIndex
            font: picker.font
            delegate: MenuRow {}
            Accessible.name: picker.name
            onPicked: index => picker.pick(index)
        }
    }
}
