// Everything that plays a reel before it is exported, and what it was made of. An immutable value; copies
// share the player item.
#pragma once

#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "editor/SubtitleEntry.h"
#include "model/SpeechSegment.h"
#include "model/SubtitleSettings.h"
#include "platform/av/PlayerItem.h"
#include "platform/time/MediaTime.h"

namespace korvane {

class ExportBundle {
  public:
    /// \param previewPlayerItem  the whole timeline, lead-in included.
    /// \param subtitleEntries    lines in the player item's own time, lead-in included.
    /// \param subtitleSettings   the style to draw the lines with.
    /// \param videoURL,segments  the source and the chosen words, as they were asked for.
    /// \param prerollDuration    the length of the lead-in, where playing starts; zero when there is none.
    ExportBundle(std::shared_ptr<PlayerItem> previewPlayerItem, std::vector<SubtitleEntry> subtitleEntries,
                 SubtitleSettings subtitleSettings, std::filesystem::path videoURL,
                 std::vector<SpeechSegment> segments, MediaTime prerollDuration)
        : previewPlayerItem_(std::move(previewPlayerItem)),
          subtitleEntries_(std::move(subtitleEntries)),
          subtitleSettings_(std::move(subtitleSettings)),
          videoURL_(std::move(videoURL)),
          segments_(std::move(segments)),
          prerollDuration_(prerollDuration) {}

    const std::shared_ptr<PlayerItem>& previewPlayerItem() const { return previewPlayerItem_; }
    const std::vector<SubtitleEntry>& subtitleEntries() const { return subtitleEntries_; }
    const SubtitleSettings& subtitleSettings() const { return subtitleSettings_; }
    const std::filesystem::path& videoURL() const { return videoURL_; }
    const std::vector<SpeechSegment>& segments() const { return segments_; }
    MediaTime prerollDuration() const { return prerollDuration_; }

  private:
    std::shared_ptr<PlayerItem> previewPlayerItem_;
    std::vector<SubtitleEntry> subtitleEntries_;
    SubtitleSettings subtitleSettings_;
    std::filesystem::path videoURL_;
    std::vector<SpeechSegment> segments_;
    MediaTime prerollDuration_;
};

}  // namespace korvane
