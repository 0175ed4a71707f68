#include "app/SpeechModels.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "app/StatusTexts.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {

SpeechModels::SpeechModels(MainQueue& mainQueue, FilePanels& filePanels,
                           std::unique_ptr<SpeechModelServices> services)
    : mainQueue_(mainQueue), filePanels_(filePanels), services_(std::move(services)) {}

SpeechModels::~SpeechModels() {
    blockSignals(true);
    tasks_.clear();
}

QString SpeechModels::folderText() const {
    const QString folder = QFile::decodeName(found_.folder.c_str());
    const QString home = QDir::homePath();
    return folder.startsWith(home + u'/') ? u'~' + folder.mid(home.size()) : folder;
}

QString SpeechModels::problem() const {
    return QString::fromStdString(problem_.empty() ? found_.notice : problem_);
}

QString SpeechModels::addingText() const {
    return adding_ ? QStringLiteral("Copying %1… %2").arg(adding_->name, percentText(adding_->fraction))
                   : QString();
}

bool SpeechModels::hasInstalled() const {
    return std::ranges::any_of(found_.models, &SpeechModelOffer::isInstalled);
}

bool SpeechModels::isDownloading() const {
    return std::ranges::any_of(downloads_, [](const auto& download) { return !download.second.isOver; });
}

QString SpeechModels::downloadText() const {
    if (!isDownloading())
        return {};
    std::uint64_t received = 0;
    std::uint64_t total = 0;
    for (const auto& [id, download] : downloads_) {
        if (download.isOver || !download.shown.report)
            continue;
        received += download.shown.report->receivedBytes;
        total += download.shown.report->totalBytes;
    }
    const QString text = QStringLiteral("Downloading…");
    return total == 0 ? text : text + QStringLiteral(" %1%").arg(100 * received / total);
}

void SpeechModels::look() {
    if (isLooking_)
        looksAgain_ = true;
    else if (services_)
        tasks_.start(runLook());
}

void SpeechModels::act(const QString& modelId) {
    const std::string id = modelId.toStdString();
    const auto running = downloads_.find(id);
    if (running == downloads_.end())
        return startDownload(id);
    if (running->second.isOver)
        return;
    running->second.shown.isStopping = true;
    running->second.task->cancel();
    showRows();
}

void SpeechModels::startDownload(const std::string& id) {
    const auto offer = std::ranges::find(found_.models, id, &SpeechModelOffer::id);
    if (offer == found_.models.end() || offer->isInstalled || !offer->isListed)
        return;
    setProblem({});
    MainTask task = runDownload(id);
    downloads_[id].task = task.handle();
    tasks_.start(std::move(task));
    showRows();
    Q_EMIT isBusyChanged();
}

void SpeechModels::remove(const QString& modelId) {
    setProblem({});
    tasks_.start(runChange([id = modelId.toStdString()](auto& services) { services.remove(id); }));
}

void SpeechModels::discard(const QString& modelId) {
    setProblem({});
    tasks_.start(runChange([id = modelId.toStdString()](auto& services) { services.discard(id); }));
}

void SpeechModels::use(const QString& modelId) {
    setProblem({});
    found_.inUse = modelId.toStdString();  // at once; the next look corrects what could not be kept
    showRows();
    tasks_.start(runChange([id = found_.inUse](auto& services) { services.use(id); }));
}

void SpeechModels::chooseFile() {
    if (isPanelOpen_ || adding_)
        return;
    const QPointer<SpeechModels> self(this);
    isPanelOpen_ = true;
    const auto chosen = filePanels_.runOpenPanel(
        {"Choose a Speech Model", {{"application/octet-stream", "bin", "Speech model"}}});
    if (!self)
        return;
    isPanelOpen_ = false;
    if (chosen)
        add(*chosen);
}

bool SpeechModels::acceptsDrop(const QList<QUrl>& urls) const {
    return services_ && !adding_ && std::ranges::any_of(urls, &QUrl::isLocalFile);
}

void SpeechModels::addDropped(const QList<QUrl>& urls) {
    if (!acceptsDrop(urls))
        return;
    if (urls.size() != 1)
        return setProblem("Please drop one model file at a time.");
    add(QFile::encodeName(urls.front().toLocalFile()).toStdString());
}

void SpeechModels::add(const std::filesystem::path& file) {
    if (!services_ || adding_)
        return;
    setProblem({});
    MainTask task = runAdd(file);
    addTask_ = task.handle();
    tasks_.start(std::move(task));
}

void SpeechModels::stopAll() {
    for (auto& [id, download] : downloads_) {
        download.shown.isStopping = !download.isOver;
        download.task->cancel();
    }
    if (addTask_)
        addTask_->cancel();
    showRows();
}

void SpeechModels::show(SpeechModelsFound found) {
    found_ = std::move(found);
    isKnown_ = true;
    showRows();
    Q_EMIT foundChanged();
    Q_EMIT problemChanged();
}

void SpeechModels::forgetEnded() {
    std::erase_if(downloads_, [](const auto& download) { return download.second.isOver; });
}

void SpeechModels::showRows() {
    std::vector<SpeechModelRow> rows;
    for (const SpeechModelOffer& offer : found_.models) {
        const auto running = downloads_.find(offer.id);
        rows.push_back(speechModelRow(offer, offer.isInstalled && offer.id == found_.inUse,
                                      running == downloads_.end() ? nullptr : &running->second.shown));
    }
    rows_.replace(std::move(rows));
    Q_EMIT downloadTextChanged();
}

void SpeechModels::setProblem(std::string sentence) {
    problem_ = std::move(sentence);
    Q_EMIT problemChanged();
}

}  // namespace korvane
