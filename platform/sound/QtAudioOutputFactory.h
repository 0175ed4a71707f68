// The machine's own sound devices, always the one that the desktop has as its default.
#pragma once

#include <memory>

#include "platform/av/AudioOutput.h"

namespace korvane {

/// One for the program: the sound library finds a restarted server again only for the first.
/// Made and destroyed on the main thread, which runs the event loop: without it, nobody hears that devices
/// come and go. Everything else as the interface says.
class QtAudioOutputFactory final : public AudioOutputFactory {
  public:
    QtAudioOutputFactory();
    ~QtAudioOutputFactory() override;

    std::unique_ptr<AudioOutput> open(AudioFormat format) override;
    std::shared_ptr<void> observeDevices(std::function<void()> changed) override;

  private:
    struct Devices;
    std::shared_ptr<Devices> devices_;
};

}  // namespace korvane
