// The reel as it plays, with the line that is being said over it: everything that a preview shows. Space plays and pauses.
// Properties: source, subtitle ("" for none), reelTexts, radius (of the corners), and the style's. Signals: toggleRequested().
import QtQuick
import Korvane.Controls
import Korvane.Player

KeyFocusItem {
    id: area

    required property PreviewSource source
    required property string subtitle
    required property list<string> reelTexts
    required property string fontPostscriptName
    required property real fontSize
    required property color textColor
    required property bool hasShadow
    required property real verticalPosition
    required property bool hasPopAnimation
    property real radius: 10

    signal toggleRequested

    activeFocusOnTab: true
    Accessible.role: Accessible.Graphic
    Accessible.name: "Reel preview"
    Accessible.description: "Space plays and pauses"
    Accessible.focusable: true
    Accessible.onPressAction: area.toggleRequested()
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            area.toggleRequested();
    }

    // Until the first picture comes.
    ContinuousRectangle {
        anchors.fill: parent
        visible: !picture.hasPicture
        radius: area.radius
        color: "black"
    }
    PlayerView {
        id: picture
        objectName: "playerView"
        anchors.fill: parent
        source: area.source
        radius: area.radius
    }
    SubtitleLine {
        anchors.fill: parent
        radius: area.radius
        subtitle: area.subtitle
        reelTexts: area.reelTexts
        fontPostscriptName: area.fontPostscriptName
        fontSize: area.fontSize
        textColor: area.textColor
        hasShadow: area.hasShadow
        verticalPosition: area.verticalPosition
        hasPopAnimation: area.hasPopAnimation
    }
    FocusRing {
        shown: area.visualFocus
        cornerRadius: area.radius
    }
}
