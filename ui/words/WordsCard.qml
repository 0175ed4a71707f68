// The card of the recognised words: how many there are, two shortcuts, and the words to choose from.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Words

GlassCard {
    id: card

    required property WordListModel words
    required property string title
    required property bool hasWords
    required property string emptyText
    required property bool active

    signal tokenToggled(int index)
    signal allChosen
    signal noneChosen

    /// What takes the keyboard: the words, none while there are none.
    readonly property Item keyboardTarget: hasWords ? area.flow : null

    // A click beside the words is meant for them.
    TapHandler {
        enabled: card.hasWords
        onTapped: area.flow.forceActiveFocus(Qt.MouseFocusReason)
    }
    Item {
        id: header
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        height: title.implicitHeight

        CardTitle {
            id: title
            objectName: "title"
            text: card.title
        }
        Row {
            id: shortcuts
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: card.hasWords
            spacing: 10

            LinkButton {
                objectName: "all"
                text: "All"
                color: Theme.accent
                size: 11
                weight: Font.Medium
                enabled: !card.active
                onClicked: card.allChosen()
            }
            Text {
                text: "·"
                Accessible.ignored: true
                font.pixelSize: 11
                color: Theme.white(0.25)
            }
            LinkButton {
                objectName: "none"
                text: "None"
                color: Theme.white(0.45)
                size: 11
                weight: Font.Medium
                enabled: !card.active
                onClicked: card.noneChosen()
            }
        }
    }
    Item {
        id: body
        anchors.top: header.bottom
        anchors.topMargin: 10
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right

        WordArea {
            id: area
            objectName: "area"
            anchors.fill: parent
            visible: card.hasWords
            words: card.words
            reactive: !card.active
            onToggled: index => card.tokenToggled(index)

            // In the card's margin, so that it covers no word.
            T.ScrollBar.vertical: ThinScrollBar {
                objectName: "scrollBar"
                parent: body
                anchors.top: area.top
                anchors.bottom: area.bottom
                anchors.left: area.right
                anchors.leftMargin: 3
            }
        }
        Column {
            objectName: "empty"
            anchors.centerIn: parent
            visible: !card.hasWords && body.height >= height
            spacing: 10

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                name: "text.bubble"
                size: 28
                color: Theme.white(0.18)
            }
            Text {
                objectName: "emptyText"
                width: Math.min(implicitWidth, body.width)
                anchors.horizontalCenter: parent.horizontalCenter
                text: card.emptyText
                Accessible.role: Accessible.StaticText
                Accessible.name: text
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.pixelSize: 13
                color: Theme.white(0.3)
            }
        }
    }
}
