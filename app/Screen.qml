// The cards in two columns: the way to the words on the left, what comes of them on the right. The right column is as
// wide as the upright frame needs at this height, the words get everything else.
import QtQuick
import Korvane.App
import Korvane.Cards
import Korvane.Controls
import Korvane.Style
import Korvane.Words

FocusScope {
    id: screen

    required property ContentView view

    signal modelsRequested(byKeys: bool)

    focus: true
    // What no control with the keyboard's focus has a use for.
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            screen.view.togglePlayback();
    }

    /// Gives the keyboard to what may be tried next.
    function takeFocus(reason: int) {
        fileCard.takeFocus(reason);
    }

    readonly property real previewHeight: height - exportCard.height - Theme.gap
    readonly property real rightWidth: Math.round(Math.max(320, Math.min(previewCard.widthForHeight(previewHeight), (width - Theme.gap) * 0.42)))

    Item {
        id: left
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: parent.width - screen.rightWidth - Theme.gap

        HeaderCard {
            id: headerCard
            width: parent.width
            languageNames: screen.view.languageNames
            languageIndex: screen.view.selectedLanguageIndex
            languageEnabled: !screen.view.isAnyActive
            modelsOffered: screen.view.speechModels.isOffered
            downloadText: screen.view.speechModels.downloadText
            onLanguagePicked: index => screen.view.selectedLanguageIndex = index
            onModelsRequested: byKeys => screen.modelsRequested(byKeys)
        }
        FileCard {
            id: fileCard
            anchors.top: headerCard.bottom
            anchors.topMargin: Theme.gap
            width: parent.width
            fileName: screen.view.fileNameText
            hasVideo: screen.view.hasVideo
            loadEnabled: !screen.view.isAnyActive
            transcribeEnabled: screen.view.canTranscribe
            stopVisible: screen.view.isProcessing
            successor: wordsCard.keyboardTarget
            onLoadRequested: screen.view.openFilePicker()
            onTranscribeRequested: screen.view.startTranscription()
            onStopRequested: screen.view.stopTranscription()
        }
        ProgressCard {
            id: progressCard
            anchors.top: fileCard.bottom
            anchors.topMargin: Theme.gap
            width: parent.width
            dotColor: screen.view.dotColor
            statusText: screen.view.statusText
            etaText: screen.view.etaLabel
            percentText: screen.view.percentText
            phaseText: screen.view.phaseText
            progress: screen.view.overallProgress
            barFill: progress >= 0 ? screen.view.barWidth(barTotal) : 0
        }
        ErrorCard {
            id: errorCard
            anchors.top: progressCard.bottom
            anchors.topMargin: Theme.gap * Math.min(1, height / 40)
            width: parent.width
            message: screen.view.errorText
            shown: screen.view.hasError
            modelWouldHelp: screen.view.modelWouldHelp
            onModelRequested: byKeys => screen.modelsRequested(byKeys)
        }
        WordsCard {
            id: wordsCard
            anchors.top: errorCard.bottom
            anchors.topMargin: Theme.gap
            anchors.bottom: subtitlesCard.top
            anchors.bottomMargin: Theme.gap
            width: parent.width
            words: screen.view.words
            title: screen.view.wordsTitle
            hasWords: screen.view.hasWords
            emptyText: screen.view.emptyStateText
            active: screen.view.isAnyActive
            onTokenToggled: index => screen.view.toggleWord(index)
            onAllChosen: screen.view.selectAllWords()
            onNoneChosen: screen.view.selectNoWords()
        }
        SubtitlesCard {
            id: subtitlesCard
            anchors.bottom: parent.bottom
            width: parent.width
            editor: screen.view.styleEditor
        }
    }

    Item {
        anchors.left: left.right
        anchors.leftMargin: Theme.gap
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom

        PreviewCard {
            id: previewCard
            anchors.top: parent.top
            anchors.bottom: exportCard.top
            anchors.bottomMargin: Theme.gap
            width: parent.width
            hasPreview: screen.view.hasPreview
            source: screen.view.previewSource
            subtitle: screen.view.currentSubtitle
            reelTexts: screen.view.reelTexts
            fontPostscriptName: screen.view.styleEditor.fontPostscriptName
            fontSize: screen.view.styleEditor.fontSize
            textColor: screen.view.styleEditor.textColor
            hasShadow: screen.view.styleEditor.hasShadow
            verticalPosition: screen.view.styleEditor.verticalPosition
            hasPopAnimation: screen.view.styleEditor.hasPopAnimation
            onCloseRequested: screen.view.closePreview()
            onToggleRequested: screen.view.togglePlayback()
            onAppeared: {
                // The button that was pressed lost the keyboard when it was switched off; on its way back, Space would
                // press it again.
                if (screen.Window.activeFocusItem === screen)
                    previewCard.takeFocus();
                screen.view.previewAppeared();
            }
            onDisappeared: screen.view.previewDisappeared()
        }
        ExportCard {
            id: exportCard
            anchors.bottom: parent.bottom
            width: parent.width
            summary: screen.view.exportSummary
            durationText: screen.view.exportDurationText
            hasSelection: screen.view.hasSelection
            previewEnabled: screen.view.canPreview
            exportEnabled: screen.view.canExport
            stopVisible: screen.view.stopVisible
            folderVisible: screen.view.hasExportedFile
            previewOutdated: screen.view.previewOutdated
            onPreviewRequested: screen.view.startPreview()
            onExportRequested: screen.view.exportReel()
            onStopRequested: screen.view.stopPreviewOrExport()
            onFolderRequested: screen.view.showExportInFolder()
        }
    }
}
