// The name of the program, the language that is spoken in the video, and the quiet way to the models that hear it.
import QtQuick
import Korvane.Controls

GlassCard {
    id: card

    required property list<string> languageNames
    required property int languageIndex
    required property bool languageEnabled
    property bool modelsOffered: false
    property string downloadText: ""  // of models; empty when none comes

    signal languagePicked(int index)
    signal modelsRequested(byKeys: bool)

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
        id: picker
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
    // After the picker, which is what a person comes for, also by the Tab key.
    LinkButton {
        id: models
        objectName: "speechModels"
        anchors.right: picker.left
        anchors.rightMargin: 14
        anchors.verticalCenter: names.verticalCenter
        visible: card.modelsOffered
        text: card.downloadText.length > 0 ? card.downloadText : "Speech models…"
        name: "Speech models…"
        color: Theme.white(0.45)
        Accessible.description: card.downloadText
        size: 12
        onClicked: card.modelsRequested(models.visualFocus)
    }
}
