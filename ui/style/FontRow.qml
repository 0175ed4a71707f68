// One family of the font menu, written in its own letters where they can.
import QtQuick
import Korvane.Controls

ChoiceRow {
    id: row

    required property string family
    required property string sampleFamily

    width: list ? list.width - 10 : 0
    label: family
    font.family: sampleFamily
    font.pixelSize: 15
    // Letters of a thousand fonts are drawn as they come, rather than each kept as a distance field.
    renderType: Text.NativeRendering
}
