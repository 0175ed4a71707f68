// Picks a font family from however many there are: a list under a search field, each family in its own letters.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

// An item of no kind of its own: assistive tools are told a control's kind whatever its role is set to.
Item {
    id: menu

    required property string name
    required property string family
    required property FontListModel fonts
    signal chosen(string family)

    readonly property alias opened: popup.visible
    /// The keys are here and a pointer did not bring them.
    readonly property bool visualFocus: activeFocus && !byPointer
    property bool byPointer: false

    onActiveFocusChanged: {
        if (!activeFocus && !popup.visible)
            byPointer = false
    }

    implicitWidth: 180
    implicitHeight: Theme.controlHeight
    activeFocusOnTab: true

    Accessible.role: Accessible.ComboBox
    Accessible.name: name
    Accessible.description: family
    Accessible.onPressAction: openMenu()

    function openMenu() {
        fonts.search = ""
        popup.wanted = true
        popup.open()
    }
    function pick(line: int) {
        const picked = fonts.familyAt(line)
        popup.close()
        if (picked !== "")
            chosen(picked)
    }

    Keys.onPressed: event => {
        byPointer = false
        event.accepted = false
    }
    Keys.onSpacePressed: openMenu()
    Keys.onReturnPressed: openMenu()
    Keys.onEnterPressed: openMenu()
    Keys.onUpPressed: openMenu()
    Keys.onDownPressed: openMenu()

    ContinuousRectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: Theme.white(mouse.pressed ? 0.15 : mouse.containsMouse || popup.visible ? 0.12 : 0.08)
        borderColor: Theme.white(0.08)
        borderWidth: 1
    }
    Item {
        anchors { fill: parent; leftMargin: 9; rightMargin: 7 }
        Text {
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
            anchors.rightMargin: 17
            text: menu.family
            textFormat: Text.PlainText
            color: Theme.white(0.92)
            font.pixelSize: 12
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        Icon {
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            name: "chevron.up.chevron.down"
            size: 11
            color: Theme.white(0.55)
        }
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: {
            menu.byPointer = true
            if (popup.opened)
                popup.close()
            else
                menu.openMenu()
        }
    }

    FocusRing {
        shown: menu.visualFocus
        cornerRadius: Theme.controlRadius
    }

    T.Popup {
        id: popup

        y: menu.height + 6
        width: Math.max(280, Math.min(menu.width, 380))
        // Stays as it is while a search narrows the list, so that nothing jumps under the pointer.
        height: Math.min(400, menu.Window.height - 2 * margins)
        padding: 8
        margins: 8
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

        // No font is loaded for a list that nobody looks at.
        property bool wanted: false

        onAboutToShow: {
            search.text = ""
            list.forceLayout()
            list.show(menu.fonts.indexOf(menu.family))
        }
        onOpened: search.forceActiveFocus(Qt.PopupFocusReason)
        onClosed: {
            wanted = false
            menu.forceActiveFocus(Qt.PopupFocusReason)
        }

        background: Rectangle {
            radius: 10
            color: Theme.popupFill
            border.width: 1
            border.color: Theme.white(0.14)
        }

        SearchField {
            id: search
            anchors { left: parent.left; right: parent.right; top: parent.top }
            name: "Search fonts"
            onTextEdited: {
                menu.fonts.search = text
                list.show(menu.fonts.indexOf(menu.family))
            }
            onAccepted: menu.pick(list.currentIndex)
            Keys.onDownPressed: list.incrementCurrentIndex()
            Keys.onUpPressed: list.decrementCurrentIndex()
            Keys.onPressed: event => event.accepted = list.turnPage(event.key)
        }
        FontList {
            id: list
            objectName: "families"
            anchors { left: parent.left; right: parent.right; top: search.bottom; bottom: parent.bottom }
            anchors.topMargin: 8
            model: popup.wanted ? menu.fonts : null
            delegate: FontRow {}
            // The families may come while the menu is open.
            onCountChanged: show(menu.fonts.indexOf(menu.family))
            Accessible.name: menu.name
            onPicked: line => menu.pick(line)
        }
        Text {
            anchors.centerIn: list
            objectName: "nothing"
            visible: text !== ""
            text: menu.fonts.emptyText
            color: Theme.white(0.45)
            font.pixelSize: 12
        }
    }
}
