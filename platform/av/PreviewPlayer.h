// A player as a screen uses it, so that a screen can be tried out without media and without sound.
// Main thread only; what the real one promises stands in Player.h.
#pragma once

#include <functional>
#include <memory>

#include "platform/av/AudioOutput.h"
#include "platform/av/PlaybackClock.h"
#include "platform/av/PlayerFrames.h"
#include "platform/av/PlayerItem.h"

namespace korvane {

/// Plays from its making to its end one item. Completions and observers must not own it.
class PreviewPlayer {
  public:
    using Completion = std::function<void(bool finished)>;

    virtual ~PreviewPlayer() = default;

    virtual void play() = 0;
    virtual void pause() = 0;
    virtual double rate() const = 0;
    /// Seconds of item time; not finite while nobody can tell.
    virtual double currentTime() const = 0;
    virtual void seek(MediaTime to, Completion completion) = 0;
    virtual void seek(MediaTime to, MediaTime toleranceBefore, MediaTime toleranceAfter,
                      Completion completion) = 0;
    virtual void preroll(double rate, Completion completion) = 0;
    virtual void setActionAtItemEnd(ActionAtItemEnd action) = 0;
    /// Calls `observer` each time the end of the item is reached, for as long as the player stands.
    virtual void observeEnd(std::function<void()> observer) = 0;
    virtual void setLoopHint(MediaTime loopPoint) = 0;
    virtual void setFrameSize(int width, int height) = 0;
    virtual void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) = 0;
    /// Since it was made; all zero for one that counts nothing.
    virtual PlayerStatistics statistics() const { return {}; }
};

/// Makes the player of an item, which begins at once to make itself ready.
using PreviewPlayerMaker = std::function<std::shared_ptr<PreviewPlayer>(std::shared_ptr<PlayerItem>)>;

/// \return what makes real ones; all three must outlive every player made.
PreviewPlayerMaker realPreviewPlayers(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs);

}  // namespace korvane
