// What a player plays: a timeline with how it looks and how it sounds. Never changed once made, so it is
// shared and read from any thread.
#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/av/AudioMix.h"
#include "platform/av/Composition.h"
#include "platform/av/VideoComposition.h"

namespace korvane {

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

  private:
    std::shared_ptr<const Composition> composition_;
    VideoComposition videoComposition_;
    std::optional<AudioMix> audioMix_;
};

}  // namespace korvane
