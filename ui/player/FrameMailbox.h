// Where a player's pictures wait for the screen: one at a time, the newest. Filled on the player's thread,
// emptied by the screen. Each player that a view is given gets a mailbox of its own, so that a late picture
// of the one before is never shown.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "platform/av/PlayerFrames.h"

namespace korvane {

class FrameMailbox : public FrameConsumer {
  public:
    /// \param arrived  called on the player's thread when a picture lies here and the last one has been
    /// taken;
    ///   to be quick, and not to come back to the mailbox.
    explicit FrameMailbox(std::function<void()> arrived) : arrived_(std::move(arrived)) {}

    void show(const PlayerFrame& frame) override;

    /// The newest picture, once. Any thread.
    std::shared_ptr<const DisplayPicture> take();

    /// From its return on `arrived` is neither running nor called again, and nothing is kept. Any thread.
    void close();

  private:
    std::mutex mutex_;
    std::function<void()> arrived_;
    std::shared_ptr<const DisplayPicture> newest_;
};

}  // namespace korvane
