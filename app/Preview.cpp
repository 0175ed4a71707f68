// From the chosen words to a reel that plays in a loop, and back to an empty frame.
#include <algorithm>
#include <utility>

#include "app/ContentView.h"
#include "app/StatusTexts.h"
#include "editor/LogFormat.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/OnLeaving.h"
#include "platform/tasks/OneShot.h"

namespace korvane {

void ContentView::startPreview() {
    if (isAnyActive())
        return;
    MainTask task = runBuildPreview();
    if (hasVideo() && hasSelection())
        buildPreviewTask_ = task.handle();
    tasks_.start(std::move(task));
}

void ContentView::stopBuildPreview() {
    if (buildPreviewTask_)
        buildPreviewTask_->cancel();
    buildPreviewTask_.reset();
}

void ContentView::beginBuildingPreview() {
    if (previewPlayer_)
        previewPlayer_->pause();
    setPreviewPlayer(nullptr);
    setPreviewBundle(std::nullopt);
    setIsBuildingPreview(true);
    setOverallProgress(0.0);
    setErrorMessage(std::nullopt);
    setProcessingStartTime(now_());
    setStatusText(QStringLiteral("Building preview…"));
    setExportedFile(std::nullopt);
}

MainTask ContentView::runBuildPreview() {
    if (!selectedURL_)
        co_return;
    if (!hasSelection()) {
        setErrorMessage("Select at least one word before previewing.");
        co_return;
    }
    beginBuildingPreview();
    const OnLeaving end([this] {
        buildPreviewTask_.reset();  // before the signal, on which the next task may be started
        setIsBuildingPreview(false);
    });
    try {
        OwnStop own;
        const std::stop_token stop = co_await own;
        auto building = onWorker<ExportBundle>(
            mainQueue_, [&editor = *videoEditor_, video = *selectedURL_, segments = selectedSegments(),
                         settings = subtitleSettings_](const std::stop_token& workerStop) {
                return editor.buildBundle(video, segments, settings, workerStop);
            });
        const ExportBundle bundle = co_await building;
        checkCancelled(stop);  // a stop that came too late for the service is in time to show nothing

        const auto player = makeLoopingPlayer(bundle);
        setPreviewBundle(bundle);
        setPreviewPlayer(player);

        OneShot<PlayerItemStatus> decided(mainQueue_);
        Observation watching;
        watching = bundle.previewPlayerItem()->observeStatus(
            mainQueue_, [&watching, answer = decided.answer()](PlayerItemStatus status) {
                if (status == PlayerItemStatus::unknown)
                    return;
                watching.invalidate();
                answer(status);
            });
        // Also with an item that can't be played the steps go on: there is just no picture.
        co_await decided;
        if (bundle.prerollDuration() > kZeroTime) {
            OneShot<bool> sought(mainQueue_);
            player->seek(bundle.prerollDuration(), kZeroTime, kZeroTime, sought.answer());
            co_await sought;
        }
        OneShot<bool> prerolled(mainQueue_);
        player->preroll(1.0, prerolled.answer());
        co_await prerolled;

        if (previewPlayer_ == player)  // else it was closed meanwhile, and nobody would see what plays
            player->play();
        setOverallProgress(1.0);
        setStatusText(QStringLiteral("Ready"));
    } catch (const CancellationError&) {
        setStatusText(QStringLiteral("Cancelled"));
    } catch (...) {
        setStatusText(QStringLiteral("Preview failed"));
        setErrorMessage(describeError(std::current_exception()));
    }
}

std::shared_ptr<PreviewPlayer> ContentView::makeLoopingPlayer(const ExportBundle& bundle) const {
    auto player = makePlayer_(bundle.previewPlayerItem());
    const MediaTime loopPoint = bundle.prerollDuration();
    player->setActionAtItemEnd(ActionAtItemEnd::none);
    player->setLoopHint(loopPoint);
    // Registered for the player's whole life, so it must not be what keeps the player alive.
    player->observeEnd([weak = std::weak_ptr(player), loopPoint] {
        const auto ended = weak.lock();
        if (!ended)
            return;
        ended->seek(loopPoint, [weak](bool) {
            const auto back = weak.lock();
            if (back && back->rate() > 0.0)  // a person may have paused it at just this moment
                back->play();
        });
    });
    return player;
}

void ContentView::closePreview() {
    if (previewPlayer_)
        previewPlayer_->pause();
    setPreviewPlayer(nullptr);
    setPreviewBundle(std::nullopt);
}

void ContentView::togglePlayback() {
    if (!hasPreview() || isBuildingPreview_)
        return;
    if (previewPlayer_->rate() > 0.0)
        previewPlayer_->pause();
    else
        previewPlayer_->play();
}

QStringList ContentView::reelTexts() const {
    QStringList texts;
    if (!previewBundle_)
        return texts;
    for (const SubtitleEntry& entry : previewBundle_->subtitleEntries())
        texts << QString::fromStdString(entry.text);
    return texts;
}

void ContentView::setPreviewPlayer(std::shared_ptr<PreviewPlayer> player) {
    if (player == previewPlayer_)
        return;
    const auto before = std::exchange(previewPlayer_, std::move(player));
    if (!previewPlayer_) {
        subtitleTimer_.reset();
        setCurrentSubtitle({});
    }
    pictures_.setPlayer(previewPlayer_);
    Q_EMIT hasPreviewChanged();
}

void ContentView::setPreviewBundle(std::optional<ExportBundle> bundle) {
    if (!bundle && !previewBundle_)
        return;
    previewBundle_ = std::move(bundle);
    Q_EMIT previewBundleChanged();
    Q_EMIT canExportChanged();
    Q_EMIT hasPreviewChanged();
    Q_EMIT previewOutdatedChanged();
}

bool ContentView::isPreviewOutdated() const {
    if (!previewBundle_)
        return false;
    const auto& built = previewBundle_->segments();
    const auto isWord = [this](const SpeechSegment& word, int index) {
        const SpeechSegment& chosen = segments_[static_cast<std::size_t>(index)];
        return word.start() == chosen.start() && word.end() == chosen.end() && word.text() == chosen.text();
    };
    return subtitleSettings_ != previewBundle_->subtitleSettings() ||
           !std::ranges::equal(built, selectedWordIndices_, isWord);
}

}  // namespace korvane
