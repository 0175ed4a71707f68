// The words, scrolling: one stop of the Tab key, with a ring around the word that has the keyboard. Whoever places it
// gives it a scroll bar where there is room for one.
import QtQuick
import Korvane.Controls
import Korvane.Words

Flickable {
    id: area

    required property WordListModel words
    property bool reactive: true
    readonly property alias flow: flow

    signal toggled(int index)

    contentWidth: width
    contentHeight: flow.implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    WordFlow {
        id: flow
        objectName: "flow"
        width: area.width
        height: Math.max(implicitHeight, area.height)
        model: area.words
        reactive: area.reactive
        viewportY: area.contentY
        viewportHeight: area.height
        delegate: WordToken {
            enabled: area.reactive
        }
        onToggled: index => area.toggled(index)
        onScrollRequested: y => area.contentY = y

        Accessible.role: Accessible.List
        Accessible.name: "Words"
        Accessible.focusable: true
    }
    Item {
        x: flow.currentRect.x
        y: flow.currentRect.y
        width: flow.currentRect.width
        height: flow.currentRect.height

        FocusRing {
            objectName: "ring"
            shown: flow.showsFocus
            // As wide as the padding around the words allows.
            gap: 0
            cornerRadius: 6
        }
    }
}
