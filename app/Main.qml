// The one window: its ground, the screen on it, and what stands in for the desktop's frame.
import QtQuick
import Korvane.App
import Korvane.Controls

Window {
    id: window

    required property ContentView view
    required property WindowFrame frame

    title: "Korvane"
    width: frame.startSize.width
    height: frame.startSize.height
    minimumWidth: frame.minimumSize.width
    minimumHeight: frame.minimumSize.height
    color: "transparent"
    onClosing: close => {
        models.makeWay();
        close.accepted = question.mayClose();
    }

    WindowBackground {
        anchors.fill: parent
        cornerRadius: window.frame.cornerRadius
    }
    DragArea {
        anchors.fill: parent
        frame: window.frame
    }
    // Before the strip, so that the keyboard comes to the content first and to the title buttons last.
    Screen {
        id: screen
        anchors.fill: parent
        anchors.margins: Theme.gap
        anchors.topMargin: strip.height
        view: window.view
        onModelsRequested: byKeys => models.open(byKeys)
    }
    TitleStrip {
        id: strip
        width: parent.width
        frame: window.frame
    }
    // Sets the window off from dark neighbours, which a desktop's frame would do.
    Rectangle {
        anchors.fill: parent
        visible: window.frame.canResize
        radius: window.frame.cornerRadius
        color: "transparent"
        border.width: 1
        border.color: Theme.white(0.1)
    }
    ResizeEdges {
        anchors.fill: parent
        frame: window.frame
    }
    DropTarget {
        anchors.fill: parent
        enabled: !models.opened
        view: window.view
    }
    SpeechModelsSheet {
        id: models
        anchors.fill: parent
        models: window.view.speechModels
        cornerRadius: window.frame.cornerRadius
        onLeaveRequested: window.frame.close()
        onKeyboardLeft: reason => screen.takeFocus(reason)
    }
    CloseQuestion {
        id: question
        anchors.fill: parent
        view: window.view
        cornerRadius: window.frame.cornerRadius
        onClosed: models.giveBack()
        onStopChosen: {
            window.view.cancelEverything();
            window.frame.close();
        }
    }

    // By name: what is standard for them depends on the desktop, and on some is nothing.
    Shortcut {
        sequence: "Ctrl+O"
        enabled: !models.opened
        onActivated: window.view.openFilePicker()
    }
    Shortcut {
        sequences: ["Ctrl+Q", "Ctrl+W"]
        onActivated: window.frame.close()
    }
    Shortcut {
        sequence: "F11"
        onActivated: window.frame.toggleFullScreen()
    }
    Shortcut {
        sequence: "Escape"
        enabled: window.frame.isFullScreen && !models.opened
        onActivated: window.frame.toggleFullScreen()
    }
}
