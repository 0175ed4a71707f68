// The machine's own sound devices, always the one that the desktop has as its default: through the sound
// server, which moves what plays along when that changes.
#pragma once

#include <memory>

#include "platform/av/AudioOutput.h"

namespace korvane {

class SoundServer;

/// Any thread; needs no event loop, and neither making nor destroying it waits for anything. A server that
/// is not there is looked for each second as long as somebody observes the devices.
class PulseOutputFactory final : public AudioOutputFactory {
  public:
    PulseOutputFactory();
    ~PulseOutputFactory() override;

    std::unique_ptr<AudioOutput> open(AudioFormat format) override;
    std::shared_ptr<void> observeDevices(std::function<void()> changed) override;

  private:
    std::unique_ptr<SoundServer> server_;
};

}  // namespace korvane
