// The reel in its upright frame while there is one to see, or where it will be.
import QtQuick
import Korvane.Controls
import Korvane.Player

GlassCard {
    id: card

    required property bool hasPreview
    required property PreviewSource source
    required property string subtitle
    required property list<string> reelTexts
    // The style of the subtitles.
    required property string fontPostscriptName
    required property real fontSize
    required property color textColor
    required property bool hasShadow
    required property real verticalPosition
    required property bool hasPopAnimation

    signal closeRequested
    signal toggleRequested
    /// The area with the picture is there; then, that it is gone.
    signal appeared
    signal disappeared

    /// The width that gives the frame all of a height.
    function widthForHeight(cardHeight: real): real {
        const frameHeight = cardHeight - 2 * verticalPadding - header.height - header.spacingBelow;
        return frameHeight * 9 / 16 + 2 * horizontalPadding;
    }

    /// Gives the keyboard to the picture.
    function takeFocus() {
        player.forceActiveFocus(Qt.OtherFocusReason);
    }

    onHasPreviewChanged: {
        if (hasPreview)
            card.appeared();
        else
            card.disappeared();
    }

    CardTitle {
        id: header
        readonly property real spacingBelow: 10
        iconName: "play.rectangle.fill"
        iconSize: 14
        text: "Reel Preview"
    }
    PlainIconButton {
        objectName: "closePreview"
        // The symbol, not its reach, ends where the card's content ends.
        anchors.right: parent.right
        anchors.rightMargin: -padding
        anchors.verticalCenter: header.verticalCenter
        visible: card.hasPreview
        iconName: "xmark.circle.fill"
        name: "Close preview"
        onClicked: card.closeRequested()
    }

    Item {
        id: area
        anchors.top: header.bottom
        anchors.topMargin: header.spacingBelow
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom

        Item {
            id: frame
            // As large as fits, on whole points.
            width: Math.round(Math.min(area.width, area.height * 9 / 16))
            height: Math.round(Math.min(area.height, area.width * 16 / 9))
            x: Math.round((area.width - width) / 2)
            y: Math.round((area.height - height) / 2)

            PlayerArea {
                id: player
                anchors.fill: parent
                visible: card.hasPreview
                source: card.source
                subtitle: card.subtitle
                reelTexts: card.reelTexts
                fontPostscriptName: card.fontPostscriptName
                fontSize: card.fontSize
                textColor: card.textColor
                hasShadow: card.hasShadow
                verticalPosition: card.verticalPosition
                hasPopAnimation: card.hasPopAnimation
                onToggleRequested: card.toggleRequested()
            }
            ContinuousRectangle {
                objectName: "previewPlaceholder"
                anchors.fill: parent
                visible: !card.hasPreview
                radius: 10
                color: Theme.white(0.035)
                borderWidth: 1
                borderColor: Theme.white(0.06)

                Column {
                    anchors.centerIn: parent
                    spacing: 10

                    Icon {
                        name: "play.circle"
                        size: 36
                        color: Theme.white(0.14)
                        anchors.horizontalCenter: parent.horizontalCenter
                    }
                    Text {
                        text: "Preview will appear here"
                        color: Theme.white(0.2)
                        font.pixelSize: 11
                        anchors.horizontalCenter: parent.horizontalCenter
                        Accessible.role: Accessible.StaticText
                        Accessible.name: text
                    }
                }
            }
        }
    }
}
