// What a slider is set to. Stands in a column of its own, so that nothing moves with the number's width.
import QtQuick
import Korvane.Controls

Text {
    textFormat: Text.PlainText
    color: Theme.white(0.4)
    font.pixelSize: 11
    horizontalAlignment: Text.AlignRight
    verticalAlignment: Text.AlignVCenter
}
