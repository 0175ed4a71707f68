// The open list of a MenuPicker: rows of one height under the keys. Its rows are MenuRows.
// Properties: those of ChoiceList, choices, font. Signals: picked(int index), escaped().
import QtQuick
import Korvane.Controls

ChoiceList {
    id: list

    required property MenuChoices choices
    property font font
    signal escaped

    focus: true
    keyNavigationEnabled: true
    implicitHeight: count * rowHeight

    Keys.onPressed: event => {
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Space:
            list.picked(currentIndex);
            return;
        case Qt.Key_Escape:
            list.escaped();
            return;
        case Qt.Key_Home:
            currentIndex = 0;
            return;
        case Qt.Key_End:
            currentIndex = count - 1;
            return;
        }
        if (list.turnPage(event.key))
            return;
        const found = choices.typed(event.text, currentIndex);
        event.accepted = found >= 0;
        if (found >= 0)
            currentIndex = found;
    }
}
