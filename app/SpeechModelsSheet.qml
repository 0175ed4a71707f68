// The sheet of speech models, bound to those of the screen.
import QtQuick
import Korvane.App
import Korvane.Cards

ModelsSheet {
    id: sheet

    required property SpeechModels models

    rows: models.rows
    ready: models.isKnown
    hasInstalled: models.hasInstalled
    problem: models.problem
    folder: models.folderText
    addingText: models.addingText
    addingFraction: models.addingFraction
    acceptsDrop: urls => models.acceptsDrop(urls)
    onLookRequested: models.look()
    onActed: modelId => models.act(modelId)
    onRemoved: modelId => models.remove(modelId)
    onDiscarded: modelId => models.discard(modelId)
    onUsed: modelId => models.use(modelId)
    onFileRequested: models.chooseFile()
    onDropped: urls => models.addDropped(urls)
}
