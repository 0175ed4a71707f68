import QtQuick
import Korvane.App
import Korvane.Controls
Item { id: screen
 required property ContentView view
 GlassCard { anchors.fill: parent
  Column { spacing: 8
   Text { text: screen.view.statusText + " / " + screen.view.fileNameText + " / " + screen.view.errorText + " / " + screen.view.percentText; color: "white"; font.pixelSize: 13 }
   PrimaryPill { text: "Load"; onClicked: screen.view.openFilePicker() }
   PrimaryPill { text: "Transcribe"; onClicked: screen.view.startTranscription() }
   }
 }
}
