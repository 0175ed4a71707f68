// The rows of an open menu, one of them under the keys: what a MenuList and a list of fonts share. Its rows are ChoiceRows.
// Properties: model, currentIndex (where the keys are), chosen (the row with the mark), rowHeight. Signals: picked(int index).
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

ListView {
    id: list

    property int chosen: -1
    property real rowHeight: 26
    signal picked(index: int)

    // Where the pointer was seen last, in the window.
    property point pointer
    property bool pointerSeen: false

    /// Told by the row under the pointer. Only a pointer that moves takes the keys' place: a list also opens under a
    /// resting one, and scrolls under it while the keys are used.
    function pointAt(index: int, place: point) {
        if (pointerSeen && Math.abs(place.x - pointer.x) < 0.5 && Math.abs(place.y - pointer.y) < 0.5)
            return;
        if (pointerSeen)
            currentIndex = index;
        pointer = place;
        pointerSeen = true;
    }
    /// Goes a page on or back, leaving one row in sight. Returns false for any other key.
    function turnPage(key: int): bool {
        const page = Math.max(1, Math.floor(height / rowHeight) - 1);
        if (key === Qt.Key_PageDown)
            currentIndex = Math.min(count - 1, currentIndex + page);
        else if (key === Qt.Key_PageUp)
            currentIndex = Math.max(0, currentIndex - page);
        else
            return false;
        return true;
    }

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    onVisibleChanged: pointerSeen = false
    T.ScrollBar.vertical: ThinScrollBar {}

    Accessible.role: Accessible.List
}
