// The reel in its upright frame, or where it will be.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    /// The width that gives the frame all of a height.
    function widthForHeight(cardHeight: real): real {
        const frameHeight = cardHeight - 2 * verticalPadding - header.height - header.spacingBelow;
        return frameHeight * 9 / 16 + 2 * horizontalPadding;
    }

    CardTitle {
        id: header
        readonly property real spacingBelow: 10
        iconName: "play.rectangle.fill"
        iconSize: 14
        text: "Reel Preview"
    }

    Item {
        id: area
        anchors.top: header.bottom
        anchors.topMargin: header.spacingBelow
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom

        ContinuousRectangle {
            id: placeholder
            objectName: "previewPlaceholder"
            width: Math.min(area.width, area.height * 9 / 16)
            height: width * 16 / 9
            anchors.centerIn: parent
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
