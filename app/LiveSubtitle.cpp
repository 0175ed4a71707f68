// The line over the preview: looked for many times a second for as long as the picture is seen.
#include "app/LiveSubtitle.h"

#include <algorithm>
#include <chrono>

#include "app/ContentView.h"

namespace korvane {
namespace {

constexpr std::chrono::milliseconds kInterval(50);

}  // namespace

// A handful of lines, so nothing quicker than looking through them is worth its code.
std::string subtitleAt(const std::vector<SubtitleEntry>& entries, double seconds) {
    const auto found = std::ranges::find_if(entries, [seconds](const SubtitleEntry& entry) {
        return entry.start <= seconds && seconds < entry.end;  // never so for what is no number
    });
    return found == entries.end() ? std::string() : found->text;
}

void ContentView::previewAppeared() {
    if (!hasPreview())
        return;
    subtitleTimer_ = std::make_unique<QTimer>();
    subtitleTimer_->setTimerType(Qt::PreciseTimer);
    subtitleTimer_->callOnTimeout(this, &ContentView::showCurrentSubtitle);
    subtitleTimer_->start(kInterval);
}

void ContentView::previewDisappeared() {
    subtitleTimer_.reset();
    if (previewPlayer_)
        previewPlayer_->pause();
}

void ContentView::showCurrentSubtitle() {
    if (!hasPreview())
        return;
    const std::string text = subtitleAt(previewBundle_->subtitleEntries(), previewPlayer_->currentTime());
    setCurrentSubtitle(QString::fromStdString(text));
}

void ContentView::setCurrentSubtitle(const QString& text) {
    if (currentSubtitle_ == text)
        return;
    currentSubtitle_ = text;
    Q_EMIT currentSubtitleChanged();
}

}  // namespace korvane
