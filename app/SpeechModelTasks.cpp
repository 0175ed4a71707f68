// What the speech models' workers do, and what comes of it on the main thread.
#include <utility>

#include "app/SpeechModels.h"
#include "app/StatusTexts.h"
#include "editor/LogFormat.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/OnLeaving.h"
#include "platform/tasks/PhaseProgress.h"

namespace korvane {

MainTask SpeechModels::runLook() {
    isLooking_ = true;
    const OnLeaving end([this] { isLooking_ = false; });
    do {
        looksAgain_ = false;
        try {
            auto looking = onWorker<SpeechModelsFound>(
                mainQueue_, [&services = *services_](const std::stop_token&) { return services.find(); });
            SpeechModelsFound found = co_await looking;
            if (looksAgain_)
                continue;  // something has ended meanwhile, which this may not have seen
            forgetEnded();
            show(std::move(found));
            if (std::exchange(hasCome_, false) && hasInstalled())
                Q_EMIT arrived();
        } catch (...) {
            forgetEnded();
            show(std::exchange(found_, {}));
            setProblem(describeError(std::current_exception()));
        }
    } while (looksAgain_);
}

MainTask SpeechModels::runDownload(std::string id) {
    try {
        const PhaseReports<DownloadProgress> reports(mainQueue_, [this, &id](const DownloadProgress& report) {
            downloads_[id].shown.report = report;
            showRows();
        });
        auto download = onWorker<void>(
            mainQueue_, [&services = *services_, &id, report = reports.callback()](
                            const std::stop_token& stop) { services.download(id, report, stop); });
        co_await download;
        hasCome_ = true;
    } catch (const CancellationError&) {
        // What has arrived stays, and the next look shows it.
    } catch (...) {
        setProblem(describeError(std::current_exception()));
    }
    downloads_[id].isOver = true;
    Q_EMIT downloadTextChanged();
    look();
    Q_EMIT isBusyChanged();
}

MainTask SpeechModels::runAdd(std::filesystem::path file) {
    adding_ = Adding{.name = fileName(file.string())};
    Q_EMIT addingChanged();
    Q_EMIT isBusyChanged();
    try {
        const PhaseProgress progress(mainQueue_, [this](double fraction) {
            adding_->fraction = fraction;
            Q_EMIT addingChanged();
        });
        auto adding = onWorker<void>(
            mainQueue_, [&services = *services_, &file, onProgress = progress.callback()](
                            const std::stop_token& stop) { services.add(file, onProgress, stop); });
        co_await adding;
        hasCome_ = true;
    } catch (const CancellationError&) {
        // Nothing has changed.
    } catch (...) {
        setProblem(describeError(std::current_exception()));
    }
    adding_.reset();
    addTask_.reset();
    look();
    Q_EMIT addingChanged();
    Q_EMIT isBusyChanged();
}

MainTask SpeechModels::runChange(Change change) {
    try {
        auto changing = onWorker<void>(
            mainQueue_, [&services = *services_, &change](const std::stop_token&) { change(services); });
        co_await changing;
    } catch (...) {
        setProblem(describeError(std::current_exception()));
    }
    look();
}

}  // namespace korvane
