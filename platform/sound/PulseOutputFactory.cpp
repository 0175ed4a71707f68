#include "platform/sound/PulseOutputFactory.h"

#include <utility>

#include "platform/sound/SoundServer.h"

namespace korvane {
namespace {

/// The player's end of a stream.
class PulseOutput final : public AudioOutput {
  public:
    explicit PulseOutput(std::shared_ptr<ServerStream> stream) : stream_(std::move(stream)) {}
    ~PulseOutput() override { stream_->close(); }

    std::int64_t room() override { return stream_->room(); }
    void write(std::span<const float> samples) override { stream_->write(samples); }
    void flush() override { stream_->flush(); }
    HeardFrames heard() override { return stream_->heard(); }
    bool isDead() override { return stream_->isDead(); }

  private:
    std::shared_ptr<ServerStream> stream_;
};

}  // namespace

PulseOutputFactory::PulseOutputFactory() : server_(std::make_unique<SoundServer>()) {}
PulseOutputFactory::~PulseOutputFactory() = default;

std::unique_ptr<AudioOutput> PulseOutputFactory::open(AudioFormat format) {
    auto stream = server_->open(format);
    return stream ? std::make_unique<PulseOutput>(std::move(stream)) : nullptr;
}

std::shared_ptr<void> PulseOutputFactory::observeDevices(std::function<void()> changed) {
    return server_->observe(std::move(changed));
}

}  // namespace korvane
