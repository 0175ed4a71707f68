// Listens in between a player and its sound device: what was handed over, and when the device says that it
// was heard.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/av/AudioOutput.h"

namespace korvane::bench {

/// One unbroken stream of sound, the last one that was begun. Any thread.
class PlayedSound {
  public:
    /// \param keptSeconds  of what was handed over last; what lies before is forgotten.
    explicit PlayedSound(double keptSeconds) : keptSeconds_(keptSeconds) {}

    void begin(AudioFormat format);
    /// \param heard  what the device reports just before it gets them.
    void write(std::span<const float> interleaved, HeardFrames heard);
    void report(HeardFrames heard);

    int rateHz() const { return format_.rateHz; }
    /// How often a stream was begun, and sound that was handed over made void by that.
    int streams() const;
    /// Frames of the stream that had been heard at `at`, on the line through the device's reports of about
    /// then; none where there are none.
    std::optional<double> heardAt(ClockTime at) const;
    /// How often the device had played all that it had been given when it was given more.
    int timesDry() const;
    /// Samples of the first channel; empty where not all of them are there.
    std::vector<float> samples(std::int64_t from, std::int64_t count) const;

  private:
    struct Report {
        ClockTime at;
        double offset;  ///< frames heard at clock time 0, were the stream endless
    };

    double keptSeconds_;
    mutable std::mutex mutex_;
    AudioFormat format_{48'000, 1};
    std::vector<float> samples_;  ///< of the first channel, from `first_` on
    std::int64_t first_ = 0;
    int streams_ = 0;
    int timesDry_ = 0;
    std::int64_t lastReport_ = 0;
    std::deque<Report> reports_;  ///< in their order
};

/// Devices of another factory under the ear of a PlayedSound. Both must outlive it.
class OverheardOutputs final : public AudioOutputFactory {
  public:
    OverheardOutputs(AudioOutputFactory& devices, PlayedSound& sound) : devices_(devices), sound_(sound) {}
    std::unique_ptr<AudioOutput> open(AudioFormat format) override;
    std::shared_ptr<void> observeDevices(std::function<void()> changed) override {
        return devices_.observeDevices(std::move(changed));
    }

  private:
    AudioOutputFactory& devices_;
    PlayedSound& sound_;
};

/// Devices that play evenly by a clock, and say so truly.
class EvenOutputs final : public AudioOutputFactory {
  public:
    explicit EvenOutputs(const PlaybackClock& clock) : clock_(clock) {}
    std::unique_ptr<AudioOutput> open(AudioFormat format) override;
    std::shared_ptr<void> observeDevices(std::function<void()>) override { return nullptr; }

  private:
    const PlaybackClock& clock_;
};

}  // namespace korvane::bench
