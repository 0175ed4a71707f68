#include "platform/av/PreviewPlayer.h"

#include <utility>
#include <vector>

#include "platform/av/Player.h"

namespace korvane {
namespace {

class RealPreviewPlayer final : public PreviewPlayer {
  public:
    RealPreviewPlayer(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs,
                      std::shared_ptr<PlayerItem> item)
        : player_(queue, clock, outputs, std::move(item)) {}

    void play() override { player_.play(); }
    void pause() override { player_.pause(); }
    double rate() const override { return player_.rate(); }
    double currentTime() const override { return player_.currentTime().seconds(); }
    void seek(MediaTime to, Completion completion) override { player_.seek(to, std::move(completion)); }
    void seek(MediaTime to, MediaTime toleranceBefore, MediaTime toleranceAfter,
              Completion completion) override {
        player_.seek(to, toleranceBefore, toleranceAfter, std::move(completion));
    }
    void preroll(double rate, Completion completion) override {
        player_.preroll(rate, std::move(completion));
    }
    void setActionAtItemEnd(ActionAtItemEnd action) override { player_.setActionAtItemEnd(action); }
    void observeEnd(std::function<void()> observer) override {
        atEnd_.push_back(player_.observeEnd(std::move(observer)));
    }
    void setLoopHint(MediaTime loopPoint) override { player_.setLoopHint(loopPoint); }
    void setFrameSize(int width, int height) override { player_.setFrameSize(width, height); }
    void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) override {
        player_.setFrameConsumer(std::move(consumer));
    }
    PlayerStatistics statistics() const override { return player_.statistics(); }

  private:
    Player player_;
    std::vector<Observation> atEnd_;  // nobody is called any more while the player goes
};

}  // namespace

PreviewPlayerMaker realPreviewPlayers(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs) {
    return [&queue, &clock, &outputs](std::shared_ptr<PlayerItem> item) {
        return std::make_shared<RealPreviewPlayer>(queue, clock, outputs, std::move(item));
    };
}

}  // namespace korvane
