// Cuts a recording of any length into the stretches in which somebody speaks, while it is being read.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "platform/speech/NoiseFloor.h"
#include "platform/speech/SoundLevel.h"

namespace korvane {

/// One piece for a recogniser. Stretches come in order and never overlap.
struct SpeechStretch {
    std::int64_t begin = 0;       ///< sample in the recording
    std::vector<float> samples;   ///< mono
    double floorDb = silenceDb;   ///< the background's level
    bool beginsInSpeech = false;  ///< cut off the one before because it grew too long, not at a pause
    bool endsInSpeech = false;

    std::int64_t end() const { return begin + static_cast<std::int64_t>(samples.size()); }
};

/// A stretch ends where nobody speaks for 0.35 s and keeps up to 0.25 s of that on both sides; one that
/// reaches 15 s is cut at its quietest moment. Holds about 20 s of sound, however long the recording. One
/// thread.
class SpeechStretches {
  public:
    explicit SpeechStretches(int rateHz);

    /// Mono samples, going on where the last call ended.
    void push(std::span<const float> samples);
    /// The recording ends here.
    void finish();
    /// The next stretch that is complete.
    std::optional<SpeechStretch> next();

  private:
    struct Open {
        std::int64_t begin = 0;  // frame
        std::int64_t lastVoiced = 0;
        std::int64_t voiced = 0;  // frames
        double floorDb = 0.0;
        bool beginsInSpeech = false;
    };

    void takeFrames();
    void decide(const NoiseFloor::Frame& frame);
    void close(std::int64_t endFrame, bool endsInSpeech);
    void cutAtQuietest();
    void forget(std::int64_t frame);

    const std::int64_t frameSize_;
    RumbleFilter filter_;
    double frameEnergy_ = 0.0;
    std::int64_t samplesInFrame_ = 0;
    NoiseFloor floor_;

    std::vector<float> kept_;  // samples from keptFrom_ on
    std::int64_t keptFrom_ = 0;
    std::deque<double> smoothed_;  // of the frames of the open stretch, from its begin to frame_
    std::int64_t frame_ = 0;       // the next to decide
    std::int64_t closedAt_ = 0;    // frame where the last stretch ended
    std::optional<Open> open_;
    std::deque<SpeechStretch> done_;
};

}  // namespace korvane
