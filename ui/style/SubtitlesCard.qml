// The style of the subtitles: every control writes straight into the style that `editor` shows. Two rows of controls,
// with the vertical position beside them; a narrow card puts the last switch into a third row.
import QtQuick
import Korvane.Controls
import Korvane.Style

GlassCard {
    id: card

    required property StyleEditor editor

    Item {
        id: content

        readonly property real rowHeight: Theme.controlHeight
        readonly property real groupGap: 14
        // The first captions of both rows are one column, so that well and font begin at one edge.
        readonly property real firstLabel: Math.ceil(colorLabel.implicitWidth)
        readonly property real firstRow: title.height + 12
        readonly property real secondRow: firstRow + rowHeight + 8
        readonly property real thirdRow: secondRow + rowHeight + 8
        readonly property bool narrow: colorRow.width + shadow.width + blur.width + bounce.width + 3 * groupGap
                                       > controls.width

        width: card.width - 2 * card.horizontalPadding
        height: (narrow ? thirdRow : secondRow) + rowHeight

        CardTitle {
            id: title
            text: "Subtitles"
            iconName: "captions.bubble.fill"
            iconColor: Theme.accent
        }

        Row {
            id: note
            anchors.right: controls.right
            anchors.verticalCenter: title.verticalCenter
            visible: card.editor.fontNote !== ""
            spacing: 5
            Accessible.role: Accessible.StaticText
            Accessible.name: card.editor.fontNote

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: "info.circle"
                size: 12
                color: Theme.white(0.5)
            }
            Caption {
                width: Math.min(implicitWidth, controls.width - title.width - 36)
                text: card.editor.fontNote
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }

        Item {
            id: controls
            width: parent.width - position.width - 18
            height: parent.height

            Row {
                id: font
                y: content.firstRow
                height: content.rowHeight
                spacing: 6
                Caption { width: content.firstLabel; height: parent.height; text: "Font" }
                FontMenu {
                    name: "Font"
                    objectName: "font"
                    width: weight.x - content.groupGap - x
                    height: parent.height
                    family: card.editor.fontFamilyName
                    fonts: card.editor.fontList
                    onChosen: family => card.editor.chooseFamily(family)
                }
            }
            Row {
                id: weight
                x: size.x - width - content.groupGap
                y: content.firstRow
                height: content.rowHeight
                spacing: 6
                Caption { height: parent.height; text: "Weight" }
                MenuPicker {
                    name: "Weight"
                    objectName: "weight"
                    width: 90
                    height: parent.height
                    enabled: card.editor.weightNames.length > 0
                    model: card.editor.weightNames
                    currentIndex: card.editor.weightIndex
                    text: card.editor.weightName
                    onPicked: index => card.editor.chooseWeight(index)
                }
            }
            Row {
                id: size
                x: parent.width - width
                y: content.firstRow
                height: content.rowHeight
                spacing: 6
                Caption { height: parent.height; text: "Size" }
                AccentSlider {
                    name: "Size"
                    objectName: "size"
                    anchors.verticalCenter: parent.verticalCenter
                    width: 88
                    from: 36
                    to: 120
                    stepSize: 2
                    value: card.editor.fontSize
                    valueText: card.editor.fontSizeLabel
                    onMoved: value => card.editor.fontSize = value
                }
                ValueLabel {
                    objectName: "sizeLabel"
                    width: 32
                    height: parent.height
                    text: card.editor.fontSizeLabel
                }
            }

            Row {
                id: colorRow
                y: content.secondRow
                height: content.rowHeight
                spacing: 6
                Caption { id: colorLabel; width: content.firstLabel; height: parent.height; text: "Color" }
                ColorWell {
                    name: "Color"
                    objectName: "color"
                    anchors.verticalCenter: parent.verticalCenter
                    color: card.editor.textColor
                    onPicked: color => card.editor.textColor = color
                }
            }
            Row {
                id: shadow
                x: colorRow.width + content.groupGap
                y: content.secondRow
                height: content.rowHeight
                spacing: 6
                Caption { height: parent.height; text: "Shadow" }
                ToggleSwitch {
                    id: shadowSwitch
                    name: "Shadow"
                    objectName: "shadow"
                    anchors.verticalCenter: parent.verticalCenter
                    checked: card.editor.hasShadow
                    onToggled: card.editor.hasShadow = checked
                }
                // The place stays when the well goes.
                Item {
                    width: 46
                    height: parent.height
                    ColorWell {
                        name: "Shadow color"
                        objectName: "shadowColor"
                        anchors.verticalCenter: parent.verticalCenter
                        visible: card.editor.hasShadow
                        color: card.editor.shadowColor
                        onPicked: color => card.editor.shadowColor = color
                    }
                }
            }
            Row {
                id: blur
                x: content.narrow ? parent.width - width : shadow.x + shadow.width + content.groupGap
                y: content.secondRow
                height: content.rowHeight
                spacing: 6
                Caption { height: parent.height; text: "Blur" }
                AccentSlider {
                    name: "Blur"
                    objectName: "blur"
                    anchors.verticalCenter: parent.verticalCenter
                    width: 70
                    from: 1
                    to: 32
                    stepSize: 1
                    value: card.editor.shadowRadius
                    valueText: card.editor.shadowRadiusLabel
                    onMoved: value => card.editor.shadowRadius = value
                }
                ValueLabel {
                    objectName: "blurLabel"
                    width: 30
                    height: parent.height
                    text: card.editor.shadowRadiusLabel
                }
            }
        }

        Item {
            id: position
            anchors.right: parent.right
            width: 20
            height: parent.height
            Caption {
                id: positionLabel
                anchors.horizontalCenter: parent.horizontalCenter
                font.pixelSize: 10
                text: "Pos"
            }
            VerticalSlider {
                name: "Vertical position"
                objectName: "position"
                anchors { top: positionLabel.bottom; bottom: parent.bottom; topMargin: 6 }
                width: 20
                value: card.editor.verticalPosition
                onChanged: value => card.editor.verticalPosition = value
            }
        }

        Row {
            id: bounce
            x: content.narrow ? 0 : controls.width - width
            y: content.narrow ? content.thirdRow : content.secondRow
            height: content.rowHeight
            spacing: 8
            Caption { height: parent.height; text: "Spring bounce on entry" }
            ToggleSwitch {
                name: "Spring bounce on entry"
                objectName: "bounce"
                anchors.verticalCenter: parent.verticalCenter
                checked: card.editor.hasPopAnimation
                onToggled: card.editor.hasPopAnimation = checked
            }
        }
    }
}
