// Plays an item: pictures to a consumer, sound to a device, through the same readers that the export uses.
// Sound is the clock; without a device, and for items without sound, a steady clock takes over. Devices may
// come, go and change meanwhile.
//
// Made, used and destroyed on the main thread; nothing here waits for media, except the destructor, which
// waits for at most the step that each of its threads is in. Completions and observers are called on the main
// queue, each completion exactly once. An observer or completion that is kept must not own the player.
#pragma once

#include <memory>

#include "platform/av/AudioOutput.h"
#include "platform/av/Observation.h"
#include "platform/av/PlaybackClock.h"
#include "platform/av/PlayerFrames.h"
#include "platform/av/PlayerItem.h"

namespace korvane {

class Player {
  public:
    /// \param finished  false when another seek took its place, the player went, or the item can't be played.
    using Completion = std::function<void(bool finished)>;

    /// Begins at once to make the item's beginning ready; that decides the item's status. The queue, the
    /// clock and the outputs must outlive the player.
    Player(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs,
           std::shared_ptr<PlayerItem> item);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    const std::shared_ptr<PlayerItem>& currentItem() const;

    void play();   ///< rate 1; begins once there is something to show
    void pause();  ///< rate 0; sound ends at once
    double rate() const;

    /// Item time of what is seen and heard now, from 0 to the item's duration. Stays at the end until a seek.
    MediaTime currentTime() const;

    /// Goes to `to`, held inside the item, and goes on playing if it was; completes once the picture there
    /// has been handed over. At the end of a lap a seek to the loop point costs nothing and leaves no gap.
    void seek(MediaTime to, Completion completion);
    /// \param toleranceBefore,toleranceAfter  how far from `to` it may land; zero: exactly there.
    void seek(MediaTime to, MediaTime toleranceBefore, MediaTime toleranceAfter, Completion completion);

    /// Makes ready what playing needs to begin without delay: pictures, sound and the device.
    /// \param rate  > 0.
    void preroll(double rate, Completion completion);

    /// What happens at the end of the item: `pause` sets the rate to 0; `none` leaves it, so that a seek goes
    /// on playing. Pause, unless set.
    void setActionAtItemEnd(ActionAtItemEnd action);
    ActionAtItemEnd actionAtItemEnd() const;

    /// Calls `observer` each time the end of the item is reached.
    [[nodiscard]] Observation observeEnd(std::function<void()> observer);

    /// Where the observer of the end is going to seek to. Pictures and sound from there are made ready before
    /// the end is reached and played on without a break; if no such seek comes within a quarter of a second,
    /// the player falls silent and stands at the end. Learned from the first seek at the end when never set.
    void setLoopHint(MediaTime loopPoint);

    /// Pixels that pictures are shown in; the canvas is fitted into them. Pictures that were made ready keep
    /// their size while it plays. Before the first call: 720 rows.
    void setFrameSize(int width, int height);
    /// Who gets the pictures, beginning with the one shown now; null: nobody.
    void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer);

    PlayerStatistics statistics() const;

  private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

}  // namespace korvane
