// The line that is being said, as it comes in: a new one springs from a little smaller to its size, if the style wants
// that, and the one before is gone at once. Fills the picture that it lies over, beyond which nothing of it is seen.
// Properties: subtitle ("" for none), reelTexts, radius (of the picture's corners), and the style's.
import QtQuick
import Korvane.Controls
import Korvane.Player

Item {
    id: spoken

    required property string subtitle
    required property list<string> reelTexts
    required property string fontPostscriptName
    required property real fontSize
    required property color textColor
    required property bool hasShadow
    required property real verticalPosition
    required property bool hasPopAnimation
    property real radius: 0

    clip: true
    Accessible.role: Accessible.StaticText
    Accessible.name: subtitle
    Accessible.ignored: subtitle.length === 0

    SubtitleOverlay {
        id: line
        objectName: "subtitleLine"
        anchors.fill: parent
        text: spoken.subtitle
        reelTexts: spoken.reelTexts
        fontPostscriptName: spoken.fontPostscriptName
        fontSize: spoken.fontSize
        textColor: spoken.textColor
        hasShadow: spoken.hasShadow
        verticalPosition: spoken.verticalPosition
        radius: spoken.radius
        shownScale: entry.value
        smooth: entry.moving
        transform: Scale {
            origin.x: line.center.x
            origin.y: line.center.y
            xScale: entry.value
            yScale: entry.value
        }
        // A line is another one when it says something else.
        onTextChanged: text.length > 0 ? entry.replay() : entry.jump(1)
    }
    Spring {
        id: entry
        objectName: "subtitleEntry"
        enabled: spoken.hasPopAnimation
        from: 0.78
        to: 1
        response: 0.35
        damping: 0.45
    }
}
