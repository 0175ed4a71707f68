#include "platform/speech/SpeechStretches.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace korvane {
namespace {

// All in frames of 10 ms. These did best of what was tried with the recogniser behind.
constexpr std::int64_t pause = 35;
constexpr std::int64_t pad = 25;
constexpr std::int64_t longest = 1500;
constexpr std::int64_t earliestCut = 750;  // a piece shorter than this gives the language model too little
constexpr std::int64_t fewestVoiced = 6;   // less is a click or a tap, no word
constexpr double aboveFloorDb = 6.0;
constexpr double inaudibleDb = -66.0;

bool isVoiced(const NoiseFloor::Frame& frame) {
    return frame.level > std::max(frame.floor + aboveFloorDb, inaudibleDb);
}

}  // namespace

SpeechStretches::SpeechStretches(int rateHz) : frameSize_(rateHz / 100), filter_(rateHz) {}

void SpeechStretches::push(std::span<const float> samples) {
    kept_.insert(kept_.end(), samples.begin(), samples.end());
    for (const float sample : samples) {
        const double y = filter_.next(sample);
        frameEnergy_ += y * y;
        if (++samplesInFrame_ < frameSize_)
            continue;
        floor_.push(frameEnergy_ / static_cast<double>(frameSize_));
        frameEnergy_ = 0.0;
        samplesInFrame_ = 0;
    }
    takeFrames();
}

void SpeechStretches::finish() {
    floor_.finish();
    takeFrames();
    if (open_)
        close(std::min(open_->lastVoiced + 1 + pad, frame_), false);
}

std::optional<SpeechStretch> SpeechStretches::next() {
    if (done_.empty())
        return std::nullopt;
    auto stretch = std::move(done_.front());
    done_.pop_front();
    return stretch;
}

void SpeechStretches::takeFrames() {
    while (const auto frame = floor_.next())
        decide(*frame);
    forget(open_ ? open_->begin : frame_ - pad);
}

void SpeechStretches::decide(const NoiseFloor::Frame& frame) {
    const auto now = frame_++;
    const bool voiced = isVoiced(frame);
    if (open_) {
        const auto quiet = now - open_->lastVoiced - 1;
        // Two stretches share a pause that is too short for both pads.
        if (voiced && quiet >= pause)
            close(open_->lastVoiced + 1 + std::min(pad, quiet / 2), false);
        else if (quiet >= 2 * pad)
            close(open_->lastVoiced + 1 + pad, false);
    }
    if (!open_ && voiced) {
        const auto begin = std::max(now - pad, closedAt_);
        open_ = Open{begin, now, 0, frame.floor, false};
        smoothed_.assign(static_cast<std::size_t>(now - begin), frame.smoothed);
    }
    if (!open_)
        return;
    smoothed_.push_back(frame.smoothed);
    open_->floorDb = std::min(open_->floorDb, frame.floor);
    if (voiced) {
        open_->lastVoiced = now;
        ++open_->voiced;
    }
    if (frame_ - open_->begin >= longest)
        cutAtQuietest();
}

void SpeechStretches::close(std::int64_t endFrame, bool endsInSpeech) {
    const auto stretch = *std::exchange(open_, std::nullopt);
    closedAt_ = endFrame;
    smoothed_.clear();
    if (stretch.voiced < fewestVoiced)
        return;
    const auto from = kept_.begin() + (stretch.begin * frameSize_ - keptFrom_);
    const auto to = kept_.begin() + (endFrame * frameSize_ - keptFrom_);
    done_.push_back({stretch.begin * frameSize_, std::vector<float>(from, to), stretch.floorDb,
                     stretch.beginsInSpeech, endsInSpeech});
}

void SpeechStretches::cutAtQuietest() {
    const auto quietest = std::min_element(smoothed_.begin() + earliestCut, smoothed_.end());
    const std::deque<double> rest(quietest, smoothed_.end());
    const auto before = *open_;
    const auto cut = before.begin + std::distance(smoothed_.begin(), quietest);
    close(cut, true);
    if (before.lastVoiced < cut)
        return;
    open_ = Open{cut, before.lastVoiced, fewestVoiced, before.floorDb, true};
    smoothed_ = rest;
}

void SpeechStretches::forget(std::int64_t frame) {
    // In pieces of about a second, so that what is kept isn't moved for every block that comes.
    const auto unused = std::min<std::int64_t>(frame * frameSize_ - keptFrom_, std::ssize(kept_));
    if (unused < 100 * frameSize_)
        return;
    kept_.erase(kept_.begin(), kept_.begin() + unused);
    keptFrom_ += unused;
}

}  // namespace korvane
