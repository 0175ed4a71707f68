// The button that stops what runs.
// Properties and signals: those of PillButtonBody (text, iconName, name, enabled; clicked()).
import QtQuick
import Korvane.Controls

PillButtonBody {
    fillFrom: Theme.stopHi
    fillTo: Theme.stopLo
}
