// The name of the program, and the language that is spoken in the video.
import QtQuick
import QtQuick.Layouts
import Korvane.Controls

GlassCard {
    id: card

    required property list<string> languageNames
    required property int languageIndex
    required property bool languageEnabled

    signal languagePicked(int index)

    implicitHeight: row.implicitHeight + 2 * verticalPadding

    RowLayout {
        id: row
        anchors.fill: parent
        spacing: 12

        Column {
            Layout.fillWidth: true
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
            }
        }

        MenuPicker {
            Layout.preferredWidth: 176
            Layout.alignment: Qt.AlignVCenter
            objectName: "languagePicker"
            model: card.languageNames
            currentIndex: card.languageIndex
            enabled: card.languageEnabled
            name: "Spoken language"
            size: 13
            onPicked: index => card.languagePicked(index)
        }
    }
}
