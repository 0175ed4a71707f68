#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/speech/NoiseReduction.h"
#include "platform/speech/SpeechStretches.h"
#include "platform/speech/WordTimes.h"
#include "platform/speech/pocketsphinx/PocketSphinxDecoder.h"
#include "platform/speech/pocketsphinx/SpokenWord.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

/// Half a second at the usual rate: short enough to stop soon, long enough to read in one go.
constexpr std::size_t blockSamples = 8192;

/// A frame of 10 ms is judged by a window of 25.6 ms that begins with it, so what changes between two frames
/// changes between the middles of their windows, 7.8 ms after the second one's begin.
std::int64_t frameShift(int rateHz) {
    return std::llround(0.0078 * rateHz);
}

std::vector<std::int16_t> toSixteenBits(const std::vector<float>& samples) {
    std::vector<std::int16_t> integers(samples.size());
    std::transform(samples.begin(), samples.end(), integers.begin(), [](float sample) {
        const float scaled = std::isfinite(sample) ? std::round(sample * 32768.0F) : 0.0F;
        return static_cast<std::int16_t>(std::clamp(scaled, -32768.0F, 32767.0F));
    });
    return integers;
}

/// One recording on its way from file to words. Lives on a worker.
class Transcription {
  public:
    Transcription(const PocketSphinxModel& model, std::stop_token stop)
        : rateHz_(model.rateHz),
          stop_(std::move(stop)),
          decoder_(PocketSphinxDecoder::load(model, stop_)),
          stretches_(model.rateHz) {}

    std::vector<RecognizedSegment> of(AudioDecoder& recording) {
        std::vector<float> block(blockSamples);
        for (std::int64_t position = 0;;) {
            checkCancelled(stop_);
            const auto count = recording.read(position, block);
            stretches_.push(std::span(block).first(static_cast<std::size_t>(count)));
            recognizeComplete();
            position += count;
            if (count < std::ssize(block))
                break;
        }
        stretches_.finish();
        recognizeComplete();
        return std::move(segments_);
    }

  private:
    void recognizeComplete() {
        while (const auto stretch = stretches_.next())
            recognize(*stretch);
    }

    void recognize(const SpeechStretch& stretch) {
        const std::int64_t frame = rateHz_ / 100;
        const auto samples = toSixteenBits(withoutNoise(stretch.samples, rateHz_));
        // The decoder takes the microphone's colour from what it has heard before, which at first is nothing.
        if (std::exchange(isFirst_, false))
            decoder_->recognize(samples, stop_);
        const auto edge = [&](int frames) { return stretch.begin + frames * frame + frameShift(rateHz_); };
        std::vector<TimedWord> words;
        for (const auto& heard : decoder_->recognize(samples, stop_)) {
            if (auto word = spokenWord(heard.entry))
                words.push_back({std::move(*word), edge(heard.firstFrame), edge(heard.lastFrame + 1)});
        }
        for (auto& word : refineWordTimes(std::move(words), stretch, rateHz_, lastEnd_)) {
            lastEnd_ = word.end;
            const auto seconds = WordSeconds::of(word, rateHz_);
            segments_.push_back({std::move(word.text), seconds.start, seconds.duration});
        }
    }

    const int rateHz_;
    const std::stop_token stop_;
    const std::unique_ptr<PocketSphinxDecoder> decoder_;
    SpeechStretches stretches_;
    bool isFirst_ = true;
    std::int64_t lastEnd_ = 0;
    std::vector<RecognizedSegment> segments_;
};

class PocketSphinxRecognizer final : public SpeechRecognizer {
  public:
    PocketSphinxRecognizer(Locale locale, PocketSphinxModel model, OpenRecording open,
                           RecognitionWorkers& workers)
        : locale_(std::move(locale)), model_(std::move(model)), open_(std::move(open)), workers_(workers) {}

    const Locale& locale() const override { return locale_; }

    bool isAvailable() const override { return PocketSphinxModel::inFolder(model_.folder).has_value(); }

    std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest& request,
                                                     RecognitionHandler handler) override {
        return workers_.start(
            [path = request.path, model = model_, open = open_](const std::stop_token& stop) {
                checkCancelled(stop);
                // The file first: a wrong one is told at once, without waiting for the model.
                const auto recording = open(path, model.rateHz, stop);
                return Transcription(model, stop).of(*recording);
            },
            std::move(handler));
    }

  private:
    const Locale locale_;
    const PocketSphinxModel model_;
    const OpenRecording open_;
    RecognitionWorkers& workers_;
};

/// The models of the distribution by their folder's name; a package exists for these only.
std::string packagedModel(const PocketSphinxModel& model) {
    return model.folder.filename() == "en-us" ? "US English (pocketsphinx-en-us)" : "";
}

}  // namespace

PocketSphinxEngine::PocketSphinxEngine(PocketSphinxModels models, OpenRecording open)
    : models_(std::move(models)), open_(std::move(open)) {}

std::unique_ptr<SpeechRecognizer> PocketSphinxEngine::makeRecognizer(const Locale& locale) {
    auto model = models_.find(locale);
    if (!model)
        return nullptr;
    return std::make_unique<PocketSphinxRecognizer>(locale, std::move(*model), open_, workers_);
}

SpeechSupport PocketSphinxEngine::support(const Locale& locale) const {
    const auto model = models_.find(locale);
    if (model) {
        const auto packaged = model->fromDistribution ? packagedModel(*model) : "";
        return {true,
                "PocketSphinx, " + (packaged.empty() ? "model in " + model->folder.string() : packaged)};
    }
    const auto folder = models_.personalFolder(locale).string();
    if (locale.identifier == "en-US")
        return {false,
                "Install the package pocketsphinx-en-us, or put a PocketSphinx model into " + folder + "."};
    return {false, "Put a PocketSphinx model (acoustic model, .lm.bin, .dict) into " + folder + "."};
}

}  // namespace korvane
