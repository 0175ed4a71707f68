#include "platform/speech/whisper/WhisperTranscription.h"

#include <algorithm>
#include <span>
#include <utility>

#include "platform/speech/WordTimes.h"
#include "platform/speech/whisper/WhisperWords.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

constexpr int rateHz = SpeechWindow::rateHz;

/// Half a second: short enough to stop soon, long enough to read in one go.
constexpr std::size_t blockSamples = 8192;

/// The library takes nothing from less than a second, and aligns the end of the last word better with some
/// quiet behind it.
constexpr std::size_t fewestSamples = rateHz + rateHz / 10;
constexpr std::size_t quietBehind = rateHz / 10;

std::vector<float> padded(std::span<const float> samples) {
    std::vector<float> all(samples.begin(), samples.end());
    all.resize(std::max(all.size() + quietBehind, fewestSamples));
    return all;
}

}  // namespace

WhisperTranscription::WhisperTranscription(WhisperKeeper::Loan& loan, Locale locale, std::string language,
                                           std::stop_token stop)
    : loan_(loan),
      locale_(std::move(locale)),
      language_(std::move(language)),
      stop_(std::move(stop)),
      stretches_(rateHz) {}

std::vector<RecognizedSegment> WhisperTranscription::of(AudioDecoder& recording) {
    std::vector<float> block(blockSamples);
    for (std::int64_t position = 0;;) {
        checkCancelled(stop_);
        const auto count = recording.read(position, block);
        stretches_.push(std::span(block).first(static_cast<std::size_t>(count)));
        takeStretches();
        position += count;
        if (count < std::ssize(block))
            break;
    }
    stretches_.finish();
    takeStretches();
    recognizeWindow();
    return std::move(segments_);
}

void WhisperTranscription::takeStretches() {
    while (auto stretch = stretches_.next()) {
        const auto chances = loan_.voicesIn(stretch->samples);
        if (!chances) {
            take({std::move(*stretch)});
            continue;
        }
        for (auto& part : voicedParts(*stretch, *chances))
            take(std::move(part));
    }
}

void WhisperTranscription::take(VoicedPart part) {
    if (!window_.hasRoomFor(part.stretch))
        recognizeWindow();
    window_.add(std::move(part));
}

void WhisperTranscription::recognizeWindow() {
    if (window_.isEmpty())
        return;
    const auto window = std::exchange(window_, {});
    const auto heard = loan_.recognize(padded(window.samples()), language_);
    for (auto& [piece, words] : wordsOfWindow(heard, window, locale_)) {
        for (auto& word :
             refineWordTimes(std::move(words), window.pieces()[piece].stretch, rateHz, lastEnd_)) {
            lastEnd_ = word.end;
            const auto seconds = WordSeconds::of(word, rateHz);
            segments_.push_back({std::move(word.text), seconds.start, seconds.duration});
        }
    }
}

}  // namespace korvane
