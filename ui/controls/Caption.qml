// A small faint label beside a control. A plain Text: every property may be set.
import QtQuick
import Korvane.Controls

Text {
    textFormat: Text.PlainText
    color: Theme.white(0.45)
    font.pixelSize: 11
    verticalAlignment: Text.AlignVCenter
}
