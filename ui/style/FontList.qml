// The families of the font menu; its rows are FontRows. Only those in sight exist, and only their fonts are loaded.
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls
import Korvane.Style

ListView {
    id: list

    property string chosen: ""
    readonly property real rowHeight: 30
    signal picked(line: int)

    /// Goes to a line, or to the first one where there is none.
    function show(line: int) {
        currentIndex = Math.max(0, line)
        positionViewAtIndex(currentIndex, line < 0 ? ListView.Beginning : ListView.Center)
    }
    function turnPage(key: int): bool {
        const page = Math.max(1, Math.floor(height / rowHeight) - 1)
        if (key === Qt.Key_PageDown)
            currentIndex = Math.min(count - 1, currentIndex + page)
        else if (key === Qt.Key_PageUp)
            currentIndex = Math.max(0, currentIndex - page)
        else
            return false
        return true
    }

    clip: true
    reuseItems: true
    cacheBuffer: 0
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    T.ScrollBar.vertical: ThinScrollBar {}

    Accessible.role: Accessible.List
}
