#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "editor/CutSmoothing.h"
#include "editor/ExportError.h"
#include "editor/LogFormat.h"
#include "editor/RuntimeTrap.h"
#include "editor/VideoEditor.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

constexpr double kLongestPrerollSeconds = 0.25;

struct Source {
    AssetTrack video;
    std::vector<AssetTrack> audio;
    double durationSeconds = 0.0;
};

struct AudioPair {
    AssetTrack source;
    CompositionTrack* track = nullptr;
};

/// Everything one build works on. Tracks belong to the composition.
struct Timeline {
    std::shared_ptr<Composition> composition;
    CompositionTrack* video = nullptr;
    std::vector<AudioPair> audio;
    MediaTime prerollDuration;
    MediaTime cursor;                    // output time of the next insertion
    std::vector<MediaTime> boundaries;   // output end of each inserted word
    std::vector<SubtitleEntry> entries;  // one for each inserted word
};

Source loadSource(Asset& asset, const DiagnosticLog& log, const std::stop_token& stop) {
    Source source;
    log("🎬 [Build] Loading video tracks…");
    checkCancelled(stop);
    const std::vector<AssetTrack> videoTracks = asset.loadTracks(MediaType::video);
    log("🎬 [Build] videoTracks.count = " + std::to_string(videoTracks.size()));
    if (videoTracks.empty())
        throw ExportError::noVideoTrack();
    source.video = videoTracks.front();

    checkCancelled(stop);
    source.audio = asset.loadTracks(MediaType::audio);
    log("🎬 [Build] audioTracks.count = " + std::to_string(source.audio.size()));

    checkCancelled(stop);
    source.durationSeconds = asset.loadDuration().seconds();
    log("🎬 [Build] assetDuration = " + formatDecimal(source.durationSeconds) + "s");
    log("🎬 [Build] naturalSize=" + formatSize(source.video.naturalSize) +
        "  nominalFrameRate=" + formatDecimal(source.video.nominalFrameRate));
    log("🎬 [Build] preferredTransform=" + formatTransform(source.video.preferredTransform));
    checkCancelled(stop);
    return source;
}

Timeline emptyTimeline(std::shared_ptr<Composition> composition, const Source& source) {
    Timeline timeline;
    timeline.composition = std::move(composition);
    timeline.video = timeline.composition->addMutableTrack(MediaType::video);
    if (timeline.video == nullptr)
        throw ExportError::compositionFailed();
    for (const AssetTrack& audio : source.audio) {
        if (CompositionTrack* track = timeline.composition->addMutableTrack(MediaType::audio))
            timeline.audio.push_back({audio, track});
    }
    return timeline;
}

/// \return what went wrong; none when the range was inserted.
std::optional<std::string> insertFailure(CompositionTrack& track, TimeRange range, const AssetTrack& source,
                                         MediaTime at) {
    try {
        track.insertTimeRange(range, source, at);
        return std::nullopt;
    } catch (const std::exception& error) {
        return error.what();
    }
}

/// The first word of the array decides, even when a later one begins earlier.
void insertPreroll(Timeline& timeline, const Source& source, const std::vector<SpeechSegment>& segments,
                   const DiagnosticLog& log) {
    if (segments.empty())
        return;
    const double firstStart = clampedToZeroAnd(segments.front().start(), source.durationSeconds);
    // A start that is no number makes no lead-in.
    const double preroll = firstStart > 0.0 ? std::min(kLongestPrerollSeconds, firstStart) : 0.0;
    if (preroll <= 0.0)
        return;

    const TimeRange range{MediaTime::fromSeconds(firstStart - preroll), MediaTime::fromSeconds(preroll)};
    if (const auto failure = insertFailure(*timeline.video, range, source.video, kZeroTime))
        log("🎬 [Build] pre-roll video insert failed: " + *failure);
    for (const AudioPair& pair : timeline.audio) {
        if (const auto failure = insertFailure(*pair.track, range, pair.source, kZeroTime))
            log("🎬 [Build] pre-roll audio insert failed: " + *failure);
    }
    log("🎬 [Build] pre-roll inserted: " + formatDecimal(preroll) + "s before first word");

    // Even without its picture the lead-in keeps its place: sound, subtitles and the export's time range
    // all count from its end.
    timeline.prerollDuration = range.duration;
    timeline.cursor = range.duration;
}

void insertWord(Timeline& timeline, const Source& source, const SpeechSegment& word, std::size_t index,
                const DiagnosticLog& log) {
    const std::string label = "🎬 [Build] seg[" + std::to_string(index) + "] '" + word.text() + "' — ";
    const double start = clampedToZeroAnd(word.start(), source.durationSeconds);
    const double end = clampedToZeroAnd(word.end(), source.durationSeconds);
    const auto logSkipped = [&] {
        log(label + "SKIPPED (zero duration " + formatDecimal(start) + "–" + formatDecimal(end) + ")");
    };
    if (std::isnan(start) || std::isnan(end))
        return logSkipped();

    const MediaTime startTime = MediaTime::fromSeconds(start);
    const TimeRange range{startTime, MediaTime::fromSeconds(end) - startTime};
    if (range.isEmpty())
        return logSkipped();
    if (const auto failure = insertFailure(*timeline.video, range, source.video, timeline.cursor)) {
        log(label + "video insert ERROR: " + *failure);
        return;
    }
    for (const AudioPair& pair : timeline.audio) {
        if (const auto failure = insertFailure(*pair.track, range, pair.source, timeline.cursor))
            log(label + "audio insert ERROR: " + *failure);
    }

    const MediaTime newCursor = timeline.cursor + range.duration;
    timeline.boundaries.push_back(newCursor);
    timeline.entries.push_back({timeline.cursor.seconds(), newCursor.seconds(), word.text()});
    timeline.cursor = newCursor;
}

std::optional<AudioMix> cutSmoothingMix(const Timeline& timeline) {
    if (timeline.audio.empty())
        return std::nullopt;
    std::vector<int> trackIDs;
    for (const AudioPair& pair : timeline.audio)
        trackIDs.push_back(pair.track->trackID());
    return makeCutSmoothingMix(timeline.boundaries, timeline.prerollDuration, timeline.cursor, trackIDs);
}

}  // namespace

CompositionData VideoEditor::buildCompositionData(Asset& asset, const std::vector<SpeechSegment>& segments,
                                                  const std::stop_token& stop) const {
    const Source source = loadSource(asset, log_, stop);
    Timeline timeline = emptyTimeline(platform_.makeComposition(), source);
    insertPreroll(timeline, source, segments, log_);
    for (std::size_t index = 0; index < segments.size(); ++index)
        insertWord(timeline, source, segments[index], index, log_);

    log_("🎬 [Build] inserted " + std::to_string(timeline.boundaries.size()) + "/" +
         std::to_string(segments.size()) + " segments, total duration=" + formatSeconds(timeline.cursor) +
         "s");
    if (timeline.cursor <= kZeroTime)
        throw ExportError::noContentInserted();

    CompositionData data;
    data.composition = timeline.composition;
    data.audioMix = cutSmoothingMix(timeline);
    data.videoComposition =
        makeVideoComposition(*timeline.video, source.video.naturalSize, source.video.preferredTransform,
                             source.video.nominalFrameRate, timeline.composition->duration());
    data.subtitleEntries = std::move(timeline.entries);
    data.prerollDuration = timeline.prerollDuration;
    return data;
}

}  // namespace korvane
