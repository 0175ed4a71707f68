// Below the list of speech models: what went wrong, the file that a person has already, and where models lie.
import QtQuick
import Korvane.Controls

Item {
    id: footer

    required property string problem
    required property string addingText  // empty unless a file is being copied
    required property real addingFraction
    required property string folder

    signal fileRequested

    /// Without a folder for them there is nothing to choose a file for.
    readonly property bool takesFiles: folder.length > 0

    implicitHeight: takesFiles ? choose.y + choose.height : problemText.implicitHeight

    Icon {
        id: sign
        visible: footer.problem.length > 0
        name: "exclamationmark.triangle.fill"
        size: 14
        color: Theme.orange
        y: 1
    }
    Text {
        id: problemText
        objectName: "modelProblem"
        anchors.left: sign.right
        anchors.leftMargin: 8
        anchors.right: parent.right
        visible: footer.problem.length > 0
        text: footer.problem
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        maximumLineCount: 4
        elide: Text.ElideRight
        color: Theme.white(0.85)
        font.pixelSize: 12
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    GhostPill {
        id: choose
        objectName: "chooseModelFile"
        y: problemText.visible ? problemText.implicitHeight + 14 : 0
        text: "Choose a file…"
        name: "Choose a model file"
        visible: footer.takesFiles
        enabled: footer.addingText.length === 0
        onClicked: footer.fileRequested()
    }
    Item {
        visible: footer.takesFiles
        anchors.left: choose.right
        anchors.leftMargin: 14
        anchors.right: parent.right
        anchors.verticalCenter: choose.verticalCenter
        height: hint.implicitHeight + 3 + place.implicitHeight

        Text {
            id: hint
            width: parent.width
            visible: footer.addingText.length === 0
            text: "Have a model file already? Choose it, or drop it here."
            elide: Text.ElideRight
            color: Theme.white(0.5)
            font.pixelSize: 12
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Text {
            id: adding
            objectName: "addingText"
            visible: footer.addingText.length > 0
            width: parent.width - bar.width - 10
            text: footer.addingText
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            color: Theme.white(0.7)
            font.pixelSize: 12
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ProgressBar {
            id: bar
            visible: adding.visible
            anchors.right: parent.right
            anchors.verticalCenter: adding.verticalCenter
            width: 110
            height: 5
            fraction: footer.addingFraction
            fillWidth: width * footer.addingFraction
            name: "Copying the model file"
        }
        Text {
            id: place
            objectName: "modelFolder"
            anchors.bottom: parent.bottom
            width: parent.width
            text: footer.folder
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            color: Theme.white(0.35)
            font.pixelSize: 11
            Accessible.role: Accessible.StaticText
            Accessible.name: "Models lie in " + text

            HoverHandler {
                id: placeHover
            }
            ToolTipBubble {
                text: footer.folder
                visible: placeHover.hovered && place.truncated
            }
        }
    }
}
