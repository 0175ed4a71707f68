// The line that tells how far a long operation is. Pure functions: time and width are parameters.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane::cli {

enum class Phase { extractingAudio, transcribing, exportingVideo, downloadingModel, copyingModel };

/// "Extracting audio", "Transcribing", "Exporting video", "Downloading" or "Copying".
std::string_view phaseLabel(Phase phase);

/// The part of the whole operation that is done: extraction fills the first 30 % of a transcription, and
/// every other phase is an operation of its own. \param fraction  of the phase, 0 to 1.
double overallProgress(Phase phase, double fraction);

struct ProgressState {
    Phase phase = Phase::extractingAudio;
    double overall = 0.0;         ///< 0 to 1
    double elapsedSeconds = 0.0;  ///< since the operation began
    std::string detail = {};      ///< stands where the time left does; empty: that time, as it is estimated
};

/// "Almost done…", "~42s left" or "~3m 7s left"; none in the first 5 % of an export and of a
/// recognition, where an estimate would be a guess.
std::optional<std::string> etaText(const ProgressState& state);

/// Truncated, so that 100 % means done.
int percent(const ProgressState& state);

/// For a terminal: phase, percentage, bar and time left in at most `columns` columns. What has no room goes,
/// the bar first, then the time.
std::string progressLine(const ProgressState& state, int columns);

/// For a log: "Extracting audio: 10%".
std::string plainProgressLine(const ProgressState& state);

/// Lets through what is worth a line of its own: each new phase, then each new tenth.
class PlainProgressThinning {
  public:
    bool worthALine(const ProgressState& state);
    /// The next state begins a new operation.
    void restart() { last_.reset(); }

  private:
    struct Step {
        Phase phase;
        int tenth;
    };
    std::optional<Step> last_;
};

}  // namespace korvane::cli
