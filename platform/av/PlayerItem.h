// What a player plays: a timeline with how it looks and how it sounds. What it is made of never changes, so
// it is shared and read from any thread; whether it can be played shows once a player has looked at it.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/av/AudioMix.h"
#include "platform/av/Composition.h"
#include "platform/av/Observation.h"
#include "platform/av/VideoComposition.h"

namespace korvane {

/// Goes from unknown to one of the others; a source that breaks while it plays takes readyToPlay to failed.
enum class PlayerItemStatus { unknown, readyToPlay, failed };

class PlayerItem {
  public:
    /// \param audioMix  none plays every track as it is.
    PlayerItem(std::shared_ptr<const Composition> composition, VideoComposition videoComposition,
               std::optional<AudioMix> audioMix)
        : composition_(std::move(composition)),
          videoComposition_(std::move(videoComposition)),
          audioMix_(std::move(audioMix)) {}

    const std::shared_ptr<const Composition>& composition() const { return composition_; }
    const VideoComposition& videoComposition() const { return videoComposition_; }
    const std::optional<AudioMix>& audioMix() const { return audioMix_; }

    /// Any thread.
    PlayerItemStatus status() const;
    /// Any thread. Why it failed; null otherwise.
    std::exception_ptr error() const;

    /// Calls `observer` with the status of now and with each later one, on `queue`, which must outlive this.
    /// \return keeps it registered; see Observation.
    [[nodiscard]] Observation observeStatus(MainQueue& queue, std::function<void(PlayerItemStatus)> observer);

    // For the player only, from its own threads.

    /// The first picture and the first sound are there. Nothing happens unless the status is unknown.
    void becomeReady();
    /// The source can't be read or decoded. Only the first error counts.
    void fail(std::exception_ptr error);

  private:
    using Observer = std::function<void(PlayerItemStatus)>;
    struct Registered {
        MainQueue* queue;
        std::weak_ptr<Observer> observer;
    };
    void change(PlayerItemStatus status);

    std::shared_ptr<const Composition> composition_;
    VideoComposition videoComposition_;
    std::optional<AudioMix> audioMix_;

    mutable std::mutex mutex_;
    PlayerItemStatus status_ = PlayerItemStatus::unknown;
    std::exception_ptr error_;
    std::vector<Registered> observers_;
};

}  // namespace korvane
