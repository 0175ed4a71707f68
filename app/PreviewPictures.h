// Where the view finds the pictures of the preview, whichever player shows it. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "platform/av/PreviewPlayer.h"
#include "ui/player/PreviewSource.h"

namespace korvane {

class PreviewPictures final : public PreviewSource {
  public:
    /// sourceChanged() follows; by then the player before may be gone.
    void setPlayer(std::shared_ptr<PreviewPlayer> player) {
        player_ = std::move(player);
        Q_EMIT sourceChanged();
    }

    void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) override {
        if (player_)
            player_->setFrameConsumer(std::move(consumer));
    }
    void setFrameSize(int width, int height) override {
        if (player_)
            player_->setFrameSize(width, height);
    }

  private:
    std::shared_ptr<PreviewPlayer> player_;
};

}  // namespace korvane
