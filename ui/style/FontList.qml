// The families of the font menu; its rows are FontRows. Only those in sight exist, and only their fonts are loaded.
import QtQuick
import Korvane.Controls

ChoiceList {
    id: list

    rowHeight: 30

    /// Marks a line and goes to it, or to the first one where there is none.
    function show(line: int) {
        chosen = line
        currentIndex = Math.max(0, line)
        positionViewAtIndex(currentIndex, line < 0 ? ListView.Beginning : ListView.Center)
    }

    reuseItems: true
    cacheBuffer: 0
}
