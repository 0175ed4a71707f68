// The words of a row in the list of speech models.
#include <algorithm>

#include "app/SpeechModelList.h"
#include "app/StatusTexts.h"
#include "platform/models/ModelTexts.h"

namespace korvane {
namespace {

const QString kBetween = QStringLiteral(" · ");

QString text(const std::string& words) {
    return QString::fromStdString(words);
}

QString detailOf(const SpeechModelOffer& offer) {
    if (!offer.fault.empty())
        return text(offer.fault);
    const QString use = offer.findsVoices
                            ? QStringLiteral("finds voices, used beside a speech model")
                            : QStringLiteral("%1 of memory").arg(text(byteText(offer.memoryBytes))) +
                                  kBetween + text(speedText(offer.speed));
    const QString words = text(byteText(offer.bytes)) + kBetween + use;
    return (offer.isInstalled || offer.findsVoices) && !offer.isOwn
               ? words + kBetween + QStringLiteral("for all users")
               : words;
}

double share(std::uint64_t part, std::uint64_t whole) {
    return whole == 0 ? 0.0 : std::min(1.0, static_cast<double>(part) / static_cast<double>(whole));
}

QString amount(std::uint64_t part, std::uint64_t whole) {
    return QStringLiteral("%1 of %2").arg(text(byteText(part)), text(byteText(whole)));
}

QString progressTextOf(const RunningDownload& running) {
    if (running.isStopping)
        return QStringLiteral("Stopping…");
    if (!running.report)
        return QStringLiteral("Connecting…");
    const DownloadProgress& report = *running.report;
    const QString percent = percentText(share(report.receivedBytes, report.totalBytes));
    switch (report.stage) {
        case DownloadStage::connecting:
            return QStringLiteral("Connecting…");
        case DownloadStage::waiting:
            return percent + kBetween + QStringLiteral("connection lost, trying again…");
        case DownloadStage::verifying:
            return QStringLiteral("Checking what is here already…");
        case DownloadStage::downloading:
            break;
    }
    QString words = percent;
    if (report.bytesPerSecond > 0)
        words += kBetween + text(rateText(report.bytesPerSecond));
    if (report.secondsLeft)
        words += kBetween + text(timeLeftText(*report.secondsLeft));
    return words;
}

/// Where a download stands: what it reported last, or what it will go on from.
void describeDownload(SpeechModelRow& row, const SpeechModelOffer& offer, const RunningDownload* running) {
    const bool isReported = running && running->report && running->report->totalBytes > 0;
    row.downloading = running != nullptr;
    row.stopped = !running && offer.partBytes > 0;
    row.fraction = isReported ? share(running->report->receivedBytes, running->report->totalBytes)
                              : share(offer.partBytes, offer.bytes);
    if (row.stopped)
        row.progressText = QStringLiteral("Stopped at ") + percentText(row.fraction) + kBetween +
                           amount(offer.partBytes, offer.bytes);
    else if (running)
        row.progressText = progressTextOf(*running);
}

QString actionOf(const SpeechModelRow& row, const SpeechModelOffer& offer) {
    if (row.downloading)
        return QStringLiteral("Stop");
    if (row.installed || offer.findsVoices || (row.faulty && !offer.isListed))
        return offer.isOwn ? QStringLiteral("Remove") : QString();
    if (row.stopped)
        return QStringLiteral("Resume");
    return row.faulty ? QStringLiteral("Install again") : QStringLiteral("Install");
}

/// The two buttons of a row: what is likely wanted, and a quiet one for what else can be done.
void describeActions(SpeechModelRow& row, const SpeechModelOffer& offer) {
    row.actionText = actionOf(row, offer);
    if (!row.actionText.isEmpty())
        row.actionName = row.actionText + u' ' + row.name;
    if (row.stopped) {
        row.secondText = QStringLiteral("Discard");
        row.secondName = QStringLiteral("Discard what has arrived of ") + row.name;
    } else if (row.faulty && offer.isListed && offer.isOwn) {
        row.secondText = QStringLiteral("Remove");
        row.secondName = QStringLiteral("Remove the file of ") + row.name;
    }
    const QString& removing = row.secondText.isEmpty() ? row.actionText : row.secondText;
    row.removes = removing == QStringLiteral("Remove");
}

}  // namespace

SpeechModelRow speechModelRow(const SpeechModelOffer& offer, bool inUse, const RunningDownload* running) {
    SpeechModelRow row;
    row.modelId = text(offer.id);
    row.name = text(offer.name);
    row.detail = detailOf(offer);
    row.removalText = offer.isListed ? QStringLiteral("It can be installed again at any time.")
                                     : QStringLiteral("Only a file that you have can bring it back.");
    row.recommended = offer.isRecommended;
    row.installed = offer.isInstalled;
    row.inUse = inUse;
    if (running || !offer.isInstalled)
        describeDownload(row, offer, running);
    row.faulty = !offer.fault.empty() && !row.downloading && !row.stopped;
    describeActions(row, offer);
    return row;
}

}  // namespace korvane
