// How a video gets onto the screen: chosen in the panel or dropped.
#include <QFile>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "app/ContentView.h"
#include "app/VideoFiles.h"

namespace korvane {

void ContentView::openFilePicker() {
    if (isAnyActive() || isPanelOpen_)
        return;
    // The event loop runs behind the panel: a drop may start work there, and the window may go.
    const QPointer<ContentView> self(this);
    isPanelOpen_ = true;
    const auto chosen = filePanels_.runOpenPanel({"Select a Video", videoFileTypes()});
    if (!self)
        return;
    isPanelOpen_ = false;
    // A panel hides other files, but takes the name of one that is typed.
    if (chosen)
        openDroppedFile(QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(chosen->string()))));
}

bool ContentView::acceptsDrop(const QList<QUrl>& urls) const {
    return !isAnyActive() && std::ranges::any_of(urls, &QUrl::isLocalFile);
}

void ContentView::openDroppedFiles(const QList<QUrl>& urls) {
    if (isAnyActive())
        return;
    if (urls.size() != 1) {
        setErrorMessage(severalFilesSentence());
        return;
    }
    openDroppedFile(urls.front());
}

void ContentView::openDroppedFile(const QUrl& url) {
    if (isAnyActive())
        return;
    if (auto reason = reasonAgainstVideo(url)) {
        setErrorMessage(std::move(reason));
        return;
    }
    loadVideo(QFile::encodeName(url.toLocalFile()).toStdString());
}

void ContentView::loadVideo(const std::filesystem::path& path) {
    setSelectedURL(path);
    setWords({});
    setPreviewBundle(std::nullopt);
    setErrorMessage(std::nullopt);
    setOverallProgress(0.0);
    setStatusText(QStringLiteral("Ready"));
    setExportedFile(std::nullopt);
}

}  // namespace korvane
