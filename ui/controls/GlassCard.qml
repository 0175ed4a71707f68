// The container of every card: its content padded, on a rounded translucent ground with a fine border.
// Properties: verticalPadding, horizontalPadding (points). The first child gives the card its implicit size: by its own
// implicit size, or by its height if that is set; it may be anchored to fill where the card's size comes from outside.
import QtQuick
import Korvane.Controls

Item {
    id: card

    property real verticalPadding: 14
    property real horizontalPadding: 16
    default property alias content: inner.data
    readonly property Item body: inner.children.length > 0 ? inner.children[0] : null
    readonly property real bodyHeight: body === null ? 0 : body.anchors.fill ? body.implicitHeight
                                                                            : Math.max(body.implicitHeight, body.height)

    implicitWidth: (body ? body.implicitWidth : 0) + 2 * horizontalPadding
    implicitHeight: bodyHeight + 2 * verticalPadding

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
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.cardRadius
        // Over the fill and inside the shape, as wide as a point at every scale.
        color: "transparent"
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
