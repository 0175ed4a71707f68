#include <string>
#include <utility>

#include "editor/DestinationGuards.h"
#include "editor/ExportError.h"
#include "editor/LogFormat.h"
#include "editor/VideoEditor.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/ProgressReporter.h"

namespace korvane {
namespace {

std::string statusText(int status) {
    static constexpr const char* kNames[] = {"unknown",   "waiting", "exporting",
                                             "completed", "failed",  "cancelled"};
    if (status < 0 || status >= static_cast<int>(std::size(kNames)))
        return "unknown(" + std::to_string(status) + ")";
    return kNames[status];
}

std::shared_ptr<Asset> openSource(const EditorPlatform& platform, const std::filesystem::path& videoURL,
                                  const std::stop_token& stop, const DiagnosticLog& log) {
    log("🎬 [Export] [A] Loading asset…");
    std::shared_ptr<Asset> asset = platform.openAsset(videoURL, stop);
    const bool isReadable = asset->isReadable();
    checkCancelled(stop);  // a stopped load looks like a file that can't be read
    const bool isPlayable = asset->isPlayable();
    log("🎬 [Export] [A] asset.isReadable=" + formatBool(isReadable) +
        "  asset.isPlayable=" + formatBool(isPlayable));
    if (!isReadable)
        throw ExportError::exportFailed("Asset is not readable: " + videoURL.string());
    return asset;
}

void checkComposition(const Composition& composition, const DiagnosticLog& log) {
    const auto tracks = composition.tracks();
    const MediaTime duration = composition.duration();
    log("🎬 [Export] [B] composition.duration = " + formatSeconds(duration) + "s");
    log("🎬 [Export] [B] composition.tracks = " + std::to_string(tracks.size()));
    for (const CompositionTrack* track : tracks) {
        log("🎬 [Export] [B] track[" + std::to_string(track->trackID()) + "] mediaType=" +
            mediaTypeName(track->mediaType()) + "  segments=" + std::to_string(track->segments().size()) +
            "  duration=" + formatSeconds(track->timeRange().duration) + "s");
    }
    if (tracks.empty())
        throw ExportError::exportFailed("Composition has no tracks — nothing to export.");
    if (duration.seconds() <= 0.0)
        throw ExportError::exportFailed("Composition duration is zero.");
}

void checkVideoComposition(const VideoComposition& videoComposition, const DiagnosticLog& log) {
    const MediaTime frameDuration = videoComposition.frameDuration;
    log("🎬 [Export] [B] videoComposition.renderSize = " + formatSize(videoComposition.renderSize));
    log("🎬 [Export] [B] videoComposition.frameDuration = " + formatSeconds(frameDuration) + "s  (" +
        frameDuration.toString() + ")");
    log("🎬 [Export] [B] videoComposition.instructions = " +
        std::to_string(videoComposition.instructions.size()));
    if (frameDuration.seconds() <= 0.0) {
        throw ExportError::exportFailed(
            "videoComposition.frameDuration is zero — nominalFrameRate was invalid.");
    }
}

std::unique_ptr<ExportSession> makeMp4Session(const EditorPlatform& platform,
                                              const std::shared_ptr<const Composition>& composition,
                                              const DiagnosticLog& log) {
    log("🎬 [Export] [C] AVAssetExportSession(presetName: HighestQuality)…");
    auto session = platform.makeSession(composition, ExportPreset::highestQuality);
    if (!session)
        throw ExportError::exportFailed("Could not create AVAssetExportSession.");

    std::vector<std::string> identifiers;
    std::string joined;
    bool writesMp4 = false;
    for (const FileType type : session->supportedFileTypes()) {
        identifiers.push_back(fileTypeIdentifier(type));
        joined += (identifiers.size() > 1 ? ", " : "") + identifiers.back();
        writesMp4 = writesMp4 || type == FileType::mp4;
    }
    log("🎬 [Export] [C] supportedFileTypes = " + joined);
    if (!writesMp4) {
        throw ExportError::exportFailed("Preset does not support .mp4 output. Supported: " +
                                        formatStringList(identifiers));
    }
    return session;
}

/// The written file begins with the first word; the lead-in only serves the player.
void configure(ExportSession& session, const CompositionData& data, const std::filesystem::path& outputURL,
               const DiagnosticLog& log) {
    session.outputPath = outputURL;
    session.outputFileType = FileType::mp4;
    session.audioMix = data.audioMix;
    if (data.prerollDuration > kZeroTime) {
        session.timeRange =
            TimeRange{data.prerollDuration, data.composition->duration() - data.prerollDuration};
        log("🎬 [Export] [C] session.timeRange set (skipping " + formatSeconds(data.prerollDuration) +
            "s pre-roll)");
    }
    log("🎬 [Export] [C] session.outputURL set");
}

void assignPicture(ExportSession& session, const VideoComposition& videoComposition, int stage,
                   const DiagnosticLog& log) {
    if (stage < 1) {
        log("🎬 [Export] [C] stage=0: SKIPPING videoComposition (minimal test)");
        return;
    }
    log("🎬 [Export] [C] stage≥1: assigning videoComposition (no animationTool)");
    session.videoComposition = videoComposition;
    log("🎬 [Export] [C] videoComposition assigned");
}

void run(ExportSession& session, ProgressReporter& progress, const std::stop_token& stop,
         const DiagnosticLog& log) {
    log("🎬 [Export] [E] session.export() — starting…");
    session.progressObserver = [&progress](float fraction) { progress.report(fraction); };
    {
        // Also fires when the stop was requested before.
        const std::stop_callback cancel(stop, [&session] { session.cancelExport(); });
        session.run();
    }
    session.progressObserver = nullptr;
    const std::exception_ptr error = session.error();
    log("🎬 [Export] [E] status=" + statusText(session.status()) +
        "  error=" + (error ? describeError(error) : "none"));
}

/// Returns only for a file that was written completely.
void throwUnlessCompleted(const ExportSession& session, const DiagnosticLog& log) {
    switch (static_cast<ExportStatus>(session.status())) {
        case ExportStatus::completed:
            return;
        case ExportStatus::failed: {
            std::exception_ptr error = session.error();
            if (!error) {
                error =
                    std::make_exception_ptr(ExportError::exportFailed("Export failed (no error object)."));
            }
            log("🎬 [Export] ===== FAILED: " + describeError(error) + " =====");
            std::rethrow_exception(error);
        }
        case ExportStatus::cancelled:
            throw CancellationError();
        case ExportStatus::unknown:
        case ExportStatus::waiting:
        case ExportStatus::exporting:
            break;
    }
    throw ExportError::exportFailed("Unexpected export status: " + statusText(session.status()));
}

}  // namespace

void VideoEditor::exportVideo(const std::filesystem::path& videoURL,
                              const std::vector<SpeechSegment>& segments,
                              const SubtitleSettings& subtitleSettings,
                              const std::filesystem::path& outputURL, std::function<void(double)> onProgress,
                              std::stop_token stop) const {
    log_("🎬 [Export] ===== START (debugStage=" + std::to_string(stage_) + ") =====");
    log_("🎬 [Export] videoURL  = " + videoURL.string());
    log_("🎬 [Export] segments  = " + std::to_string(segments.size()));
    log_("🎬 [Export] outputURL = " + outputURL.string());
    checkCancelled(stop);  // what is stopped before it began takes no file away
    clearDestination(outputURL, videoURL);

    const std::shared_ptr<Asset> asset = openSource(platform_, videoURL, stop, log_);
    log_("🎬 [Export] [B] buildCompositionData…");
    CompositionData data = buildCompositionData(*asset, segments, stop);
    const std::vector<SubtitleEntry> lines = groupSubtitleEntries(data.subtitleEntries);
    log_("🎬 [Export] [B] freshSubtitles = " + std::to_string(lines.size()));
    checkComposition(*data.composition, log_);
    checkVideoComposition(data.videoComposition, log_);

    const std::unique_ptr<ExportSession> session = makeMp4Session(platform_, data.composition, log_);
    configure(*session, data, outputURL, log_);
    assignPicture(*session, data.videoComposition, stage_, log_);
    if (stage_ < 2) {
        log_("🎬 [Export] [D] stage<2: SKIPPING animationTool (subtitle overlay)");
    } else {
        log_("🎬 [Export] [D] stage≥2: buildAnimationLayer…");
        const AnimationTool tool = buildAnimationLayer(lines, subtitleSettings);
        log_("🎬 [Export] [D] parentLayer.sublayers.count = " +
             std::to_string(tool.parentLayer->sublayers.size()));
        data.videoComposition.animationTool = tool;
        session->videoComposition = data.videoComposition;
        log_("🎬 [Export] [D] animationTool assigned and videoComposition re-set");
    }

    ProgressReporter progress(mainQueue_, std::move(onProgress), stop);
    run(*session, progress, stop, log_);
    throwUnlessCompleted(*session, log_);
    progress.finish();
    log_("🎬 [Export] ===== SUCCESS =====");
}

}  // namespace korvane
