// The service that makes a reel out of a video and the chosen words: cut, framed upright, subtitled, written.
// It keeps nothing between calls, so any number of calls may run at once on any threads. The main queue given
// to it must outlive it.
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <vector>

#include "editor/CompositionData.h"
#include "editor/DiagnosticLog.h"
#include "editor/EditorPlatform.h"
#include "editor/ExportBundle.h"
#include "editor/SubtitleEntry.h"
#include "model/SpeechSegment.h"
#include "model/SubtitleSettings.h"
#include "platform/tasks/MainQueue.h"

namespace korvane {

class VideoEditor {
  public:
    /// How much of the pipeline an export uses: 0 the raw cuts, 1 with the upright picture, 2 with subtitles
    /// too. The application never uses another value than this one.
    static constexpr int debugStage = 2;

    /// The canvas in output pixels.
    const Size targetSize{1080.0, 1920.0};

    /// \param stage  other than debugStage only to look at a part of the pipeline by itself.
    explicit VideoEditor(MainQueue& mainQueue, DiagnosticLog log = standardOutputLog(),
                         EditorPlatform platform = realEditorPlatform(), int stage = debugStage);
    virtual ~VideoEditor() = default;

    /// Makes everything that plays the reel of `segments` before it is exported, from the same timeline as
    /// the export. Blocks while the source is opened; looks at `stop` meanwhile.
    /// \throws ExportError noSegmentsSelected before any file is touched, noVideoTrack, compositionFailed,
    /// noContentInserted; MediaError; CancellationError.
    virtual ExportBundle buildBundle(const std::filesystem::path& videoURL,
                                     const std::vector<SpeechSegment>& segments,
                                     const SubtitleSettings& subtitleSettings, std::stop_token stop) const;

    /// Writes the reel of `segments` as an MP4 file; what stood at `outputURL` is gone from the start.
    /// Blocks. \param onProgress  0 to 1, never falling, through the main queue; the last one on success is
    /// 1.0.
    /// \throws ExportError, MediaError, or CancellationError once `stop` is requested; then `onProgress` is
    /// not called any more. A destination that is the source, a folder or a device is refused and left alone.
    virtual void exportVideo(const std::filesystem::path& videoURL,
                             const std::vector<SpeechSegment>& segments,
                             const SubtitleSettings& subtitleSettings, const std::filesystem::path& outputURL,
                             std::function<void(double)> onProgress, std::stop_token stop) const;

    // The steps that preview and export share. Everything below is pure but for its log lines.

    /// Cuts the words out of the source, in the order given, and joins them behind a lead-in of up to 0.25 s
    /// from just before the first. A word that can't be inserted is logged and left out. Blocks while the
    /// source is opened.
    /// \throws ExportError noVideoTrack, compositionFailed, noContentInserted; MediaError; CancellationError.
    CompositionData buildCompositionData(Asset& asset, const std::vector<SpeechSegment>& segments,
                                         const std::stop_token& stop) const;

    /// Fills the canvas with the upright picture, centred, overflow cropped; whole frames per second, at
    /// least one. Stops the program for a rate that is no 32-bit number.
    /// \param naturalSize,preferredTransform,nominalFrameRate  of the source's video track.
    VideoComposition makeVideoComposition(const CompositionTrack& compositionTrack, Size naturalSize,
                                          const AffineTransform& preferredTransform, float nominalFrameRate,
                                          MediaTime totalDuration) const;

    /// Joins one-word entries into lines of three and two, by their number alone; a line of one word only
    /// when there is but one. The order and the times stay as they come.
    static std::vector<SubtitleEntry> groupSubtitleEntries(const std::vector<SubtitleEntry>& entries);

    /// One text layer for each line over the layer that the video is drawn into. A line is opaque in
    /// [start, end) and invisible otherwise.
    AnimationTool buildAnimationLayer(const std::vector<SubtitleEntry>& subtitleEntries,
                                      const SubtitleSettings& settings) const;

    /// The colour in device RGB, or opaque white when it has no such form.
    static Color cgColor(const Color& color);

  private:
    MainQueue& mainQueue_;
    DiagnosticLog log_;
    EditorPlatform platform_;
    int stage_;
};

}  // namespace korvane
