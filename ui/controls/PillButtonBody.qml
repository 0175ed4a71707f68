// The shared body of the four pill buttons, which differ by their fill alone.
// Properties: text, iconName (a symbol before the text, or ""), fillFrom and fillTo (gradient from the top-left corner
// to the bottom-right one; the same colour twice is flat), name (for assistive tools; the text if empty), enabled.
// Signals: clicked().
import QtQuick
import QtQuick.Templates as T
import Korvane.Controls

T.Button {
    id: button

    property color fillFrom: Theme.white(0.11)
    property color fillTo: Theme.white(0.11)
    property string iconName: ""
    property string name: ""

    readonly property real looksOpacity: !enabled ? 0.32 : 1 - 0.22 * pressDepth.value
    readonly property real looksScale: 1 - 0.04 * pressDepth.value

    leftPadding: 18
    rightPadding: 18
    topPadding: 8
    bottomPadding: 8
    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Math.ceil(implicitContentHeight) + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    font: Theme.font(13, Font.DemiBold)

    Accessible.role: Accessible.Button
    Accessible.name: name.length > 0 ? name : text
    Accessible.onPressAction: if (enabled) button.clicked()
    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    // A button that is disabled while the pointer holds it is no longer pressed, but stays down until it is let go.
    property bool heldDown: false
    onPressedChanged: heldDown = pressed || (!enabled && hold.active)

    PointHandler {
        id: hold
        acceptedButtons: Qt.LeftButton
        onActiveChanged: if (!active)
            button.heldDown = button.pressed
    }

    Spring {
        id: pressDepth
        to: button.heldDown ? 1 : 0
        response: 0.18
        damping: 0.75
    }

    // Ground and label are made faint each for itself: to fade the button as one picture takes a layer, which is not
    // drawn everywhere.
    background: ContinuousRectangle {
        radius: 10
        gradientFrom: button.fillFrom
        gradientTo: button.fillTo
        opacity: button.looksOpacity
        scale: button.looksScale
        smooth: pressDepth.moving || button.pressed

        ContinuousRectangle {
            anchors.fill: parent
            radius: 10
            color: "white"
            opacity: button.hovered && button.enabled && !button.pressed ? 0.09 : 0
            smooth: parent.smooth
            Behavior on opacity {
                NumberAnimation {
                    duration: 100
                }
            }
        }
    }

    contentItem: Item {
        implicitWidth: children[0].implicitWidth
        implicitHeight: children[0].implicitHeight
        opacity: button.looksOpacity
        scale: button.looksScale

        Row {
            x: Math.round((parent.width - width) / 2)
            y: Math.round((parent.height - height) / 2)
            spacing: 6

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.iconName.length > 0
                name: button.iconName
                size: 14
                color: "white"
                smooth: pressDepth.moving || button.pressed
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                textFormat: Text.PlainText
                font: button.font
                color: "white"
            }
        }
    }

    FocusRing {
        shown: button.visualFocus
        cornerRadius: 10
    }
}
