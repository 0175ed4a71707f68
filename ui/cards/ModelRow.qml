// One speech model: what it is and takes, how far its download is, and the one thing to do with it. Removing asks once,
// in the row's own place.
import QtQuick
import Korvane.Controls

FocusScope {
    id: row

    required property string modelId
    required property string name
    required property string detail
    required property string progressText
    required property real fraction
    required property string actionText
    required property string actionName
    required property string removalText
    required property string secondText  // of the quiet button; empty where there is nothing more to do
    required property string secondName
    required property bool recommended
    required property bool installed
    required property bool inUse
    required property bool downloading
    required property bool stopped
    required property bool faulty  // a file is here that can't be used: the detail says why
    required property bool removes  // what the button does, or the quiet one where there is one
    required property bool hasRadios  // some row has one, so that all leave room for it
    required property bool isFirst

    signal acted
    signal removed
    signal discarded
    signal used

    property bool asking: false
    readonly property bool hasBar: downloading || stopped
    readonly property bool hasSecond: secondText.length > 0
    property bool askedBySecond: false

    onRemovesChanged: asking = false

    function ask(asker: Item) {
        const reason = asker.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
        askedBySecond = asker === second;
        asking = true;
        keep.forceActiveFocus(reason);
    }
    function stopAsking() {
        const reason = keep.visualFocus || remove.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
        asking = false;
        (askedBySecond ? second : action).forceActiveFocus(reason);
    }

    implicitHeight: 62

    Rectangle {
        width: parent.width
        height: 1
        visible: !row.isFirst
        color: Theme.white(0.06)
    }
    RadioDot {
        id: radio
        objectName: "use " + row.modelId
        x: 14
        anchors.verticalCenter: parent.verticalCenter
        visible: row.installed
        name: "Use " + row.name
        checked: row.inUse
        onClicked: row.used()
    }
    Item {
        id: words
        anchors.left: parent.left
        anchors.leftMargin: row.hasRadios ? 44 : 14
        anchors.right: row.asking ? keep.left : second.visible ? second.left : action.visible ? action.left : parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        height: title.height + 4 + below.height

        Text {
            id: title
            text: row.asking ? "Remove " + row.name + "?" : row.name
            textFormat: Text.PlainText
            width: Math.min(implicitWidth, words.width - (badge.visible ? badge.width + 8 : 0))
            elide: Text.ElideRight
            color: Theme.white(0.92)
            font.pixelSize: 13
            font.weight: Font.DemiBold
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ContinuousRectangle {
            id: badge
            anchors.left: title.right
            anchors.leftMargin: 8
            anchors.verticalCenter: title.verticalCenter
            visible: row.recommended && !row.asking
            width: badgeText.implicitWidth + 14
            height: 17
            radius: 8.5
            color: Theme.faded(Theme.accent, 0.2)

            Text {
                id: badgeText
                anchors.centerIn: parent
                text: "Recommended"
                color: Theme.brighter(Theme.accent)
                font.pixelSize: 10
                font.weight: Font.DemiBold
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
        Item {
            id: below
            y: title.height + 4
            width: parent.width
            height: detailText.implicitHeight

            Text {
                id: detailText
                objectName: "detail"
                width: parent.width
                visible: !row.hasBar
                text: row.asking ? row.removalText : row.detail
                textFormat: Text.PlainText
                wrapMode: row.faulty ? Text.Wrap : Text.NoWrap
                maximumLineCount: 2
                elide: Text.ElideRight
                color: row.faulty && !row.asking ? Theme.orange : Theme.white(0.5)
                font.pixelSize: 12
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            ProgressBar {
                id: bar
                objectName: "modelProgress"
                visible: row.hasBar
                anchors.verticalCenter: parent.verticalCenter
                width: Math.round(parent.width * 0.36)
                height: 5
                opacity: row.downloading ? 1 : 0.5
                fraction: row.fraction
                fillWidth: width * row.fraction
                name: "Download of " + row.name
            }
            Text {
                objectName: "progressText"
                anchors.left: bar.right
                anchors.leftMargin: 10
                anchors.right: parent.right
                visible: row.hasBar
                text: row.progressText
                textFormat: Text.PlainText
                elide: Text.ElideRight
                color: Theme.white(0.6)
                font.pixelSize: 12
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
    }
    LinkButton {
        id: second
        objectName: "second " + row.modelId
        anchors.right: action.left
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        visible: row.hasSecond && !row.asking
        text: row.secondText
        name: row.secondName
        color: Theme.white(0.5)
        size: 12
        onClicked: {
            if (row.removes)
                row.ask(second);
            else
                row.discarded();
        }
    }
    // One button whatever is to be done, so that the keyboard stays where it is.
    PillButtonBody {
        id: action
        objectName: "act " + row.modelId
        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        visible: row.actionText.length > 0 && !row.asking
        text: row.actionText
        name: row.actionName
        readonly property bool isNext: !row.installed && !row.downloading && (row.recommended || row.stopped)
        fillFrom: row.downloading ? Theme.stopHi : isNext ? Theme.accent : Theme.white(0.11)
        fillTo: row.downloading ? Theme.stopLo : isNext ? Theme.accentLo : Theme.white(0.11)
        onClicked: {
            if (row.removes && !row.hasSecond)
                row.ask(action);
            else
                row.acted();
        }
    }
    GhostPill {
        id: keep
        objectName: "keep " + row.modelId
        anchors.right: remove.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: row.asking
        text: "Keep"
        name: "Keep " + row.name
        Keys.onEscapePressed: row.stopAsking()
        onClicked: row.stopAsking()
    }
    StopPill {
        id: remove
        objectName: "remove " + row.modelId
        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        visible: row.asking
        text: "Remove"
        name: "Remove " + row.name + " now"
        Keys.onEscapePressed: row.stopAsking()
        onClicked: {
            row.stopAsking();
            row.removed();
        }
    }
}
