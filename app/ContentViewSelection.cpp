// The words and which of them are chosen.
#include <utility>

#include "app/ContentView.h"
#include "app/StatusTexts.h"
#include "editor/RuntimeTrap.h"

namespace korvane {
namespace {

const SpeechSegment& segmentAt(const std::vector<SpeechSegment>& segments, int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= segments.size())
        runtimeTrap("Index out of range");
    return segments[static_cast<std::size_t>(index)];
}

std::set<int> indicesOf(const std::vector<SpeechSegment>& segments) {
    std::set<int> indices;
    for (int index = 0; index < static_cast<int>(segments.size()); ++index)
        indices.insert(indices.end(), index);
    return indices;
}

}  // namespace

std::vector<SpeechSegment> ContentView::selectedSegments() const {
    std::vector<SpeechSegment> chosen;
    chosen.reserve(selectedWordIndices_.size());
    for (const int index : selectedWordIndices_)  // a set is in ascending order
        chosen.push_back(segmentAt(segments_, index));
    return chosen;
}

double ContentView::selectedDuration() const {
    double seconds = 0.0;
    for (const int index : selectedWordIndices_) {
        const SpeechSegment& segment = segmentAt(segments_, index);
        seconds += segment.end() - segment.start();
    }
    return seconds;
}

QString ContentView::wordsTitle() const {
    return korvane::wordsTitle(segments_.size());
}

QString ContentView::exportSummary() const {
    return korvane::exportSummary(selectedWordIndices_.size());
}

QString ContentView::exportDurationText() const {
    return durationText(selectedDuration());
}

void ContentView::toggleWord(int index) {
    if (isAnyActive())
        return;
    segmentAt(segments_, index);
    if (selectedWordIndices_.erase(index) == 0)
        selectedWordIndices_.insert(index);
    words_.selectionChanged(index, index);
    choiceChanged();
}

void ContentView::selectAllWords() {
    if (!isAnyActive())
        setSelectedWordIndices(indicesOf(segments_));
}

void ContentView::selectNoWords() {
    if (!isAnyActive())
        setSelectedWordIndices({});
}

void ContentView::choiceChanged() {
    Q_EMIT selectedWordIndicesChanged();
    Q_EMIT canPreviewChanged();
    Q_EMIT previewOutdatedChanged();
}

void ContentView::setSelectedWordIndices(std::set<int> selected) {
    if (selected == selectedWordIndices_)
        return;
    selectedWordIndices_ = std::move(selected);
    words_.selectionChanged(0, static_cast<int>(segments_.size()) - 1);
    choiceChanged();
}

void ContentView::setWords(std::vector<SpeechSegment> words) {
    const bool wordsChange = !segments_.empty() || !words.empty();
    std::set<int> all = indicesOf(words);
    const bool choiceChanges = all != selectedWordIndices_;
    segments_ = std::move(words);
    selectedWordIndices_ = std::move(all);
    if (wordsChange) {
        words_.wordsReplaced();
        Q_EMIT segmentsChanged();
    }
    if (choiceChanges)
        choiceChanged();
}

}  // namespace korvane
