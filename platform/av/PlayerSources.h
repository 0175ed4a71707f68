// The two threads that make pictures and sound ready ahead of a player, each with a reader of its own.
#pragma once

#include <memory>
#include <stop_token>
#include <vector>

#include "platform/av/CompositionReader.h"
#include "platform/av/KeptPictures.h"
#include "platform/av/PlayerState.h"

namespace korvane {

/// Reads and draws pictures until the state is stopping. What can't be kept up with is left out; in a loop,
/// the stretch in hand is finished all the same and kept, so that at least the next lap has it in time.
class FrameSource {
  public:
    FrameSource(PlayerState& state, std::stop_token stop);
    void run();

  private:
    struct Job {
        std::int64_t generation = 0;
        std::int64_t lap = 0;
        MediaTime time;
        int width = 0;
        int height = 0;
        std::optional<MediaTime> loop;  ///< the picture comes again in each lap from here on
        bool isLate = false;            ///< made only to be kept
    };
    Job nextJob();
    ReadyFrame make(const Job& job);
    KeptPictures::Canvas canvasOf(const Job& job, double scale);
    void offer(const Job& job, const TimedPicture& picture, KeptPictures::Canvas canvas,
               std::int64_t decoded);
    void fail(const Job& job, std::exception_ptr error);
    void deliver(const Job& job, ReadyFrame frame);
    std::int64_t currentLap() const;
    MediaTime currentFrame() const;
    bool finishesStretch() const;
    void skipLateFrames();
    void skipTo(MediaTime time);

    PlayerState& state_;
    std::stop_token stop_;
    std::unique_ptr<CompositionVideoReader> reader_;
    DisplayConverter display_;
    KeptPictures kept_;
    double keptScale_ = 0.0;
    std::optional<MediaTime> keptLoop_;
    // The stretch in hand, if it is kept.
    std::int64_t stretchGeneration_ = -1;
    TimeRange stretch_;
};

/// Reads and mixes sound until the state is stopping.
class SoundSource {
  public:
    SoundSource(PlayerState& state, std::stop_token stop) : state_(state), stop_(std::move(stop)) {}
    void run();

  private:
    std::vector<float> read(std::int64_t sample, std::int64_t frames);

    PlayerState& state_;
    std::stop_token stop_;
    std::unique_ptr<CompositionAudioReader> reader_;
};

}  // namespace korvane
