// A pop-up menu that shows the chosen one of some labels and offers the others.
// Properties: model (list of strings), currentIndex (a binding on it stays bound: picking only tells), name (for
// assistive tools), text (the chosen label; set it where one outside the list is to show), size (pixels of the text),
// enabled. As wide as the widest label needs if no width is set.
// Signals: picked(int index). Keys: Space, Enter, arrows open it; letters go to the label that begins so; in the list
// arrows, Home, End, Page keys, letters, Enter picks, Escape leaves.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

KeyFocusItem {
    id: picker

    property var model: []
    property int currentIndex: -1
    property string name: ""
    property string text: menuChoices.labels.length > 0 ? menuChoices.at(currentIndex) : ""
    property real size: 12
    property font font: Theme.font(size)
    readonly property alias opened: menu.visible
    signal picked(index: int)

    // Whether the focus showed when the list opened, so that it shows again after.
    property bool openedByKeys: false

    function openMenu() {
        if (!enabled || list.count === 0)
            return;
        openedByKeys = visualFocus;
        list.currentIndex = Math.max(0, currentIndex);
        menu.open();
    }

    function pick(index: int) {
        menu.close();
        forceActiveFocus(openedByKeys ? Qt.TabFocusReason : Qt.PopupFocusReason);
        if (index >= 0 && index !== currentIndex)
            picked(index);
    }

    implicitWidth: menuChoices.widest + 34
    implicitHeight: Theme.controlHeight
    opacity: enabled ? 1 : 0.4

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
        case Qt.Key_Space:
            picker.openMenu();
            event.accepted = true;
            return;
        }
        const found = menuChoices.typed(event.text, picker.currentIndex);
        if (found >= 0) {
            event.accepted = true;
            picker.openedByKeys = picker.visualFocus;
            picker.pick(found);
        }
    }

    MenuChoices {
        id: menuChoices
        labels: picker.model
        font: picker.font
    }

    ContinuousRectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: Theme.white(mouse.pressed ? 0.15 : mouse.containsMouse || picker.opened ? 0.12 : 0.08)
        borderColor: Theme.white(0.08)
        borderWidth: 1
    }
    Text {
        anchors.left: parent.left
        anchors.leftMargin: 9
        anchors.right: parent.right
        anchors.rightMargin: 24
        anchors.verticalCenter: parent.verticalCenter
        text: picker.text
        font: picker.font
        color: Theme.white(0.92)
        elide: Text.ElideRight
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
    Icon {
        anchors.right: parent.right
        anchors.rightMargin: 7
        anchors.verticalCenter: parent.verticalCenter
        name: "chevron.up.chevron.down"
        size: 11
        color: Theme.white(0.55)
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        // A menu comes up at the press, and a second press puts it away.
        onPressed: {
            picker.forceActiveFocus(Qt.MouseFocusReason);
            if (picker.opened)
                picker.pick(-1);
            else
                picker.openMenu();
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
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
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
            onEscaped: picker.pick(-1)
        }
    }
}
