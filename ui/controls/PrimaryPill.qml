// The button for the next thing to do.
// Properties and signals: those of PillButtonBody (text, iconName, name, enabled; clicked()).
import QtQuick
import Korvane.Controls

PillButtonBody {
    fillFrom: Theme.accent
    fillTo: Theme.accentLo
}
