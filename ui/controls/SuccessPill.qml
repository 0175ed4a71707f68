// The button that finishes the work.
// Properties and signals: those of PillButtonBody (text, iconName, name, enabled; clicked()).
import QtQuick
import Korvane.Controls

PillButtonBody {
    fillFrom: Qt.rgba(0.18, 0.75, 0.45, 1)
    fillTo: Qt.rgba(0.1, 0.55, 0.3, 1)
}
