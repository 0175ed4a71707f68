#include "bench/player/PlayedSound.h"

#include <algorithm>
#include <utility>

#include "bench/Statistics.h"

namespace korvane::bench {
namespace {

using namespace std::chrono_literals;

constexpr ClockTime kStartDelay = 40ms;
constexpr double kAheadSeconds = 0.2;
/// Reports jitter, and a device that ran dry goes on late: about so much around a moment tells what was then.
constexpr ClockTime kAround = 300ms;

double framesIn(ClockTime time, int rateHz) {
    return std::chrono::duration<double>(time).count() * rateHz;
}

class OverheardOutput final : public AudioOutput {
  public:
    OverheardOutput(std::unique_ptr<AudioOutput> device, AudioFormat format, PlayedSound& sound)
        : device_(std::move(device)), format_(format), sound_(sound) {
        sound_.begin(format);
    }
    std::int64_t room() override { return device_->room(); }
    void write(std::span<const float> samples) override {
        sound_.write(samples, device_->heard());
        device_->write(samples);
    }
    void flush() override {
        sound_.begin(format_);
        device_->flush();
    }
    HeardFrames heard() override {
        const HeardFrames heard = device_->heard();
        sound_.report(heard);
        return heard;
    }
    bool isDead() override { return device_->isDead(); }

  private:
    std::unique_ptr<AudioOutput> device_;
    AudioFormat format_;
    PlayedSound& sound_;
};

class EvenOutput final : public AudioOutput {
  public:
    EvenOutput(const PlaybackClock& clock, AudioFormat format) : clock_(clock), format_(format) {}

    std::int64_t room() override {
        play();
        const auto ahead = static_cast<std::int64_t>(kAheadSeconds * format_.rateHz);
        return std::max<std::int64_t>(0, ahead - (written_ - heard_));
    }
    void write(std::span<const float> samples) override {
        play();
        if (written_ == 0)
            playedTo_ = clock_.now() + kStartDelay;
        written_ += static_cast<std::int64_t>(samples.size()) / format_.channels;
    }
    void flush() override { written_ = heard_ = 0; }
    HeardFrames heard() override {
        play();
        return {heard_, playedTo_};
    }
    bool isDead() override { return false; }

  private:
    /// In whole frames, so that none is lost however often it is asked.
    void play() {
        const ClockTime now = clock_.now();
        if (written_ == 0 || now <= playedTo_)
            return;
        const auto due = static_cast<std::int64_t>(framesIn(now - playedTo_, format_.rateHz));
        const std::int64_t frames = std::min(due, written_ - heard_);
        heard_ += frames;
        // A device that has run dry goes on late.
        playedTo_ = frames < due ? now : playedTo_ + ClockTime(frames * 1'000'000'000 / format_.rateHz);
    }

    const PlaybackClock& clock_;
    AudioFormat format_;
    std::int64_t written_ = 0;
    std::int64_t heard_ = 0;
    ClockTime playedTo_{0};  ///< when frame `heard_` begins to sound
};

}  // namespace

void PlayedSound::begin(AudioFormat format) {
    const std::scoped_lock lock(mutex_);
    format_ = format;
    samples_.clear();
    reports_.clear();
    first_ = lastReport_ = 0;
    ++streams_;
}

void PlayedSound::write(std::span<const float> interleaved, HeardFrames heard) {
    const std::scoped_lock lock(mutex_);
    const std::int64_t written = first_ + static_cast<std::int64_t>(samples_.size());
    timesDry_ += written > 0 && heard.frames >= written ? 1 : 0;
    for (std::size_t i = 0; i < interleaved.size(); i += static_cast<std::size_t>(format_.channels))
        samples_.push_back(interleaved[i]);
    const auto kept = static_cast<std::size_t>(keptSeconds_ * format_.rateHz);
    if (samples_.size() < 2 * kept)
        return;
    const std::size_t gone = samples_.size() - kept;
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(gone));
    first_ += static_cast<std::int64_t>(gone);
}

void PlayedSound::report(HeardFrames heard) {
    const std::scoped_lock lock(mutex_);
    if (heard.frames <= lastReport_)
        return;
    lastReport_ = heard.frames;
    reports_.push_back({heard.at, static_cast<double>(heard.frames) - framesIn(heard.at, format_.rateHz)});
    while (std::chrono::duration<double>(heard.at - reports_.front().at).count() > keptSeconds_)
        reports_.pop_front();
}

int PlayedSound::streams() const {
    const std::scoped_lock lock(mutex_);
    return streams_;
}

int PlayedSound::timesDry() const {
    const std::scoped_lock lock(mutex_);
    return timesDry_;
}

std::optional<double> PlayedSound::heardAt(ClockTime at) const {
    const std::scoped_lock lock(mutex_);
    std::vector<double> offsets;
    for (auto report = std::ranges::lower_bound(reports_, at - kAround, {}, &Report::at);
         report != reports_.end() && report->at <= at + kAround; ++report)
        offsets.push_back(report->offset);
    if (offsets.empty())
        return std::nullopt;
    return summarize(offsets).median + framesIn(at, format_.rateHz);
}

std::vector<float> PlayedSound::samples(std::int64_t from, std::int64_t count) const {
    const std::scoped_lock lock(mutex_);
    const std::int64_t begin = from - first_;
    if (begin < 0 || begin + count > static_cast<std::int64_t>(samples_.size()))
        return {};
    return {samples_.begin() + begin, samples_.begin() + begin + count};
}

std::unique_ptr<AudioOutput> OverheardOutputs::open(AudioFormat format) {
    auto device = devices_.open(format);
    if (!device)
        return nullptr;
    return std::make_unique<OverheardOutput>(std::move(device), format, sound_);
}

std::unique_ptr<AudioOutput> EvenOutputs::open(AudioFormat format) {
    return std::make_unique<EvenOutput>(clock_, format);
}

}  // namespace korvane::bench
