// The button for what is neither next nor last: a flat veil of white.
// Properties and signals: those of PillButtonBody (text, iconName, name, enabled; clicked()).
import QtQuick
import Korvane.Controls

PillButtonBody {
    fillFrom: Theme.white(0.11)
    fillTo: Theme.white(0.11)
}
