#include <algorithm>

#include "platform/av/PlayerSources.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {
constexpr double kChunkSeconds = 0.02;
}

void SoundSource::run() {
    if (!state_.format)
        return;
    const auto chunk = static_cast<std::int64_t>(kChunkSeconds * state_.rateHz());
    while (true) {
        ReadySound ready;
        std::int64_t generation = 0;
        std::int64_t lineShift = 0;
        std::int64_t sample = 0;
        bool silent = false;
        {
            std::unique_lock lock(state_.mutex);
            state_.clock.wait(lock, state_.changed, kNoClockTime,
                              [&] { return state_.stopping || state_.wantsSound(); });
            if (state_.stopping)
                return;
            generation = state_.soundGeneration;
            lineShift = state_.lineShift;
            silent = state_.soundFailed;
            ready.lap = state_.nextSoundLap;
            ready.from = state_.nextSoundFrom;
            ready.to = std::min(ready.from + chunk, state_.line.lapEnd(ready.lap));
            sample = state_.line.sampleAt(ready.lap, ready.from);
        }
        std::exception_ptr error;
        try {
            ready.samples = silent ? std::vector<float>() : read(sample, ready.to - ready.from);
        } catch (const CancellationError&) {
            return;
        } catch (...) {
            error = std::current_exception();
            reader_.reset();  // the next seek tries afresh
            state_.item->fail(error);
        }
        // Silence keeps the time going when there is nothing to be heard any more.
        ready.samples.resize(static_cast<std::size_t>((ready.to - ready.from) * state_.format->channels));

        const std::scoped_lock lock(state_.mutex);
        if (state_.soundGeneration != generation)
            continue;
        ready.from -= state_.lineShift - lineShift;
        ready.to -= state_.lineShift - lineShift;
        state_.soundFailed = state_.soundFailed || error != nullptr;
        state_.firstSoundDone = state_.firstSoundDone || !state_.soundFailed;
        state_.nextSoundFrom = ready.to;
        if (ready.to >= state_.line.lapEnd(ready.lap))
            ++state_.nextSoundLap;
        state_.sound.push_back(std::move(ready));
        state_.tellReady();
        state_.notify();
    }
}

std::vector<float> SoundSource::read(std::int64_t sample, std::int64_t frames) {
    if (!reader_)
        reader_ = std::make_unique<CompositionAudioReader>(state_.item->composition(),
                                                           state_.item->audioMix(), *state_.format, stop_);
    std::vector<float> samples(static_cast<std::size_t>(frames * state_.format->channels));
    reader_->read(sample, samples);
    return samples;
}

}  // namespace korvane
