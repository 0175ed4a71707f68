// The open list of a MenuPicker: rows of one height under the keys. Its rows are MenuRows.
// Properties: model, currentIndex (where the keys are), chosen (the row with the mark), choices, font, rowHeight.
// Signals: picked(int index), escaped().
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

ListView {
    id: list

    required property MenuChoices choices
    property int chosen: -1
    property font font
    readonly property real rowHeight: 26
    signal picked(index: int)
    signal escaped

    clip: true
    focus: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    keyNavigationEnabled: true
    implicitHeight: count * rowHeight
    T.ScrollBar.vertical: ThinScrollBar {}

    Accessible.role: Accessible.List

    Keys.onPressed: event => {
        const pageRows = Math.max(1, Math.floor(height / rowHeight) - 1);
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
        case Qt.Key_PageDown:
            currentIndex = Math.min(count - 1, currentIndex + pageRows);
            return;
        case Qt.Key_PageUp:
            currentIndex = Math.max(0, currentIndex - pageRows);
            return;
        }
        const found = choices.typed(event.text, currentIndex);
        event.accepted = found >= 0;
        if (found >= 0)
            currentIndex = found;
    }
}
