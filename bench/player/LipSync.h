// How far pictures are from the sound that belongs to them, read from the pictures and the sound alone.
#pragma once

#include <mutex>
#include <vector>

#include "bench/player/CodedReel.h"
#include "bench/player/PlayedSound.h"
#include "platform/av/PlayerFrames.h"

namespace korvane::bench {

struct ShownPicture {
    ClockTime at{0};
    int number = -1;  ///< of the source, by its bar code
};

/// Notes when each picture is shown.
class PictureLog final : public FrameConsumer {
  public:
    explicit PictureLog(const PlaybackClock& clock) : clock_(clock) {}
    void show(const PlayerFrame& frame) override;
    std::vector<ShownPicture> take();

  private:
    const PlaybackClock& clock_;
    std::mutex mutex_;
    std::vector<ShownPicture> shown_;
};

struct LipSync {
    /// At each cut: seconds from the first sound of a word to its first picture; below 0 the picture is
    /// early.
    std::vector<double> atCuts;
    int unheard = 0;  ///< cuts at which the device played something else than the word that was seen
    /// At each loop: seconds without a new picture beyond a picture's own time.
    std::vector<double> pictureHoles;
    /// At each loop: samples too many between two beginnings.
    std::vector<double> soundHoles;
};

/// \param shown  of whole laps, of which `sound` still has all.
LipSync compare(const std::vector<ShownPicture>& shown, const PlayedSound& sound, const CodedReel& reel);

}  // namespace korvane::bench
