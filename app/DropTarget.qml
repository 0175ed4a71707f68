// Takes a video that is dropped anywhere on the window, and says so while one hovers over it.
import QtQuick
import Korvane.App
import Korvane.Controls

DropArea {
    id: area

    required property ContentView view

    onEntered: drag => drag.accepted = drag.hasUrls && area.view.acceptsDrop(drag.urls)
    onDropped: drop => {
        drop.accept(Qt.CopyAction);
        area.view.openDroppedFiles(drop.urls);
    }

    Rectangle {
        id: sign

        anchors.fill: parent
        anchors.margins: 6
        visible: area.containsDrag
        radius: Theme.cardRadius
        color: Theme.faded(Theme.bgTop, 0.72)
        border.width: 2
        border.color: Theme.accent

        Text {
            anchors.centerIn: parent
            text: "Drop the video to load it"
            font.pixelSize: 20
            font.weight: Font.DemiBold
            color: Theme.white(0.95)
        }
    }
}
