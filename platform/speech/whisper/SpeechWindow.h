// Stretches of speech put one behind the other, up to the half minute that Whisper listens to at once, and
// the way back from a time in there to the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/speech/SpeechStretches.h"
#include "platform/speech/whisper/VoicedParts.h"

namespace korvane {

/// One thread.
class SpeechWindow {
  public:
    static constexpr int rateHz = 16000;
    static constexpr std::int64_t longest = 30 * rateHz;

    /// A stretch and where it lies. All in samples.
    struct Piece {
        SpeechStretch stretch;    ///< of the recording
        std::int64_t offset = 0;  ///< in the window
        std::int64_t voiceBegin =
            0;                      ///< in the window: the first and last moment that is clearly louder than
        std::int64_t voiceEnd = 0;  ///< the background

        std::int64_t end() const { return offset + static_cast<std::int64_t>(stretch.samples.size()); }
        /// A sample of the window, which may be the piece's end, as a sample of the recording.
        std::int64_t inRecording(std::int64_t sample) const { return stretch.begin + sample - offset; }
        /// Whether somebody speaks on beyond the edge, in a word perhaps.
        bool beginsAtCut() const { return stretch.beginsInSpeech && voiceBegin == offset; }
        bool endsAtCut() const { return stretch.endsInSpeech && voiceEnd == end(); }
    };

    bool isEmpty() const { return pieces_.empty(); }
    bool hasRoomFor(const SpeechStretch& stretch) const;
    /// What goes on where the last piece was cut becomes part of it: the cut isn't there any more.
    void add(VoicedPart part);

    /// What the recogniser is to hear: the pieces without a gap. Each has the silence of its edges, so a
    /// pause between two stays a pause.
    std::span<const float> samples() const { return samples_; }
    const std::vector<Piece>& pieces() const { return pieces_; }

    /// The piece whose voice a word at [begin, end) of the window shares most with, else the nearest one.
    std::size_t pieceOf(std::int64_t begin, std::int64_t end) const;
    /// How many samples of [begin, end) lie where somebody speaks.
    std::int64_t voiceIn(std::int64_t begin, std::int64_t end) const;

  private:
    void goOn(const VoicedPart& part);

    std::vector<float> samples_;
    std::vector<Piece> pieces_;
};

}  // namespace korvane
