// The speech models, on a sheet over the window: what can be had, what is here, which one is in use. Closing it loses
// nothing, downloads go on. Lies over the whole window, as a file may be dropped anywhere while it is open.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

Item {
    id: sheet

    required property var rows  // a list model with the properties of ModelRow
    required property bool ready  // something is known to be shown
    required property bool hasInstalled
    required property string problem
    required property string folder
    required property string addingText
    required property real addingFraction
    required property real cornerRadius  // of the window
    readonly property alias opened: popup.visible

    /// It opens: time to look at what is there.
    signal lookRequested
    signal acted(modelId: string)
    signal removed(modelId: string)
    signal discarded(modelId: string)
    signal used(modelId: string)
    signal fileRequested
    signal dropped(urls: var)
    /// The keys that close the window, which the sheet keeps from it.
    signal leaveRequested
    /// The item that had the keyboard before can no longer take it.
    signal keyboardLeft(reason: int)

    /// Whether what is dragged here may be dropped.
    property var acceptsDrop: urls => true

    property Item opener: null
    property bool byKeys: false
    property bool pending: false
    property bool owesKeyboard: false
    property bool gives: true  // as soon as it is closed

    /// \param shows  whether a ring shows where the keyboard is.
    function open(shows: bool) {
        if (opened)
            return;
        opener = Window.activeFocusItem;
        byKeys = shows;
        owesKeyboard = true;
        gives = true;
        sheet.lookRequested();
        if (ready)
            popup.open();
        else
            pending = true;
    }
    /// As whoever asks something over it does, and calls giveBack() after.
    function makeWay() {
        gives = false;
        pending = false;
        popup.close();
    }
    /// Gives the keyboard back to whoever had it before; once.
    function giveBack() {
        if (!owesKeyboard)
            return;
        owesKeyboard = false;
        const reason = byKeys ? Qt.TabFocusReason : Qt.OtherFocusReason;
        if (opener !== null && opener.visible && opener.enabled)
            opener.forceActiveFocus(reason);
        else
            sheet.keyboardLeft(reason);
        opener = null;
    }

    // Rather a moment later than empty and then growing.
    onReadyChanged: {
        if (ready && pending)
            popup.open();
        pending = false;
    }

    Rectangle {
        anchors.fill: parent
        radius: sheet.cornerRadius
        color: "black"
        visible: popup.visible
        opacity: 0.5 * popup.opacity
    }
    DropArea {
        id: drop
        anchors.fill: parent
        visible: sheet.opened  // switched off it would lie over the whole window
        onEntered: drag => drag.accepted = drag.hasUrls && sheet.acceptsDrop(drag.urls)
        onDropped: event => {
            event.accept(Qt.CopyAction);
            sheet.dropped(event.urls);
        }
    }

    T.Popup {
        id: popup
        x: Math.round((sheet.width - width) / 2)
        y: Math.round((sheet.height - height) / 2)
        width: Math.min(600, sheet.width - 2 * Theme.gap)
        height: body.height + 2 * padding
        padding: 20
        modal: true
        dim: false
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        // Whoever presses Enter without having looked downloads nothing.
        onOpened: cross.forceActiveFocus(sheet.byKeys ? Qt.TabFocusReason : Qt.OtherFocusReason)
        onClosed: if (sheet.gives)
            sheet.giveBack()

        enter: Transition {
            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: 140
                easing.type: Easing.OutCubic
            }
        }
        exit: Transition {
            NumberAnimation {
                property: "opacity"
                to: 0
                duration: 110
            }
        }

        background: Rectangle {
            radius: Theme.cardRadius
            color: drop.containsDrag ? Qt.lighter(Theme.popupFill, 1.12) : Theme.popupFill
            border.width: drop.containsDrag ? 2 : 1
            border.color: drop.containsDrag ? Theme.accent : Theme.white(0.14)
        }

        Item {
            id: body
            objectName: "modelsSheet"
            width: parent.width
            height: footer.y + footer.height
            Accessible.role: Accessible.Dialog
            Accessible.name: title.text
            Accessible.description: lead.text

            Shortcut {
                sequences: ["Ctrl+Q", "Ctrl+W"]
                enabled: sheet.opened
                onActivated: sheet.leaveRequested()
            }
            Text {
                id: title
                text: "Speech models"
                color: "white"
                font.pixelSize: 16
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Text {
                id: lead
                anchors.top: title.bottom
                anchors.topMargin: 4
                width: parent.width
                text: list.height > 0 ? "They understand all nine languages and work on this computer alone. Larger ones understand better." : "There are none for this Korvane."
                color: Theme.white(0.55)
                font.pixelSize: 12
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            ContinuousRectangle {
                id: frame
                visible: list.height > 0
                anchors.top: lead.bottom
                anchors.topMargin: 16
                width: parent.width
                height: view.height + 2
                radius: 10
                color: Theme.white(0.035)
                borderWidth: 1
                borderColor: Theme.white(0.07)

                Flickable {
                    id: view
                    objectName: "modelList"
                    x: 1
                    y: 1
                    width: parent.width - 2
                    height: Math.min(list.height, sheet.height - 2 * Theme.gap - 2 * popup.padding - frame.y - 20 - footer.height)
                    contentHeight: list.height
                    boundsBehavior: Flickable.StopAtBounds
                    interactive: contentHeight > height
                    clip: interactive
                    T.ScrollBar.vertical: ThinScrollBar {}
                    Accessible.role: Accessible.List
                    Accessible.name: title.text

                    /// Brings into sight what took the keyboard.
                    function follow(item: Item) {
                        contentY = Math.max(item.y + item.height - height, Math.min(contentY, item.y));
                    }

                    Column {
                        id: list
                        width: view.width

                        Repeater {
                            model: sheet.rows
                            delegate: ModelRow {
                                id: modelRow
                                required property int index
                                width: list.width
                                isFirst: index === 0
                                hasRadios: sheet.hasInstalled
                                onActiveFocusChanged: if (activeFocus)
                                    view.follow(modelRow)
                                onActed: sheet.acted(modelId)
                                onRemoved: sheet.removed(modelId)
                                onDiscarded: sheet.discarded(modelId)
                                onUsed: sheet.used(modelId)
                            }
                        }
                    }
                }
            }
            ModelsFooter {
                id: footer
                anchors.top: frame.bottom
                anchors.topMargin: 16
                width: parent.width
                problem: sheet.problem
                addingText: sheet.addingText
                addingFraction: sheet.addingFraction
                folder: sheet.folder
                onFileRequested: sheet.fileRequested()
            }
            // Last in the order of the Tab key.
            PlainIconButton {
                id: cross
                objectName: "closeModels"
                anchors.right: parent.right
                anchors.rightMargin: -padding
                anchors.verticalCenter: title.verticalCenter
                iconName: "xmark.circle.fill"
                name: "Close speech models"
                onClicked: popup.close()
            }
        }
    }
}
