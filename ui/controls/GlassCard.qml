// The container of every card: its content padded, on a rounded translucent ground with a fine border.
import QtQuick
import Korvane.Controls

Item {
    id: card

    property real verticalPadding: 14
    property real horizontalPadding: 16
    default property alias content: inner.data

    implicitWidth: inner.childrenRect.width + 2 * horizontalPadding
    implicitHeight: inner.childrenRect.height + 2 * verticalPadding

    Rectangle {
        anchors.fill: parent
        radius: Theme.cardRadius
        // The window's ground is a smooth gradient, which a blur leaves as it is: the translucent material is
        // its veil alone.
        color: Theme.white(0.05)
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.cardRadius
        color: Theme.faded(Theme.cardFill, 0.45)
        border.width: 1
        border.color: Theme.white(0.09)
    }
    Item {
        id: inner
        anchors.fill: parent
        anchors.leftMargin: card.horizontalPadding
        anchors.rightMargin: card.horizontalPadding
        anchors.topMargin: card.verticalPadding
        anchors.bottomMargin: card.verticalPadding
    }
}
