// The name of the program, and the language that is spoken in the video.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    required property list<string> languageNames
    required property int languageIndex
    required property bool languageEnabled

    signal languagePicked(int index)

    implicitHeight: names.height + 2 * verticalPadding

    Column {
        id: names
        spacing: 1

        Text {
            text: "Korvane"
            color: "white"
            font.pixelSize: 20
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Text {
            text: "Speech Transcription"
            color: Theme.white(0.45)
            font.pixelSize: 12
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    MenuPicker {
        objectName: "languagePicker"
        anchors.right: parent.right
        anchors.verticalCenter: names.verticalCenter
        width: 176
        name: "Spoken language"
        size: 13
        model: card.languageNames
        currentIndex: card.languageIndex
        enabled: card.languageEnabled
        onPicked: index => card.languagePicked(index)
    }
}
